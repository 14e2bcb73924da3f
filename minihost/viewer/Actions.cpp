#include "Actions.h"

#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>

#include "Icons.h"

static QKeySequence fx_Ctrl(Qt::Key key) { return {int(Qt::CTRL) | int(key)}; }
static QKeySequence fx_CtrlShift(Qt::Key key) { return {int(Qt::CTRL) | int(Qt::SHIFT) | int(key)}; }
static QKeySequence fx_Shift(Qt::Key key) { return {int(Qt::SHIFT) | int(key)}; }

static char const* const kReason = "reason"; // property: why an action is greyed

/// Name and key, and the reason while it cannot be used; as they are now.
static void fx_UpdateTip(QAction* action)
{
    QString tip = action->text();
    tip.remove(QLatin1Char('&'));
    if (!action->shortcut().isEmpty())
        tip += QStringLiteral(" (%1)").arg(action->shortcut().toString(QKeySequence::NativeText));
    QString const reason = action->property(kReason).toString();
    if (!action->isEnabled() && !reason.isEmpty())
        tip += QStringLiteral(" – ") + reason;
    action->setToolTip(tip); // tells nobody when it is the same
}

QAction* CxActions::add(char const* objectName, QString const& text, QList<QKeySequence> const& shortcuts)
{
    auto* const action = new QAction(text, this);
    action->setObjectName(QLatin1String(objectName));
    action->setShortcuts(shortcuts);
    fx_UpdateTip(action);
    connect(action, &QAction::changed, action, [action] { fx_UpdateTip(action); });
    return action;
}

/// What each needs, said while it is greyed.
void CxActions::addReasons()
{
    auto const add = [](QList<QAction*> const& actions, QString const& reason) {
        for (QAction* const action : actions) {
            action->setProperty(kReason, reason);
            fx_UpdateTip(action);
        }
    };
    add({play,  playBackwards, previousPicture, nextPicture,  previousKeyFrame, nextKeyFrame,
         first, last,          back1,           forward1,     back10,           forward10,
         goTo,  loop,          setRate,         slower,       faster,           normalSpeed,
         setIn, setOut,        nextFile,        previousFile, reload,           verify},
        tr("needs an open recording that is not being saved"));
    add({goToIn, goToOut, clearMarks}, tr("needs a part that is marked"));
    add({previousBroken, nextBroken}, tr("needs a picture found broken, by playing or verifying"));
    add({savePicture, snapshot, copy, fit, actualSize, zoomIn, zoomOut}, tr("needs a picture"));
    add({record}, tr("needs an open recording or camera, and no other recording under way"));
    add({closeFile}, tr("needs something open, and no recording under way"));
    add({open, openCamera, openSource}, tr("waits for the end of the recording under way"));
}

CxActions::CxActions(QObject* parent)
    : QObject(parent)
    , open(add("open", tr("&Open Recording…"), {fx_Ctrl(Qt::Key_O)}))
    , nextFile(add("nextFile", tr("Ne&xt Recording"), {fx_Ctrl(Qt::Key_PageDown), Qt::Key_Greater}))
    , previousFile(add("previousFile", tr("Prev&ious Recording"), {fx_Ctrl(Qt::Key_PageUp), Qt::Key_Less}))
    , reload(add("reload", tr("Re&load"), {Qt::Key_F5}))
    , closeFile(add("closeFile", tr("&Close"), {fx_Ctrl(Qt::Key_W)}))
    , openCamera(add("openCamera", tr("&Test Camera"), {fx_Ctrl(Qt::Key_T)}))
    , openSource(add("openSource", tr("Open &Video, Stream or Device…"), {fx_Ctrl(Qt::Key_U)}))
    , record(add("record", tr("&Record…"), {fx_Ctrl(Qt::Key_R)}))
    , savePicture(add("savePicture", tr("&Save Picture…"), {fx_Ctrl(Qt::Key_S)}))
    , snapshot(add("snapshot", tr("S&napshot"), {Qt::Key_S, fx_Shift(Qt::Key_S)}))
    , snapshotFolder(add("snapshotFolder", tr("Snapshot Fol&der…")))
    , verify(add("verify", tr("Verif&y Recording"), {Qt::Key_F7}))
    , quit(add("quit", tr("&Quit"), {fx_Ctrl(Qt::Key_Q)}))
    , copy(add("copy", tr("&Copy Picture"), {fx_Ctrl(Qt::Key_C)}))
    , setIn(add("setIn", tr("Set &In Mark"), {Qt::Key_I}))
    , setOut(add("setOut", tr("Set &Out Mark"), {Qt::Key_O}))
    , goToIn(add("goToIn", tr("Go to I&n Mark"), {fx_Shift(Qt::Key_I)}))
    , goToOut(add("goToOut", tr("Go to O&ut Mark"), {fx_Shift(Qt::Key_O)}))
    , clearMarks(add("clearMarks", tr("C&lear Marks"), {fx_Shift(Qt::Key_X)}))
    , play(add("play", tr("&Play"), {Qt::Key_Space, Qt::Key_K, Qt::Key_P}))
    , playBackwards(add("playBackwards", tr("Play &Backwards"), {Qt::Key_J, fx_Shift(Qt::Key_Space)}))
    , previousPicture(add("previousPicture", tr("Pre&vious Picture"), {Qt::Key_Left, Qt::Key_Comma}))
    , nextPicture(add("nextPicture", tr("&Next Picture"), {Qt::Key_Right, Qt::Key_Period, Qt::Key_E}))
    , previousKeyFrame(add("previousKeyFrame", tr("Previous &Key Frame"), {fx_Shift(Qt::Key_Left)}))
    , nextKeyFrame(add("nextKeyFrame", tr("Next Key F&rame"), {fx_Shift(Qt::Key_Right)}))
    , previousBroken(add("previousBroken", tr("Prev&ious Broken Picture"), {fx_Shift(Qt::Key_F8)}))
    , nextBroken(add("nextBroken", tr("Ne&xt Broken Picture"), {Qt::Key_F8}))
    , first(add("first", tr("&First Picture"), {Qt::Key_Home}))
    , last(add("last", tr("L&ast Picture"), {Qt::Key_End}))
    , back1(add("back1", tr("1 Second Bac&k"), {fx_Ctrl(Qt::Key_Left)}))
    , forward1(add("forward1", tr("1 Second &On"), {fx_Ctrl(Qt::Key_Right)}))
    , back10(add("back10", tr("10 Seconds Ba&ck"), {fx_CtrlShift(Qt::Key_Left)}))
    , forward10(add("forward10", tr("10 Seconds O&n"), {fx_CtrlShift(Qt::Key_Right)}))
    , goTo(add("goTo", tr("&Go to Picture or Time…"), {fx_Ctrl(Qt::Key_G)}))
    , loop(add("loop", tr("&Loop"), {Qt::Key_L}))
    , setRate(add("setRate", tr("Frame Rate…"), {fx_CtrlShift(Qt::Key_R)}))
    , slower(add("slower", tr("&Slower"), {Qt::Key_BracketLeft, Qt::Key_Minus}))
    , faster(add("faster", tr("&Faster"), {Qt::Key_BracketRight, Qt::Key_Plus}))
    , normalSpeed(add("normalSpeed", tr("&Normal Speed"), {Qt::Key_Backspace, Qt::Key_Equal}))
    , speeds(new QActionGroup(this))
    , fit(add("fit", tr("&Fit to Window"), {fx_Ctrl(Qt::Key_0)}))
    , actualSize(add("actualSize", tr("&Actual Size"), {fx_Ctrl(Qt::Key_1)}))
    , zoomIn(add("zoomIn", tr("Zoom &In"), {fx_Ctrl(Qt::Key_Plus), fx_Ctrl(Qt::Key_Equal)}))
    , zoomOut(add("zoomOut", tr("Zoom &Out"), {fx_Ctrl(Qt::Key_Minus)}))
    , fullScreen(add("fullScreen", tr("F&ull Screen"), {Qt::Key_F, Qt::Key_F11}))
    , look(*this)
    , keys(add("keys", tr("&Keys"), {Qt::Key_F1}))
    , about(add("about", tr("&About and Licences")))
{
    addReasons();
    loop->setCheckable(true);
    fullScreen->setCheckable(true);
    for (double const speed : {0.0625, 0.125, 0.25, 0.5, 1.0, 2.0, 4.0, 8.0, 16.0}) {
        QString const number = speed < 1.0 ? QStringLiteral("1/%1").arg(1.0 / speed) : QString::number(speed);
        auto* const action = speeds->addAction(tr("%1 ×").arg(number));
        action->setCheckable(true);
        action->setChecked(speed == 1.0);
        action->setData(speed);
    }
}

void CxActions::fill(QMenuBar* bar)
{
    QMenu* const file = bar->addMenu(tr("&File"));
    file->addAction(open);
    recentMenu = file->addMenu(tr("Open R&ecent"));
    file->addActions({nextFile, previousFile, reload, closeFile});
    file->addSeparator();
    file->addActions({openCamera, openSource});
    file->addSeparator();
    file->addActions({record, savePicture, snapshot, snapshotFolder, verify});
    file->addSeparator();
    file->addAction(quit);

    QMenu* const edit = bar->addMenu(tr("&Edit"));
    edit->addAction(copy);
    edit->addSeparator();
    edit->addActions({setIn, setOut, goToIn, goToOut, clearMarks});

    QMenu* const playback = bar->addMenu(tr("&Playback"));
    playback->addActions({play, playBackwards});
    playback->addSeparator();
    playback->addActions({previousPicture, nextPicture, previousKeyFrame, nextKeyFrame, previousBroken,
                          nextBroken, first, last});
    QMenu* const times = playback->addMenu(tr("By &Time"));
    times->addActions({back1, forward1, back10, forward10});
    playback->addAction(goTo);
    playback->addSeparator();
    playback->addActions({loop, setRate});
    QMenu* const speed = playback->addMenu(tr("&Speed"));
    speed->addActions({slower, faster, normalSpeed});
    speed->addSeparator();
    speed->addActions(speeds->actions());

    QMenu* const view = bar->addMenu(tr("&View"));
    view->addActions({fit, actualSize, zoomIn, zoomOut});
    look.fill(view);
    view->addSeparator();
    view->addAction(fullScreen);

    bar->addMenu(tr("&Help"))->addActions({keys, about});
    for (QMenu* const menu : bar->findChildren<QMenu*>())
        menu->setToolTipsVisible(true); // for the reasons, and the folders of recent files
}

void CxActions::updateIcons(QPalette const& palette)
{
    open->setIcon(fx_ShapeIcon(Shape::Folder, palette));
    openCamera->setIcon(fx_ShapeIcon(Shape::Camera, palette));
    openSource->setIcon(fx_ShapeIcon(Shape::Film, palette));
    previousPicture->setIcon(fx_ShapeIcon(Shape::StepBack, palette));
    nextPicture->setIcon(fx_ShapeIcon(Shape::StepForward, palette));
    loop->setIcon(fx_ShapeIcon(Shape::Loop, palette));
    auto const control = [&](char const* themeName, QStyle::StandardPixmap fallback) {
        return fx_ControlIcon(QLatin1String(themeName), fallback, palette);
    };
    first->setIcon(control("media-skip-backward", QStyle::SP_MediaSkipBackward));
    previousKeyFrame->setIcon(control("media-seek-backward", QStyle::SP_MediaSeekBackward));
    nextKeyFrame->setIcon(control("media-seek-forward", QStyle::SP_MediaSeekForward));
    last->setIcon(control("media-skip-forward", QStyle::SP_MediaSkipForward));
    savePicture->setIcon(control("document-save", QStyle::SP_DialogSaveButton));
    m_playIcon = control("media-playback-start", QStyle::SP_MediaPlay);
    m_pauseIcon = control("media-playback-pause", QStyle::SP_MediaPause);
    record->setIcon(fx_RecordIcon());
    showPlaying(m_isPlaying);
}

void CxActions::showPlaying(bool isPlaying)
{
    m_isPlaying = isPlaying;
    play->setText(isPlaying ? tr("&Pause") : tr("&Play"));
    play->setIcon(isPlaying ? m_pauseIcon : m_playIcon);
}

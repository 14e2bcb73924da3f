// Renders one scene of the viewer into a PNG file: viewerScreenshots SCENE RECORDING OUTPUT.png WIDTH [dark].
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

#include "MainWindow.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "PluginHost.h"
#include "PluginMessages.h"
#include "RecordBar.h"
#include "Timeline.h"
#include "Translations.h"
#include "VerifyControl.h"

static void fx_UseDarkPalette()
{
    QPalette dark;
    QColor const window(0x2b, 0x2b, 0x2e), base(0x1f, 0x1f, 0x22), text(0xe6, 0xe6, 0xe8),
        dim(0x80, 0x80, 0x84);
    for (QPalette::ColorRole const role : {QPalette::Window, QPalette::Button, QPalette::AlternateBase})
        dark.setColor(role, window);
    dark.setColor(QPalette::Base, base);
    dark.setColor(QPalette::ToolTipBase, QColor(0x3a, 0x3a, 0x40));
    for (QPalette::ColorRole const role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        dark.setColor(role, text);
    for (QPalette::ColorRole const role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, dim);
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x8f, 0xe0));
    QApplication::setPalette(dark);
}

/// Opens the recording and waits for picture \p number on the screen.
static bool fx_Show(CxMainWindow& window, QString const& recording, int number)
{
    window.openRecording(recording);
    if (!QTest::qWaitFor([&] { return window.player().shownNumber() == 0; }, 20000))
        return false;
    window.player().seek(number);
    return QTest::qWaitFor([&] { return window.player().shownNumber() == number; }, 20000);
}

/// The recording with a piece of its middle overwritten.
static QString fx_DamagedCopy(QString const& recording, QTemporaryDir const& folder)
{
    QString const broken = folder.filePath(QStringLiteral("yesterday.h264"));
    QFile source(recording);
    QFile target(broken);
    if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly))
        return {};
    QByteArray bytes = source.readAll();
    bytes.replace(bytes.size() / 2, bytes.size() / 50, QByteArray(bytes.size() / 50, '\x55'));
    target.write(bytes);
    return broken;
}

/// A recording damaged in its middle, played up to there, with the message's details unfolded.
static QPixmap fx_RenderMessage(CxMainWindow& window, QString const& recording)
{
    QTemporaryDir const folder;
    QString const broken = fx_DamagedCopy(recording, folder);
    if (!fx_Show(window, broken, window.player().info().count / 2))
        return {};
    auto* const bar = window.findChild<CxMessageBar*>();
    window.player().seek(window.player().info().count / 2 - 4);
    window.player().setPlaying(true);
    // Played past the damage to the end, so that the timeline shows where it lies.
    if (!QTest::qWaitFor([&] { return !bar->text().isEmpty() && !window.player().isPlaying(); }, 20000))
        return {};
    bar->findChild<QPushButton*>(QStringLiteral("messageDetails"))->click();
    QTest::qWait(100);
    return window.grab();
}

/// The test camera while it is being recorded.
static QPixmap fx_RenderLive(CxMainWindow& window)
{
    window.openNamed(QStringLiteral("camera:"));
    auto* const view = window.findChild<CxPictureView*>();
    if (!QTest::qWaitFor([&] { return view->picture().number >= 20; }, 20000))
        return {};
    QTemporaryDir const folder;
    SxRecordChoice choice;
    choice.request.outputFile = folder.filePath(QStringLiteral("gate-3.h264"));
    window.startRecording(choice);
    QTest::qWait(1500);
    QPixmap const picture = window.grab();
    emit window.findChild<CxRecordBar*>()->stopRequested();
    QTest::qWait(500);
    return picture;
}

/// The save dialog with its advanced rows.
static QPixmap fx_RenderDialog(CxMainWindow& window)
{
    window.findChild<QAction*>(QStringLiteral("record"))->trigger();
    auto* const dialog = window.findChild<QDialog*>(QStringLiteral("recordDialog"));
    dialog->findChild<QCheckBox*>(QStringLiteral("chkH264Advanced"))->click();
    dialog->findChild<QLineEdit*>(QStringLiteral("outputFile"))
        ->setText(QStringLiteral("/recordings/gate-3_monday.h264"));
    QTest::qWait(100);
    return dialog->grab();
}

/// A recording damaged in its middle, verified.
static QPixmap fx_RenderVerified(CxMainWindow& window, QString const& recording)
{
    QTemporaryDir const folder;
    QString const broken = fx_DamagedCopy(recording, folder);
    if (!fx_Show(window, broken, 20))
        return {};
    auto* const control = window.findChild<CxVerifyControl*>();
    control->setProgram(QApplication::applicationDirPath() + QStringLiteral("/minihost"));
    window.findChild<QAction*>(QStringLiteral("verify"))->trigger();
    QTest::qWait(1500);
    if (!QTest::qWaitFor([&] { return !control->isRunning(); }, 60000))
        return {};
    QTest::qWait(100);
    return window.grab();
}

/// A part marked around the picture shown.
static QPixmap fx_RenderMarks(CxMainWindow& window)
{
    std::pair<int, char const*> const marks[] = {{90, "setIn"}, {210, "setOut"}, {150, "fit"}};
    for (auto const& mark : marks) {
        window.player().seek(mark.first);
        if (!QTest::qWaitFor([&] { return window.player().shownNumber() == mark.first; }, 20000))
            return {};
        window.findChild<QAction*>(QLatin1String(mark.second))->trigger();
    }
    return window.grab();
}

/// What \p scene is about; for any other name the main window at picture 150.
static QPixmap fx_Render(CxMainWindow& window, QString const& scene, QString const& recording)
{
    if (scene == QLatin1String("start"))
        return window.grab();
    if (scene == QLatin1String("message"))
        return fx_RenderMessage(window, recording);
    if (scene == QLatin1String("verified"))
        return fx_RenderVerified(window, recording);
    if (scene == QLatin1String("live"))
        return fx_RenderLive(window);
    if (!fx_Show(window, recording, 150))
        return {};
    if (scene == QLatin1String("dialog"))
        return fx_RenderDialog(window);
    if (scene == QLatin1String("rate")) {
        window.findChild<QAction*>(QStringLiteral("setRate"))->trigger();
        QTest::qWait(100);
        return window.findChild<QDialog*>(QStringLiteral("rateDialog"))->grab();
    }
    if (scene == QLatin1String("marks"))
        return fx_RenderMarks(window);
    auto* const view = window.findChild<CxPictureView*>();
    if (scene == QLatin1String("levels")) {
        window.findChild<QAction*>(QStringLiteral("levels"))->trigger();
        window.findChild<QAction*>(QStringLiteral("markClipping"))->trigger();
    }
    if (scene == QLatin1String("info"))
        window.findChild<QAction*>(QStringLiteral("info"))->trigger();
    if (scene == QLatin1String("thumbnail")) {
        auto* const timeline = window.findChild<CxTimeline*>();
        QTest::mouseMove(timeline, QPoint(timeline->width() / 3, 8));
        QTest::qWait(2000);
        QRect const place = window.geometry();
        return window.screen()->grabWindow(0, place.x(), place.y(), place.width(), place.height());
    }
    if (scene == QLatin1String("overview"))
        window.findChild<QAction*>(QStringLiteral("overview"))->trigger();
    if (scene == QLatin1String("measure"))
        window.findChild<QAction*>(QStringLiteral("measure"))->trigger();
    QTest::mouseMove(view, QPoint(view->width() / 2, view->height() / 3));
    QTest::qWait(100);
    return window.grab();
}

int main(int argc, char** argv)
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QStringList const arguments = QApplication::arguments();
    if (arguments.size() < 5)
        return 2;
    if (arguments.value(5) == QLatin1String("dark"))
        fx_UseDarkPalette();
    QTemporaryDir const settings; // nobody's own
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    QApplication::setOrganizationName(QStringLiteral("tarn"));
    QApplication::setApplicationName(QStringLiteral("minihost"));

    CxPluginMessages const messages;
    CxPluginHost plugins;
    QString error;
    if (!plugins.load({}, error)) {
        QTextStream(stderr) << error << Qt::endl;
        return 1;
    }
    fx_InstallTranslations(QLocale(), plugins.fileNames());
    CxMainWindow window(plugins);
    int const width = arguments[4].toInt();
    window.resize(width, width * 11 / 16);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    return fx_Render(window, arguments[1], arguments[2]).save(arguments[3]) ? 0 : 1;
}

#include "PlayControl.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

#include "Actions.h"
#include "GoToDialog.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "StreamKind.h"
#include "Timeline.h"
#include "TransportBar.h"

CxPlayControl::CxPlayControl(CxActions& actions, CxPictureView& view, CxTransportBar& transport,
                             CxMessageBar& messages, QWidget& window)
    : m_actions(actions)
    , m_view(view)
    , m_transport(transport)
    , m_messages(messages)
    , m_window(window)
    , m_marks(actions, m_player, *transport.timeline())
    , m_speed(actions, m_player)
{
    connectPlayer();
    connectActions();
    connectTimeline();
}

void CxPlayControl::connectPlayer()
{
    connect(&m_player, &CxPlayer::opened, this, &CxPlayControl::takeOpened);
    connect(&m_player, &CxPlayer::openFailed, this, &CxPlayControl::takeOpenFailure);
    connect(&m_player, &CxPlayer::pictureFailed, this, &CxPlayControl::takePictureFailure);
    connect(&m_player, &CxPlayer::shown, this, &CxPlayControl::takePicture);
    connect(&m_player, &CxPlayer::playingChanged, &m_actions, &CxActions::showPlaying);
}

void CxPlayControl::connectActions()
{
    auto const on = [this](QAction* action, auto&& what) {
        connect(action, &QAction::triggered, this, what);
    };
    on(m_actions.previousPicture, [this] { m_player.step(-1); });
    on(m_actions.nextPicture, [this] { m_player.step(1); });
    on(m_actions.previousKeyFrame, [this] { m_player.toPreviousKeyFrame(); });
    on(m_actions.nextKeyFrame, [this] { m_player.toNextKeyFrame(); });
    on(m_actions.previousBroken, [this] { toPreviousBroken(); });
    on(m_actions.nextBroken, [this] { toNextBroken(); });
    on(m_actions.first, [this] { m_player.seek(0); });
    on(m_actions.last, [this] { m_player.seek(m_player.info().count - 1); });
    on(m_actions.back1, [this] { m_player.skip(-1.0); });
    on(m_actions.forward1, [this] { m_player.skip(1.0); });
    on(m_actions.back10, [this] { m_player.skip(-10.0); });
    on(m_actions.forward10, [this] { m_player.skip(10.0); });
    on(m_actions.playBackwards, [this] { togglePlaying(true); });
    on(m_actions.goTo, [this] { askForPlace(); });
}

void CxPlayControl::connectTimeline()
{
    CxTimeline* const timeline = m_transport.timeline();
    connect(timeline, &QAbstractSlider::valueChanged, &m_player, &CxPlayer::seek);
    connect(timeline, &QAbstractSlider::sliderPressed, this, [this] {
        m_resumesAfterDrag = m_player.isPlaying();
        m_player.setPlaying(false);
    });
    connect(timeline, &QAbstractSlider::sliderReleased, this,
            [this] { m_player.setPlaying(m_resumesAfterDrag); });
}

void CxPlayControl::setEnabled(bool isEnabled)
{
    CxActions const& a = m_actions;
    for (QAction* const action :
         {a.playBackwards, a.previousPicture, a.nextPicture, a.previousKeyFrame, a.nextKeyFrame, a.first,
          a.last, a.back1, a.forward1, a.back10, a.forward10, a.goTo, a.setRate})
        action->setEnabled(isEnabled);
    m_speed.setEnabled(isEnabled);
    updateBrokenActions();
    m_transport.timeline()->setEnabled(isEnabled);
    m_marks.updateActions(isEnabled);
}

void CxPlayControl::togglePlaying(bool isBackwards)
{
    bool const isPlaying = m_player.isPlaying();
    if (!isPlaying)
        m_player.setBackwards(isBackwards);
    m_player.setPlaying(!isPlaying);
}

void CxPlayControl::open(QString const& fileName) { m_player.open(fileName); }

void CxPlayControl::close()
{
    m_player.close();
    m_marks.clear();
    m_transport.setRecording({});
    m_broken.clear();
    emit closed();
}

void CxPlayControl::setRate(SxPictureRate const& rate)
{
    m_player.setRate(rate);
    m_transport.setRate(m_player.info().fps);
    emit rateChanged(m_player.info());
}

void CxPlayControl::addBroken(int first, int last)
{
    for (int number = first; number <= last; ++number) {
        m_broken.insert(number);
        m_transport.timeline()->markBroken(number);
    }
    updateBrokenActions();
    emit brokenFound(static_cast<int>(m_broken.size()));
}

void CxPlayControl::updateBrokenActions()
{
    for (QAction* const action : {m_actions.previousBroken, m_actions.nextBroken})
        action->setEnabled(m_actions.goTo->isEnabled() && !m_broken.empty());
}

/// To the first of those behind that follow a good one: broken pictures mostly come in rows.
void CxPlayControl::toNextBroken()
{
    int const here = m_player.reachedNumber();
    for (auto it = m_broken.upper_bound(here); it != m_broken.end(); ++it) {
        if (m_broken.count(*it - 1) == 0) {
            m_player.seek(*it);
            return;
        }
    }
}

void CxPlayControl::toPreviousBroken()
{
    auto it = m_broken.lower_bound(m_player.reachedNumber());
    while (it != m_broken.begin()) {
        --it;
        if (m_broken.count(*it - 1) == 0) {
            m_player.seek(*it);
            return;
        }
    }
}

void CxPlayControl::askForPlace()
{
    SxOpenedRecording const& info = m_player.info();
    auto* const dialog =
        new CxGoToDialog(std::max(m_player.reachedNumber(), 0), info.count - 1, info.fps, &m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &CxGoToDialog::chosen, &m_player, &CxPlayer::seek);
    dialog->open();
}

void CxPlayControl::takeOpened(SxOpenedRecording const& info)
{
    m_broken.clear();
    m_isAnyShown = false;
    m_transport.setRecording(info);
    m_marks.clear();
    emit opened(info);
    if (!info.sidecar.warning.isEmpty())
        m_messages.showMessage(
            CxMessageBar::Kind::Warning,
            tr("The notes beside “%1” do not belong to it or are damaged, so its speed is assumed.")
                .arg(QFileInfo(info.fileName).fileName()),
            {info.sidecar.warning});
}

/// Why the plug-in took what lies in the file for no recording.
static QString fx_WhyNoRecording(QString const& fileName)
{
    QString const name = QFileInfo(fileName).fileName();
    QFile file(fileName);
    QByteArray const start = file.open(QIODevice::ReadOnly) ? file.read(6) : QByteArray();
    if (file.error() != QFileDevice::NoError)
        return CxPlayControl::tr("“%1” cannot be read: %2.").arg(name, file.errorString());
    auto const code = start.indexOf(QByteArray("\0\0\1", 3));
    if (code < 0 || code > 1)
        return CxPlayControl::tr(
                   "“%1” is not an H.264 recording. If it is a video of another kind, open it with "
                   "“Open Video, Stream or Device”.")
            .arg(name);
    SxStreamKind const kind = fx_StreamKindOf(fileName);
    if (kind.isForeign && kind.codec == SxStreamKind::Codec::H264)
        return CxPlayControl::tr(
                   "“%1” is not damaged, but H.264 video of another encoder, whose pictures cannot be had by "
                   "their numbers. Open it with “Open Video, Stream or Device”.")
            .arg(name);
    if (kind.isForeign)
        return CxPlayControl::tr(
                   "“%1” is not damaged, but %2 video. Open it with “Open Video, Stream or Device”.")
            .arg(name, kind.codecName());
    return CxPlayControl::tr(
               "The beginning of “%1” is missing or damaged: the sequence parameter set there, which "
               "holds the size of the pictures, cannot be used.")
        .arg(name);
}

/// Why a file did not open, as far as the file itself tells.
static QString fx_WhyNotOpened(QString const& fileName)
{
    QFileInfo const info(fileName);
    QString const name = info.fileName();
    if (!info.exists())
        return CxPlayControl::tr("“%1” does not exist.").arg(QDir::toNativeSeparators(fileName));
    if (info.isDir())
        return CxPlayControl::tr("“%1” is a folder, not a recording.").arg(name);
    if (!info.isReadable())
        return CxPlayControl::tr("You are not allowed to read “%1”.").arg(name);
    if (info.size() == 0)
        return CxPlayControl::tr("“%1” is empty.").arg(name);
    return fx_WhyNoRecording(fileName);
}

void CxPlayControl::takeOpenFailure(QString const& fileName, QString const& error)
{
    m_messages.showMessage(CxMessageBar::Kind::Warning, fx_WhyNotOpened(fileName), {error});
    emit openFailed();
}

void CxPlayControl::takePicture(SxShownPicture const& picture)
{
    m_isAnyShown = true;
    m_view.setPicture(picture);
    m_transport.showNumber(picture.number);
    bool const isOver = !m_isMessageOfPlaying || !m_player.isPlaying();
    if (isOver && !m_pictureMessage.isEmpty()) {
        if (m_messages.text() == m_pictureMessage) // and none that came later
            m_messages.dismiss();
        m_pictureMessage.clear();
    }
}

/// Behind a broken picture the others of its group may be broken, too.
QString CxPlayControl::whereToGoOn(int number) const
{
    QList<int> const& keys = m_player.info().keyFrames;
    auto const next = std::upper_bound(keys.begin(), keys.end(), number);
    return next == keys.end()
               ? tr("Pictures before it may still be fine.")
               : tr("Pictures may be fine again from the next key frame on, picture %1.").arg(*next);
}

/// Says what is wrong with the picture; while playing only for the first, since others soon follow.
void CxPlayControl::takePictureFailure(int number, QString const& error)
{
    bool const isFirst = m_broken.empty();
    m_broken.insert(number);
    QString const text =
        (m_isAnyShown
             ? tr("Picture %1 cannot be shown: the recording is damaged there.")
             : tr("Picture %1 cannot be shown: the recording is damaged there, or of a kind that the "
                  "decoder does not support."))
            .arg(number);
    m_view.setNotice(text);
    m_transport.showNumber(number);
    m_transport.timeline()->markBroken(number);
    updateBrokenActions();
    if (isFirst || !m_player.isPlaying()) {
        m_isMessageOfPlaying = m_player.isPlaying();
        m_pictureMessage =
            text + QLatin1Char(' ') +
            (m_isMessageOfPlaying ? tr("Playing goes on; the timeline marks broken pictures red.")
                                  : whereToGoOn(number));
        m_messages.showMessage(CxMessageBar::Kind::Warning, m_pictureMessage, {error});
    }
    emit brokenFound(static_cast<int>(m_broken.size()));
    emit pictureFailed();
}

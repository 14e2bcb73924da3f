#include "PlayControl.h"

#include <QActionGroup>
#include <QDir>
#include <QFileInfo>

#include "Actions.h"
#include "GoToDialog.h"
#include "MessageBar.h"
#include "PictureView.h"
#include "Timeline.h"
#include "TransportBar.h"

CxPlayControl::CxPlayControl(CxActions& actions, CxPictureView& view, CxTransportBar& transport,
                             CxMessageBar& messages, QWidget& window)
    : m_actions(actions)
    , m_view(view)
    , m_transport(transport)
    , m_messages(messages)
    , m_window(window)
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
    on(m_actions.first, [this] { m_player.seek(0); });
    on(m_actions.last, [this] { m_player.seek(m_player.info().count - 1); });
    on(m_actions.goTo, [this] { askForNumber(); });
    on(m_actions.loop, [this](bool isOn) { m_player.setLooping(isOn); });
    connect(m_actions.speeds, &QActionGroup::triggered, this,
            [this](QAction* action) { m_player.setSpeed(action->data().toDouble()); });
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

void CxPlayControl::open(QString const& fileName) { m_player.open(fileName); }

void CxPlayControl::close()
{
    m_player.close();
    m_transport.setRecording({});
    m_broken.clear();
}

void CxPlayControl::askForNumber()
{
    auto* const dialog =
        new CxGoToDialog(std::max(m_player.shownNumber(), 0), m_player.info().count - 1, &m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &CxGoToDialog::chosen, &m_player, &CxPlayer::seek);
    dialog->open();
}

void CxPlayControl::takeOpened(SxOpenedRecording const& info)
{
    m_broken.clear();
    m_transport.setRecording(info);
    emit opened(info);
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
    return CxPlayControl::tr("“%1” is not an H.264 recording, or its beginning is damaged.").arg(name);
}

void CxPlayControl::takeOpenFailure(QString const& fileName, QString const& error)
{
    m_messages.showMessage(CxMessageBar::Kind::Warning, fx_WhyNotOpened(fileName), {error});
    emit openFailed();
}

void CxPlayControl::takePicture(SxShownPicture const& picture)
{
    m_view.setPicture(picture);
    m_transport.showNumber(picture.number);
    bool const isOver = !m_isMessageOfPlaying || !m_player.isPlaying();
    if (isOver && !m_pictureMessage.isEmpty()) {
        if (m_messages.text() == m_pictureMessage) // and none that came later
            m_messages.dismiss();
        m_pictureMessage.clear();
    }
}

/// Says what is wrong with the picture; while playing only for the first, since others soon follow.
void CxPlayControl::takePictureFailure(int number, QString const& error)
{
    bool const isFirst = m_broken.isEmpty();
    m_broken.insert(number);
    QString const text = tr("Picture %1 cannot be shown: the recording is damaged there.").arg(number);
    m_view.setNotice(text);
    m_transport.showNumber(number);
    m_transport.timeline()->markBroken(number);
    if (isFirst || !m_player.isPlaying()) {
        m_isMessageOfPlaying = m_player.isPlaying();
        m_pictureMessage =
            text + QLatin1Char(' ') +
            (m_isMessageOfPlaying ? tr("Playing goes on; the timeline marks broken pictures red.")
                                  : tr("Other pictures may still be fine."));
        m_messages.showMessage(CxMessageBar::Kind::Warning, m_pictureMessage, {error});
    }
    emit brokenFound(static_cast<int>(m_broken.size()));
    emit pictureFailed();
}

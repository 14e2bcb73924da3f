#include "InfoOverlay.h"

#include <QAction>
#include <QFileInfo>
#include <QLocale>
#include <algorithm>

#include "LiveControl.h"
#include "PictureView.h"
#include "PlayControl.h"
#include "TimeCode.h"

static constexpr int kDistance = 12; // from the view's corner

CxInfoOverlay::CxInfoOverlay(QAction* action, CxPictureView& view, CxPlayControl& play,
                             CxLiveControl const& live)
    : QLabel(&view)
    , m_view(view)
    , m_play(play)
    , m_live(live)
{
    setObjectName(QStringLiteral("infoOverlay"));
    setTextFormat(Qt::PlainText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    // Read over any picture, whatever the desktop's colours.
    setStyleSheet(QStringLiteral("background: rgba(0, 0, 0, 170); color: white; padding: 8px;"));
    move(kDistance, kDistance);
    hide();
    connect(action, &QAction::toggled, this, [this](bool isOn) {
        setVisible(isOn);
        showInfo();
    });
    connect(&view, &CxPictureView::pictureShown, this, &CxInfoOverlay::showInfo);
    connect(&play, &CxPlayControl::pictureFailed, this, &CxInfoOverlay::showInfo);
}

QString CxInfoOverlay::formatLine(QString const& rate) const
{
    SxPicBufInfo const& format = *m_view.picture().data->picBuf();
    QString const kind =
        format.components == 1 ? tr("%1 × %2, %3-bit grey, %4") : tr("%1 × %2, %3-bit colour, %4");
    return kind.arg(QString::number(format.width), QString::number(format.height),
                    QString::number(m_view.picture().bits), rate);
}

QStringList CxInfoOverlay::recordingLines() const
{
    SxOpenedRecording const& info = m_play.player().info();
    bool const isNoted = info.sidecar.sidecar && info.sidecar.sidecar->rate.isKnown();
    QString const rate = locale().toString(info.fps, 'g', 5);
    QStringList lines{QFileInfo(info.fileName).fileName(), info.codec};
    if (!m_view.picture().data)
        return lines;
    lines.append(formatLine(isNoted ? tr("%1 a second").arg(rate) : tr("%1 a second (assumed)").arg(rate)));
    int const number = m_view.picture().number;
    bool const isKey = std::binary_search(info.keyFrames.begin(), info.keyFrames.end(), number);
    QString const bytes = locale().toString(info.bytes.value(number));
    QString const numbers[] = {QString::number(number), QString::number(info.count - 1)};
    lines.append((isKey ? tr("Picture %1 of 0–%2, key frame, %3 bytes")
                        : tr("Picture %1 of 0–%2, predicted, %3 bytes"))
                     .arg(numbers[0], numbers[1], bytes));
    lines.append(fx_TimeCode(number, info.fps));
    return lines;
}

QStringList CxInfoOverlay::liveLines() const
{
    QStringList lines{m_live.name()};
    if (!m_view.picture().data)
        return lines;
    quint64 const time = m_view.picture().data->picBuf()->timestamp;
    lines.append(formatLine(tr("live")));
    lines.append(tr("Picture %1").arg(m_view.picture().number));
    lines.append(fx_TimeCode(static_cast<int>(time / 1000), 1000.0));
    return lines;
}

void CxInfoOverlay::showInfo()
{
    if (isHidden())
        return;
    bool const isOpen = m_live.isOpen() || m_play.player().isOpen();
    setText(isOpen ? (m_live.isOpen() ? liveLines() : recordingLines()).join(QLatin1Char('\n')) : QString());
    adjustSize();
}

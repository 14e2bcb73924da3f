#include "StatusBar.h"

#include <QLabel>
#include <QLocale>

#include "PictureView.h"

static constexpr int kConfirmation = 6000; // milliseconds

CxStatusBar::CxStatusBar(CxPictureView const& view, QWidget* parent)
    : QStatusBar(parent)
    , m_view(view)
    , m_pixel(new QLabel(this))
    , m_format(new QLabel(this))
    , m_zoom(new QLabel(this))
    , m_rate(new QLabel(this))
    , m_broken(new QLabel(this))
    , m_notes(new QLabel(this))
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // its texts may not widen the window
    m_pixel->setObjectName(QStringLiteral("pixel"));
    m_format->setObjectName(QStringLiteral("format"));
    m_zoom->setObjectName(QStringLiteral("zoom"));
    m_rate->setObjectName(QStringLiteral("rate"));
    m_broken->setObjectName(QStringLiteral("broken"));
    m_notes->setObjectName(QStringLiteral("notes"));
    m_broken->setToolTip(tr("Pictures found broken so far; the timeline marks them red"));
    m_pixel->setToolTip(tr("Place and value of the pixel under the mouse"));
    m_format->setToolTip(tr("Size of the picture"));
    m_zoom->setToolTip(tr("Zoom: screen pixels for each pixel of the picture"));
    m_rate->setToolTip(tr("Pictures really shown each second"));
    m_pixel->setMinimumWidth(1); // gives way to the texts beside it
    addWidget(m_pixel, 1);
    for (QLabel* const label : {m_broken, m_rate, m_notes, m_format, m_zoom})
        addPermanentWidget(label);

    connect(this, &QStatusBar::messageChanged, this, [this](QString const& text) {
        for (QLabel* const label : {m_notes, m_format})
            label->setVisible(text.isEmpty()); // they leave a confirmation its room
    });
    connect(&view, &CxPictureView::pixelPointed, this, &CxStatusBar::showPixel);
    connect(&view, &CxPictureView::pictureShown, this, &CxStatusBar::showFormat);
    connect(&view, &CxPictureView::zoomChanged, this, &CxStatusBar::showZoom);
}

void CxStatusBar::clearTexts()
{
    for (QLabel* const label : {m_pixel, m_format, m_zoom, m_rate, m_broken, m_notes})
        label->clear();
}

void CxStatusBar::showRate(double picturesPerSecond)
{
    m_rate->setText(picturesPerSecond > 0.0
                        ? tr("%1 pictures/s").arg(locale().toString(picturesPerSecond, 'f', 1))
                        : QString());
}

void CxStatusBar::showBroken(int pictures)
{
    m_broken->setText(tr("%n broken picture(s)", nullptr, pictures));
}

void CxStatusBar::confirm(QString const& text) { showMessage(text, kConfirmation); }

void CxStatusBar::showNotes(SxOpenedRecording const& recording)
{
    std::optional<SxSidecar> const& sidecar = recording.sidecar.sidecar;
    bool const isNoted = recording.rate.isKnown();
    QStringList notes{(isNoted ? tr("%1 a second") : tr("%1 a second (assumed)"))
                          .arg(locale().toString(recording.fps, 'g', 5))};
    if (sidecar && sidecar->rotation != 0)
        notes.append(tr("turned by %1°").arg(sidecar->rotation));
    if (sidecar && sidecar->skippedCount > 0)
        notes.append(tr("%1 skipped").arg(sidecar->skippedCount));
    m_notes->setText(notes.join(QStringLiteral(", ")));
    m_notes->setToolTip(
        sidecar || isNoted
            ? tr("At which rate the pictures were taken, how they are turned, and how many of them "
                 "the encoder skipped, as noted when they were recorded")
            : tr("At which rate the pictures are shown; nothing tells at which they were taken"));
}

void CxStatusBar::showPixel(QPoint const& position)
{
    SxPixel const pixel = fx_Pixel(m_view.picture(), position);
    if (pixel.components == 0) {
        m_pixel->clear();
        return;
    }
    QString const value = pixel.components == 1 ? tr("grey %1").arg(pixel.samples[0])
                                                : tr("red %1, green %2, blue %3")
                                                      .arg(pixel.samples[0])
                                                      .arg(pixel.samples[1])
                                                      .arg(pixel.samples[2]);
    m_pixel->setText(tr("(%1, %2): %3").arg(position.x()).arg(position.y()).arg(value));
}

void CxStatusBar::showFormat(SxShownPicture const& picture)
{
    SxPicBufInfo const& format = *picture.data->picBuf();
    QString const kind = format.components == 1 ? tr("%1 × %2, %3-bit grey") : tr("%1 × %2, %3-bit colour");
    m_format->setText(kind.arg(format.width).arg(format.height).arg(picture.bits));
}

void CxStatusBar::showZoom(double zoom)
{
    if (m_view.picture().image.isNull()) {
        m_zoom->clear();
        return;
    }
    QString const percent = tr("%1 %").arg(locale().toString(zoom * 100.0, 'f', zoom < 0.1 ? 1 : 0));
    m_zoom->setText(m_view.isFitted() ? tr("%1, fitted").arg(percent) : percent);
}

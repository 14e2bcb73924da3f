#include "ThumbnailControl.h"

#include <QLabel>

#include "Player.h"

static constexpr int kRest = 80;                    // milliseconds; pictures passed by are not decoded
static constexpr int kSide = 192;                   // the longer one
static constexpr qint64 kMemory = qint64{32} << 20; // bytes, of pictures kept to come back to

CxThumbnailControl::CxThumbnailControl(CxPlayer& player, QWidget& window)
    : m_player(player)
    , m_picture(new QLabel(&window, Qt::ToolTip))
{
    m_picture->setObjectName(QStringLiteral("thumbnail"));
    m_picture->setStyleSheet(
        QStringLiteral("border: 1px solid white; background: black")); // apart from the picture
    m_picture->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_rest.setSingleShot(true);
    m_rest.setInterval(kRest);
    connect(&m_rest, &QTimer::timeout, this, &CxThumbnailControl::request);
    connect(&player, &CxPlayer::playingChanged, this, [this] { point(-1, {}); });
    connect(&player, &CxPlayer::opened, this, [this] {
        point(-1, {});
        m_fileName.clear(); // it may have changed, under the same name
    });
}

CxThumbnailControl::~CxThumbnailControl() = default;

void CxThumbnailControl::point(int number, QPoint const& bottom)
{
    m_number = number;
    m_bottom = bottom;
    if (number >= 0 && !m_player.isPlaying()) {
        m_rest.start();
        return;
    }
    m_rest.stop();
    m_picture->hide();
}

void CxThumbnailControl::request()
{
    if (!m_player.isOpen())
        return;
    if (!m_reader) {
        m_reader = std::make_unique<CxPictureReader>(kMemory);
        connect(m_reader.get(), &CxPictureReader::pictureRead, this, &CxThumbnailControl::takePicture);
        connect(m_reader.get(), &CxPictureReader::pictureFailed, m_picture, &QWidget::hide);
    }
    QString const fileName = m_player.info().fileName;
    if (m_fileName != fileName)
        m_reader->open(std::make_unique<CxRecordingReader>(), fileName);
    m_fileName = fileName;
    m_ticket = m_reader->request(m_number);
}

void CxThumbnailControl::takePicture(int ticket, SxShownPicture const& picture)
{
    if (ticket != m_ticket || m_number < 0 || m_player.isPlaying())
        return;
    double const ratio = m_picture->devicePixelRatioF();
    int const side = static_cast<int>(kSide * ratio);
    QImage small = picture.image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                       .transformed(QTransform().rotate(picture.rotation));
    QSize const size = small.size() / ratio;
    small.setDevicePixelRatio(ratio);
    m_picture->setPixmap(QPixmap::fromImage(small));
    m_picture->resize(size + QSize(2, 2));
    m_picture->move(m_bottom.x() - size.width() / 2, m_bottom.y() - size.height());
    m_picture->show();
}

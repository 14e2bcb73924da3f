#include "ContactSheet.h"

#include <algorithm>

#include "CxPicBufAPI.h"
#include "LedDigits.h"
#include "PictureFormat.h"

static constexpr int kWidestTile = 320;
static constexpr int kGap = 8;             // around every tile
static constexpr int kDigitHeight = 14;    // of the numbers
static constexpr int kLongestSide = 65500; // JPEG's limit, and a size that programs still open
static constexpr qint64 kMostPixels = 100 * 1000 * 1000;

CxContactSheet::CxContactSheet(int columns, int count)
    : m_columns(std::min(columns, count))
    , m_count(count)
{}

/// With the first picture at hand: makes the empty sheet.
bool CxContactSheet::begin(SxPicBuf const& picture)
{
    m_tileWidth = static_cast<int>(std::min<quint32>(picture.width, kWidestTile));
    qint64 const tileHeight = std::max<qint64>(qint64(picture.height) * m_tileWidth / picture.width, 1);
    qint64 const rows = (m_count + m_columns - 1) / m_columns;
    qint64 const width = kGap + qint64(m_columns) * (m_tileWidth + kGap);
    qint64 const height = kGap + rows * (tileHeight + kDigitHeight + 2 * kGap);
    if (width > kLongestSide || height > kLongestSide || width * height > kMostPixels)
        return false;
    m_tileHeight = static_cast<int>(tileHeight);
    m_canvas.width = static_cast<int>(width);
    m_canvas.height = static_cast<int>(height);
    SxColour48 const background = fx_Rgb(24, 26, 30);
    m_canvas.samples.resize(static_cast<size_t>(width * height * 3));
    for (size_t i = 0; i < m_canvas.samples.size(); i += 3) {
        m_canvas.samples[i] = background.blue;
        m_canvas.samples[i + 1] = background.green;
        m_canvas.samples[i + 2] = background.red;
    }
    return true;
}

/// A part of the canvas as a picture, whose pixels stay the canvas'.
SxPicBuf CxContactSheet::window(int x, int y, int width, int height)
{
    SxPicBuf picture;
    picture.setPicFormat(fx_PackedFormat(static_cast<quint32>(width), static_cast<quint32>(height), 3, 16));
    picture.pitch = static_cast<quint32>(m_canvas.width) * 3 * sizeof(quint16);
    picture.data = reinterpret_cast<unsigned char*>(m_canvas.pixel(x, y));
    return picture;
}

bool CxContactSheet::add(int number, SxPicBuf const& picture)
{
    if (m_added == 0 && !begin(picture))
        return false;
    int const x = kGap + m_added % m_columns * (m_tileWidth + kGap);
    int const y = kGap + m_added / m_columns * (m_tileHeight + kDigitHeight + 2 * kGap);
    ++m_added;
    SxPicBuf tile = window(x, y, m_tileWidth, m_tileHeight);
    if (!CxPicBufAPI::Resize(picture, tile))
        return false;
    fx_DrawLed(m_canvas, x, y + m_tileHeight + kGap / 2, kDigitHeight, QByteArray::number(number),
               fx_Rgb(255, 210, 90));
    return true;
}

bool CxContactSheet::finish(SxPicBuf& sheet)
{
    if (m_added == 0)
        return false;
    auto const width = static_cast<quint32>(m_canvas.width);
    auto const height = static_cast<quint32>(m_canvas.height);
    return CxPicBufAPI::AllocPicBufFromHeap(sheet, fx_PackedFormat(width, height, 4, 8), false, 0) &&
           CxPicBufAPI::Resize(window(0, 0, m_canvas.width, m_canvas.height), sheet);
}

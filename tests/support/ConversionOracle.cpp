#include "support/ConversionOracle.h"

namespace {

class CxSource
{
public:
    explicit CxSource(SxPicBuf const& picture)
        : m_picture(picture)
    {}

    /// The pixel's bytes lie in the picture's memory as a whole.
    bool holds(quint64 row, quint64 x) const
    {
        quint64 const end = row * m_picture.pitch + (x + 1) * pixelBytes();
        return end <= quint64(m_picture.pitch) * m_picture.height;
    }

    /// The eight bits of a sample that count. A pixel beyond the memory repeats the row's last.
    int sample(quint64 row, quint64 x, unsigned component) const
    {
        while (!holds(row, x))
            --x;
        uchar const* const at =
            m_picture.data + row * m_picture.pitch + x * pixelBytes() + component * sampleBytes();
        if (sampleBytes() == 1)
            return at[0];
        unsigned const word = at[0] + 256u * at[1];
        return static_cast<int>((word >> ((m_picture.bitsPerSample - 8) % 32)) & 255);
    }

    SxColour colour(quint64 row, quint64 x) const
    {
        return {sample(row, x, 0), sample(row, x, 1), sample(row, x, 2)};
    }

private:
    unsigned sampleBytes() const { return m_picture.sampleType == 4 ? 2 : 1; }
    unsigned pixelBytes() const { return m_picture.components * sampleBytes(); }

    SxPicBuf const& m_picture;
};

class CxPlanes
{
public:
    explicit CxPlanes(std::vector<uchar>& bytes)
        : m_bytes(bytes)
    {}

    void write(quint64 offset, uchar value)
    {
        if (offset < m_bytes.size())
            m_bytes[offset] = value;
    }

private:
    std::vector<uchar>& m_bytes;
};

} // namespace

uchar fx_OracleY(SxColour c)
{
    unsigned const sum = 114u * unsigned(c.blue) + 587u * unsigned(c.green) + 299u * unsigned(c.red);
    return uchar(sum / 1000);
}

uchar fx_OracleU(SxColour c) { return uchar((500 * c.blue - 331 * c.green - 169 * c.red) / 1000 + 128); }

uchar fx_OracleV(SxColour c) { return uchar((500 * c.red - 419 * c.green - 81 * c.blue) / 1000 + 128); }

bool fx_OracleToIYUV(SxPicBuf const& source, std::vector<uchar>& bytes)
{
    quint64 const width = source.width, height = source.height;
    if ((width + width / 2) * height > bytes.size())
        return false;

    CxSource const pixels(source);
    CxPlanes planes(bytes);
    quint64 const u = width * height, v = u + width * height / 4;
    if (source.components == 1) {
        for (quint64 row = 0; row < height; ++row)
            for (quint64 x = 0; x < width; ++x)
                planes.write(row * width + x, uchar(pixels.sample(row, x, 0)));
        for (quint64 i = 0; i < 2 * (width * height / 4); ++i)
            planes.write(u + i, 128);
        return true;
    }

    for (quint64 row = 0; row < height; ++row) {
        if (row % 2 == 1) {
            for (quint64 x = 0; x < width; ++x)
                planes.write(row * width + x, fx_OracleY(pixels.colour(row, x)));
            continue;
        }
        for (quint64 pair = 0; 2 * pair < width; ++pair) {
            SxColour const left = pixels.colour(row, 2 * pair);
            planes.write(row * width + 2 * pair, fx_OracleY(left));
            planes.write(u + row / 2 * (width / 2) + pair, fx_OracleU(left));
            planes.write(v + row / 2 * (width / 2) + pair, fx_OracleV(left));
            planes.write(row * width + 2 * pair + 1, fx_OracleY(pixels.colour(row, 2 * pair + 1)));
        }
    }
    return true;
}

SxPlanes fx_ExpectedPlanes(SxPicBuf const& picture)
{
    size_t const pixels = size_t(picture.width) * picture.height;
    std::vector<uchar> bytes(pixels * 3 / 2);
    fx_OracleToIYUV(picture, bytes);
    auto const u = bytes.begin() + std::ptrdiff_t(pixels), v = u + std::ptrdiff_t(pixels / 4);
    return {{bytes.begin(), u}, {u, v}, {v, bytes.end()}};
}

static uchar fx_Clamped(int value) { return uchar(value > 255 ? 255 : value < 0 ? 0 : value); }

void fx_OracleToRGB32(int y, int u, int v, uchar* pixel)
{
    int const cb = u - 128, cr = v - 128;
    pixel[0] = fx_Clamped((1000 * y + 1765 * cb) / 1000);
    pixel[1] = fx_Clamped((1000 * y - 343 * cb - 711 * cr) / 1000);
    pixel[2] = fx_Clamped((1000 * y + 1400 * cr) / 1000);
    pixel[3] = 255;
}

#include "support/TestPicture.h"

#include <random>

CxTestPicture::CxTestPicture(quint32 width, quint32 height, quint32 components, quint32 sampleType,
                             quint32 pitchPadding)
{
    quint32 const sampleBytes = sampleType == 4 ? 2 : 1;
    buf.width = width;
    buf.height = height;
    buf.components = components;
    buf.sampleType = sampleType;
    buf.bitsPerSample = 8 * sampleBytes;
    buf.pitch = width * components * sampleBytes + pitchPadding;
    m_bytes.resize(size_t(buf.pitch) * height);
    buf.data = m_bytes.data();
}

void CxTestPicture::fillSmooth(unsigned frame)
{
    for (quint32 y = 0; y < buf.height; ++y) {
        for (quint32 x = 0; x < buf.pitch; ++x) {
            unsigned const component = x % buf.components;
            unsigned const value = x / 16 + y / (component + 2) + frame * (component + 1);
            m_bytes[size_t(y) * buf.pitch + x] = static_cast<unsigned char>(value & 255);
        }
    }
}

void CxTestPicture::fillNoise(unsigned seed)
{
    std::mt19937 random(seed);
    for (unsigned char& byte : m_bytes)
        byte = static_cast<unsigned char>(random() & 255);
}

SxPlanes fx_ExpectedPlanes(SxPicBuf const& picture)
{
    SxPlanes planes;
    for (quint32 y = 0; y < picture.height; ++y) {
        for (quint32 x = 0; x < picture.width; ++x) {
            unsigned char const* const pixel =
                picture.data + size_t(y) * picture.pitch + size_t(x) * picture.components;
            bool const isGrey = picture.components == 1;
            int const blue = pixel[0];
            int const green = isGrey ? 0 : pixel[1];
            int const red = isGrey ? 0 : pixel[2];
            int const luma = isGrey ? blue : (114 * blue + 587 * green + 299 * red) / 1000;
            planes.y.push_back(static_cast<unsigned char>(luma));
            if (x % 2 != 0 || y % 2 != 0)
                continue;
            int const u = isGrey ? 128 : (500 * blue - 331 * green - 169 * red) / 1000 + 128;
            int const v = isGrey ? 128 : (500 * red - 419 * green - 81 * blue) / 1000 + 128;
            planes.u.push_back(static_cast<unsigned char>(u));
            planes.v.push_back(static_cast<unsigned char>(v));
        }
    }
    return planes;
}

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

#pragma once

#include <vector>

#include "SxPicBuf.h"

/// A packed picture in memory of exactly pitch * height bytes, so that the address sanitizer sees an
/// access beside it.
class CxTestPicture
{
public:
    /// \param sampleType  2: bytes; 4: words, here with all 16 bits significant
    CxTestPicture(quint32 width, quint32 height, quint32 components = 4, quint32 sampleType = 2,
                  quint32 pitchPadding = 0);

    void fillSmooth(
        unsigned frame); ///< soft gradients that move with the frame number: no rate control skips them
    void fillNoise(unsigned seed); ///< every byte random, the same for the same seed

    SxPicBuf buf; ///< `data` points to our memory; copies of it are other names for that

private:
    Q_DISABLE_COPY(CxTestPicture)
    std::vector<unsigned char> m_bytes;
};

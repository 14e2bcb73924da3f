#pragma once

#include <QtGlobal>

/// Format of a picture in memory. A plain value: copied by assignment, owns nothing.
///
/// `sampleType` fixes the bytes of one sample: 2 is one byte; 3, 4 and 11 two; 5, 6 and 9 four;
/// 7, 8 and 10 eight; every other code one. A pixel takes `components` samples.
struct SxPicBufInfo
{
    quint32 width = 0;         ///< pixels a row
    quint32 height = 0;        ///< rows
    quint32 pitch = 0;         ///< bytes from the start of one row to the next; may exceed the row's pixels
    quint32 components = 0;    ///< samples a pixel: 1 grey; 3 blue, green, red; 4 those and a fourth
    quint32 bitsPerSample = 0; ///< significant low bits of a sample: 8 for bytes, up to 16 for words
    quint32 auxField = 0;      ///< the host's own; plug-ins copy it with the record and leave it alone
    quint32 sampleType = 0;    ///< sample type code, see above
    quint32 layout = 1;        ///< 1: packed, pixel after pixel; plug-ins know no other
    quint32 formatVariant = 0; ///< the host's own; 0 in formats that a codec asks for
    bool formatFlag = false;   ///< the host's own; true in formats that a codec asks for or delivers
};

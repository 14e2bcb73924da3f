#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "AnnexB.h"

using Bytes = std::vector<uchar>;

/// What a scan makes of a stream.
struct SxScan
{
    std::vector<SxFrameRange> frames;
    bool hasSps = false;
    size_t spsPayload = 0; ///< position
    size_t spsLength = 0;
};

inline bool operator==(SxFrameRange const& a, SxFrameRange const& b)
{
    return a.offset == b.offset && a.size == b.size && a.key == b.key;
}

inline bool operator==(SxScan const& a, SxScan const& b)
{
    return a.frames == b.frames && a.hasSps == b.hasSps && a.spsPayload == b.spsPayload &&
           a.spsLength == b.spsLength;
}

/// 4 or 3 for a start code at \p p, at least four bytes before the end; else 0.
inline size_t fx_ReferenceStartCode(Bytes const& d, size_t p)
{
    if (d[p] != 0 || d[p + 1] != 0)
        return 0;
    if (d[p + 2] == 0 && d[p + 3] == 1)
        return 4;
    return d[p + 2] == 1 ? 3 : 0;
}

/// The rules of the scan, byte by byte.
inline SxScan fx_ReferenceScan(Bytes const& d)
{
    SxScan scan;
    size_t const size = d.size();
    size_t frameStart = 0;
    size_t spsHeader = 0;
    size_t spsEnd = 0;
    bool key = false;
    size_t p = 0;
    while (size - p >= 4) {
        size_t const code = fx_ReferenceStartCode(d, p);
        if (code == 0) {
            ++p;
            continue;
        }
        if (spsHeader != 0 && spsEnd == 0)
            spsEnd = p;
        size_t const h = p + code;
        if (size - h < 4) {
            p = h;
            break;
        }
        if (d[h] == 0x67 || d[h] == 0x61) {
            if (spsHeader == 0 && d[h] == 0x67)
                spsHeader = h;
            if (h > 4) {
                scan.frames.push_back(
                    {static_cast<qint64>(frameStart), static_cast<quint64>(h - code - frameStart), key});
                frameStart = h - code;
            }
            key = d[h] != 0x61;
        }
        p = h + 1;
    }
    if (p != size)
        scan.frames.push_back(
            {static_cast<qint64>(frameStart), static_cast<quint64>(size - frameStart), key});
    if (spsHeader != 0) {
        scan.hasSps = true;
        scan.spsPayload = spsHeader + 1;
        scan.spsLength = std::min<size_t>((spsEnd != 0 ? spsEnd : size) - spsHeader - 1, 65535);
    }
    return scan;
}

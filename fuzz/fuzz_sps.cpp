// Any bytes as a sequence parameter set: no read behind them, and an end soon.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "Expect.h"
#include "SPS.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::size_t const kPadding = 64;
    std::size_t const length = std::min<std::size_t>(size, 65535 - kPadding);
    int width = 0, height = 0;
    CxSPS().parse(data, static_cast<unsigned short>(length), width, height);

    // Behind the end every bit is zero: real zeros there must not change anything.
    std::vector<std::uint8_t> padded(data, data + length);
    padded.resize(length + kPadding, 0);
    int paddedWidth = 0, paddedHeight = 0;
    CxSPS().parse(padded.data(), static_cast<unsigned short>(padded.size()), paddedWidth, paddedHeight);
    TARN_EXPECT(width == paddedWidth && height == paddedHeight);
    return 0;
}

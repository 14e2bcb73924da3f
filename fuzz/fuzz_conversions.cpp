// Any format record with exactly the memory that it describes, and a buffer that is tight: the conversions
// of the test oracle, and nothing touched beside them.
#include <cstdint>
#include <vector>

#include "Expect.h"
#include "FuzzInput.h"
#include "IYUVConversion.h"
#include "support/ConversionOracle.h"
#include "support/PackedFormats.h"

static constexpr quint64 kMostBytes = 1 << 18; // more only take time
static constexpr quint64 kMostPixels = 1 << 12;

/// A side of a picture: mostly small, sometimes anything.
static quint32 fx_Side(CxFuzzInput& input)
{
    switch (input.byte() % 8) {
    case 0:
        return input.word();
    case 1:
        return input.below(2000);
    default:
        return input.below(70);
    }
}

static SxPicBufInfo fx_Format(CxFuzzInput& input)
{
    SxPackedFormat const& packing = kPackedFormats[input.byte() % std::size(kPackedFormats)];
    SxPicBufInfo format;
    format.width = fx_Side(input);
    format.height = fx_Side(input);
    format.components = packing.components;
    format.sampleType = packing.sampleType;
    format.bitsPerSample = input.byte() % 8 == 0 ? input.word() : 8 + input.byte() % 9;
    format.pitch = format.width * packing.pixelBytes() + input.byte() % 16;
    switch (input.byte() % 16) {
    case 0:
        format.pitch = fx_Side(input);
        break;
    case 1:
        format.components = input.byte();
        break;
    case 2:
        format.sampleType = input.byte();
        break;
    case 3:
        format.layout = input.byte();
        break;
    }
    return format;
}

static std::vector<std::uint8_t> fx_Memory(CxFuzzInput& input, quint64 bytes)
{
    std::vector<std::uint8_t> memory(bytes);
    memory.shrink_to_fit();
    input.fill(memory.data(), memory.size());
    return memory;
}

using FxConverter = bool (*)(SxPicBuf const&, unsigned char*, unsigned long);

static FxConverter fx_Converter(std::uint8_t number)
{
    static FxConverter const kConverters[] = {ConvertRGB24toIYUV, ConvertRGB32toIYUV, ConvertRGB48toIYUV,
                                              ConvertRGB64toIYUV, ConvertMono8toIYUV, ConvertMono16toIYUV};
    return number < 6 ? kConverters[number] : ConvertPicBuftoIYUV;
}

static bool fx_IsKnown(SxPicBufInfo const& format)
{
    bool const hasComponents = format.components == 1 || format.components == 3 || format.components == 4;
    return format.layout == 1 && hasComponents && (format.sampleType == 2 || format.sampleType == 4);
}

static quint64 fx_Capacity(CxFuzzInput& input, SxPicBufInfo const& format)
{
    quint64 const need = GetIYUVSize(format);
    switch (input.byte() % 8) {
    case 0:
        return need - qMin<quint64>(need, 1);
    case 1:
        return need + input.byte();
    case 2:
        return input.below(65536);
    default:
        return need;
    }
}

static void fx_ToIYUV(CxFuzzInput& input)
{
    SxPicBuf source;
    source.setPicFormat(fx_Format(input));
    quint64 const bytes = quint64(source.pitch) * source.height;
    quint64 const capacity = fx_Capacity(input, source);
    if (bytes > kMostBytes || capacity > kMostBytes ||
        quint64(source.width) * source.height > kMostPixels * 64)
        return;
    FxConverter const convert = fx_Converter(input.byte() % 32);
    bool const hasPixels = input.byte() != 1;
    std::vector<std::uint8_t> pixels = fx_Memory(input, bytes);
    source.data = hasPixels ? pixels.data() : nullptr;
    std::vector<std::uint8_t> planes(capacity, 0xAA);
    planes.shrink_to_fit();

    bool const isConverted = convert(source, planes.data(), capacity);
    if (!isConverted) {
        for (std::uint8_t const byte : planes)
            TARN_EXPECT(byte == 0xAA);
    }
    if (convert != ConvertPicBuftoIYUV)
        return; // the record may say another format than the converter's
    SxPackedFormat const packing{"", source.sampleType, source.components};
    bool const isEmpty = source.width == 0 || source.height == 0;
    if (!fx_IsKnown(source) || (!isEmpty && (!source.data || source.pitch < packing.pixelBytes()))) {
        TARN_EXPECT(!isConverted);
        return;
    }
    if (isEmpty || quint64(source.width) * source.height > kMostPixels)
        return;
    std::vector<std::uint8_t> expected(capacity, 0xAA);
    TARN_EXPECT(fx_OracleToIYUV(source, expected) == isConverted);
    TARN_EXPECT(planes == expected);
}

static void fx_ToRGB32(CxFuzzInput& input)
{
    SxPicBuf target;
    bool const isLarge = input.byte() % 64 == 1; // rows that go past the cache
    target.width = isLarge ? input.below(16000) : input.below(140);
    target.height = input.below(isLarge ? 70 : 40);
    target.pitch = target.width * 4 + (isLarge ? (64 - target.width * 4 % 64) % 64 : input.byte() % 16);
    target.components = 4;
    target.sampleType = 2;
    quint32 const yStride = qMax(1U, target.width + input.byte() % 8);
    quint32 const uvStride = qMax(1U, target.width / 2 + input.byte() % 8);
    quint32 const chromaRows = (target.height + 1) / 2;
    std::vector<std::uint8_t> const y = fx_Memory(input, quint64(yStride) * target.height);
    std::vector<std::uint8_t> const u = fx_Memory(input, quint64(uvStride) * chromaRows);
    std::vector<std::uint8_t> const v = fx_Memory(input, quint64(uvStride) * chromaRows);
    std::vector<std::uint8_t> pixels(quint64(target.pitch) * target.height, 0xAA);
    pixels.shrink_to_fit();
    target.data = pixels.data();

    TARN_EXPECT(ConvertIYUVtoRGB32(target, y.data(), u.data(), v.data(), input.word(), yStride, uvStride));
    for (quint32 row = 0; row < target.height; row += isLarge ? 13 : 1) {
        for (quint32 x = 0; x < target.width; ++x) {
            // With an odd width a chroma row may end one sample early: what lies there is the next row's.
            quint64 const chroma = qMin<quint64>(quint64(row / 2) * uvStride + x / 2, u.size() - 1);
            std::uint8_t expected[4];
            fx_OracleToRGB32(y[quint64(row) * yStride + x], u[chroma], v[chroma], expected);
            TARN_EXPECT(
                std::equal(expected, expected + 4, target.data + quint64(row) * target.pitch + x * 4));
        }
    }
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    CxFuzzInput input(data, size);
    if (input.byte() % 4 == 0)
        fx_ToRGB32(input);
    else
        fx_ToIYUV(input);
    return 0;
}

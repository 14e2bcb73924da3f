#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

extern "C" {
#include <libswscale/swscale.h>
}

#include "CxPicBufAPI.h"

// swscale would scale colour by way of YUV and lose exact values on that way. So every component is
// scaled as a grey picture of 16 bits, whose white is 65535 whatever the depths of source and target:
// what the filter overshoots ends at white, depths convert on the way in and out, and swscale, which
// may touch bytes behind a row, sees our own memory only.

static constexpr unsigned kWhite = 65535;
static constexpr unsigned kRowPadding = 64; // samples; more than the widest vector
// What one step does; swscale refuses from about 64 times smaller and 8192 times larger.
static constexpr unsigned kMaxShrinking = 32;
static constexpr unsigned kMaxEnlarging = 1024;
static constexpr unsigned kMaxExtent = 1U << 21; // times kMaxEnlarging still fits an int

namespace {

struct SxFreeDeleter
{
    void operator()(void* block) const { std::free(block); }
};

struct SxScalerDeleter
{
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

/// One component of a picture, samples from 0 to kWhite. Rows start at addresses good for vectors.
struct SxPlane
{
    unsigned width = 0;
    unsigned height = 0;
    std::size_t stride = 0; ///< samples from row to row
    std::unique_ptr<quint16, SxFreeDeleter> samples;

    quint16* row(unsigned y) { return samples.get() + y * stride; }
    quint16 const* row(unsigned y) const { return samples.get() + y * stride; }
};

/// How a packed picture holds its samples.
struct SxPacking
{
    unsigned sampleBytes = 0; ///< 1 or 2; 0 when the picture is none that we scale
    unsigned components = 0;
    unsigned white = 0; ///< the largest value, all significant bits set

    bool isColour() const { return components > 1; }
};

} // namespace

static SxPacking fx_Packing(SxPicBuf const& picture)
{
    bool const isBytes = picture.sampleType == 2;
    bool const isWords = picture.sampleType == 4 && picture.bitsPerSample >= 1 && picture.bitsPerSample <= 16;
    bool const isGrey = picture.components == 1;
    bool const isColour = picture.components == 3 || picture.components == 4;
    if (picture.layout != 1 || !(isBytes || isWords) || !(isGrey || isColour))
        return SxPacking();

    if (picture.width > kMaxExtent || picture.height > kMaxExtent)
        return SxPacking(); // swscale counts in int

    unsigned const sampleBytes = isBytes ? 1 : 2;
    quint64 const rowBytes = quint64(picture.width) * picture.components * sampleBytes;
    quint64 const bytes = quint64(picture.pitch) * picture.height;
    if (!picture.data || bytes == 0 || rowBytes == 0 || rowBytes > picture.pitch)
        return SxPacking();
    // A format that was exchanged after the allocation must not reach beyond it.
    if (picture.allocatedSize != 0 && bytes > picture.allocatedSize)
        return SxPacking();
    return {sampleBytes, picture.components, isBytes ? 255U : (1U << picture.bitsPerSample) - 1U};
}

static bool fx_SharePixels(SxPicBuf const& one, SxPicBuf const& other)
{
    auto const oneStart = reinterpret_cast<std::uintptr_t>(one.data);
    auto const otherStart = reinterpret_cast<std::uintptr_t>(other.data);
    return oneStart < otherStart + std::uintptr_t(other.pitch) * other.height &&
           otherStart < oneStart + std::uintptr_t(one.pitch) * one.height;
}

static bool fx_MakePlane(SxPlane& plane, unsigned width, unsigned height)
{
    std::size_t const stride = (std::size_t(width) + 2 * kRowPadding - 1) / kRowPadding * kRowPadding;
    plane.samples.reset(static_cast<quint16*>(std::aligned_alloc(64, stride * height * sizeof(quint16))));
    plane.width = width;
    plane.height = height;
    plane.stride = stride;
    return plane.samples != nullptr;
}

/// The kWhite-scaled value of every sample from 0 to \p white.
static std::vector<quint16> fx_WideningTable(unsigned white)
{
    std::vector<quint16> table(white + 1U);
    for (unsigned value = 0; value <= white; ++value)
        table[value] = static_cast<quint16>((value * kWhite + white / 2) / white);
    return table;
}

/// The widened sample at \p at, which need not be aligned; bits above the significant ones don't count.
template<typename Sample>
static unsigned fx_Widened(unsigned char const* at, std::vector<quint16> const& table)
{
    Sample sample;
    std::memcpy(&sample, at, sizeof sample);
    return table[sample & (table.size() - 1)];
}

template<typename Sample>
static void fx_LoadComponent(SxPicBuf const& source, unsigned component, std::vector<quint16> const& table,
                             SxPlane& plane)
{
    std::size_t const step = source.components * sizeof(Sample);
    for (unsigned y = 0; y < plane.height; ++y) {
        unsigned char const* pixel = source.data + std::size_t(y) * source.pitch + component * sizeof(Sample);
        quint16* const row = plane.row(y);
        for (unsigned x = 0; x < plane.width; ++x, pixel += step)
            row[x] = static_cast<quint16>(fx_Widened<Sample>(pixel, table));
    }
}

/// Grey of a blue-green-red picture, with the weights of ITU-R BT.601.
template<typename Sample>
static void fx_LoadGrey(SxPicBuf const& source, std::vector<quint16> const& table, SxPlane& plane)
{
    std::size_t const step = source.components * sizeof(Sample);
    for (unsigned y = 0; y < plane.height; ++y) {
        unsigned char const* pixel = source.data + std::size_t(y) * source.pitch;
        quint16* const row = plane.row(y);
        for (unsigned x = 0; x < plane.width; ++x, pixel += step) {
            unsigned const blue = fx_Widened<Sample>(pixel, table);
            unsigned const green = fx_Widened<Sample>(pixel + sizeof(Sample), table);
            unsigned const red = fx_Widened<Sample>(pixel + 2 * sizeof(Sample), table);
            row[x] = static_cast<quint16>((114 * blue + 587 * green + 299 * red + 500) / 1000);
        }
    }
}

template<typename Sample>
static void fx_StoreComponent(SxPlane const& plane, unsigned white, SxPicBuf const& target,
                              unsigned component)
{
    std::size_t const step = target.components * sizeof(Sample);
    for (unsigned y = 0; y < plane.height; ++y) {
        unsigned char* pixel = target.data + std::size_t(y) * target.pitch + component * sizeof(Sample);
        quint16 const* const row = plane.row(y);
        for (unsigned x = 0; x < plane.width; ++x, pixel += step) {
            auto const sample = static_cast<Sample>((row[x] * white + kWhite / 2) / kWhite);
            std::memcpy(pixel, &sample, sizeof sample);
        }
    }
}

static bool fx_ScaleOnce(SxPlane const& source, SxPlane& target)
{
    // Slower flags than the default, but the same bytes on every processor.
    int const flags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_BITEXACT;
    std::unique_ptr<SwsContext, SxScalerDeleter> const scaler(
        sws_getContext(static_cast<int>(source.width), static_cast<int>(source.height), AV_PIX_FMT_GRAY16,
                       static_cast<int>(target.width), static_cast<int>(target.height), AV_PIX_FMT_GRAY16,
                       flags, nullptr, nullptr, nullptr));
    if (!scaler)
        return false;

    auto const* const sourceRows = reinterpret_cast<std::uint8_t const*>(source.row(0));
    auto* const targetRows = reinterpret_cast<std::uint8_t*>(target.row(0));
    int const sourcePitch = static_cast<int>(source.stride * sizeof(quint16));
    int const targetPitch = static_cast<int>(target.stride * sizeof(quint16));
    int const rows = sws_scale(scaler.get(), &sourceRows, &sourcePitch, 0, static_cast<int>(source.height),
                               &targetRows, &targetPitch);
    return rows == static_cast<int>(target.height);
}

/// The next width or height on the way from \p extent to \p wanted: first down, then up. The last step
/// down is the long one, as swscale's filters are poor on sources of a few samples.
static unsigned fx_NextExtent(unsigned extent, unsigned wanted, bool shrinks)
{
    if (extent > wanted * kMaxShrinking)
        return std::max(wanted * kMaxShrinking, (extent + kMaxShrinking - 1) / kMaxShrinking);
    if (extent > wanted)
        return wanted;
    return shrinks ? extent : std::min(wanted, extent * kMaxEnlarging);
}

/// Scales \p plane to the given size, in several steps where swscale refuses to go in one: it neither
/// goes far in one nor shrinks in one direction while it enlarges in the other.
static bool fx_Scale(SxPlane& plane, unsigned width, unsigned height)
{
    while (plane.width != width || plane.height != height) {
        bool const shrinks = plane.width > width || plane.height > height;
        SxPlane next;
        if (!fx_MakePlane(next, fx_NextExtent(plane.width, width, shrinks),
                          fx_NextExtent(plane.height, height, shrinks)) ||
            !fx_ScaleOnce(plane, next))
            return false;
        plane = std::move(next);
    }
    return true;
}

static void fx_Load(SxPicBuf const& source, SxPacking const& packing, bool asGrey, unsigned component,
                    std::vector<quint16> const& table, SxPlane& plane)
{
    if (asGrey && packing.sampleBytes == 1)
        fx_LoadGrey<quint8>(source, table, plane);
    else if (asGrey)
        fx_LoadGrey<quint16>(source, table, plane);
    else if (packing.sampleBytes == 1)
        fx_LoadComponent<quint8>(source, component, table, plane);
    else
        fx_LoadComponent<quint16>(source, component, table, plane);
}

static void fx_Store(SxPlane const& plane, SxPacking const& packing, SxPicBuf const& target,
                     unsigned component)
{
    if (packing.sampleBytes == 1)
        fx_StoreComponent<quint8>(plane, packing.white, target, component);
    else
        fx_StoreComponent<quint16>(plane, packing.white, target, component);
}

static void fx_Fill(SxPlane& plane, quint16 value)
{
    std::fill_n(plane.row(0), plane.stride * plane.height, value);
}

bool CxPicBufAPI::Resize(SxPicBuf const& source, SxPicBuf& target)
{
    SxPacking const from = fx_Packing(source);
    SxPacking const to = fx_Packing(target);
    if (from.sampleBytes == 0 || to.sampleBytes == 0 || fx_SharePixels(source, target))
        return false;

    std::vector<quint16> const table = fx_WideningTable(from.white);
    SxPlane plane;
    for (unsigned component = 0; component < to.components; ++component) {
        if (component == 3 && from.components != 4) {
            fx_Fill(plane, kWhite); // a fourth component that the source lacks means opaque
        } else if (component == 0 || from.isColour()) { // grey goes to all three colours
            if (!fx_MakePlane(plane, source.width, source.height))
                return false;
            fx_Load(source, from, from.isColour() && !to.isColour(), component, table, plane);
            if (!fx_Scale(plane, target.width, target.height))
                return false;
        }
        fx_Store(plane, to, target, component);
    }
    target.timestamp = source.timestamp;
    return true;
}

// What do the picture conversions cost, against libyuv's nearest function and against memcpy?
//
// libyuv's functions do other arithmetic (averaged chroma, other weights), but read and write the same
// bytes: they are the yardstick for the work, not for the result.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <random>

#include <benchmark/benchmark.h>
#include <libyuv.h>

#include "IYUVConversion.h"
#include "Ratio.h"
#include "VectorTargets.h"
#include "support/PackedFormats.h"

namespace {

/// Memory as the host allocates it, at a multiple of 64, filled with noise.
class CxBlock
{
public:
    explicit CxBlock(std::size_t size)
        : m_data(static_cast<uchar*>(std::aligned_alloc(64, (size + 63) / 64 * 64)))
    {
        if (!m_data)
            throw std::bad_alloc();
        std::minstd_rand random(1);
        std::generate_n(m_data.get(), size, [&random] { return static_cast<uchar>(random() >> 7); });
    }

    uchar* data() const { return m_data.get(); }

private:
    struct SxFree
    {
        void operator()(uchar* data) const { std::free(data); }
    };
    std::unique_ptr<uchar, SxFree> m_data;
};

/// One picture, packed and planar, and every way that this program knows to get from one to the other.
class CxJob
{
public:
    CxJob(int width, int height, SxPackedFormat const& format)
        : m_width(width)
        , m_height(height)
        , m_bytes(static_cast<int>(format.pixelBytes()))
        , m_packed(size() * static_cast<std::size_t>(m_bytes))
        , m_argb(size() * 8)
        , m_planes(size() * 3 / 2)
    {
        m_picture.width = static_cast<quint32>(width);
        m_picture.height = static_cast<quint32>(height);
        m_picture.pitch = static_cast<quint32>(width * m_bytes);
        m_picture.components = format.components;
        m_picture.bitsPerSample = format.isWords() ? 12 : 8;
        m_picture.sampleType = format.sampleType;
        m_picture.data = m_packed.data();
    }

    void toIYUV() { ConvertPicBuftoIYUV(m_picture, y(), size() * 3 / 2); }
    void fromIYUV()
    {
        ConvertIYUVtoRGB32(m_picture, y(), u(), v(), 0, static_cast<unsigned>(m_width),
                           static_cast<unsigned>(m_width / 2));
    }
    void copy() const
    {
        std::memcpy(m_argb.data(), m_packed.data(), size() * static_cast<std::size_t>(m_bytes));
    }

    void yuvMono8() const
    {
        libyuv::I400ToI420(m_packed.data(), m_width, y(), m_width, u(), m_width / 2, v(), m_width / 2,
                           m_width, m_height);
    }
    void yuvMono16() const
    {
        libyuv::Convert16To8Plane(words(), m_width, y(), m_width, 4096, m_width, m_height);
        libyuv::SetPlane(u(), m_width / 2, m_width / 2, m_height / 2, 128);
        libyuv::SetPlane(v(), m_width / 2, m_width / 2, m_height / 2, 128);
    }
    void yuvRGB24() const
    {
        libyuv::RGB24ToI420(m_packed.data(), 3 * m_width, y(), m_width, u(), m_width / 2, v(), m_width / 2,
                            m_width, m_height);
    }
    void yuvRGB32() const { argbToPlanes(m_packed.data()); }
    void yuvRGB64() const
    {
        libyuv::AR64ToARGB(words(), 4 * m_width, m_argb.data(), 4 * m_width, m_width, m_height);
        argbToPlanes(m_argb.data());
    }
    void yuvToRGB32() const
    {
        libyuv::I420ToARGB(y(), m_width, u(), m_width / 2, v(), m_width / 2, m_packed.data(), 4 * m_width,
                           m_width, m_height);
    }

private:
    std::size_t size() const
    {
        return static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height);
    }
    uchar* y() const { return m_planes.data(); }
    uchar* u() const { return y() + size(); }
    uchar* v() const { return u() + size() / 4; }
    std::uint16_t const* words() const { return reinterpret_cast<std::uint16_t const*>(m_packed.data()); }
    void argbToPlanes(uchar const* argb) const
    {
        libyuv::ARGBToI420(argb, 4 * m_width, y(), m_width, u(), m_width / 2, v(), m_width / 2, m_width,
                           m_height);
    }

    int m_width, m_height, m_bytes;
    CxBlock m_packed, m_argb, m_planes;
    SxPicBuf m_picture;
};

struct SxSize
{
    char const* name;
    int width, height;
    int turns;
};

constexpr SxSize kSizes[] = {
    {"640x480", 640, 480, 401}, {"1920x1080", 1920, 1080, 101}, {"4096x2304", 4096, 2304, 31}};

/// What a conversion is measured against, and the bars of the fastest table and of AVX2, for each size; 0: no
/// bar.
struct SxPeer
{
    char const* name; ///< of the conversion
    char const* peerName;
    void (CxJob::*peer)() const;
    double bars[3], avx2Bars[3];
};

constexpr SxPeer kPeers[] = {
    {"mono8", "libyuv", &CxJob::yuvMono8, {1.2, 1.2, 1.2}, {0, 0, 0}},
    {"mono16", "libyuv", &CxJob::yuvMono16, {1.2, 1.2, 1.2}, {0, 0, 0}},
    {"rgb24", "libyuv", &CxJob::yuvRGB24, {0.65, 0.65, 0.65}, {1.2, 1.2, 1.2}},
    {"rgb32", "libyuv", &CxJob::yuvRGB32, {0.8, 0.8, 0.8}, {1.5, 1.5, 1.5}},
    {"rgb48", "memcpy", &CxJob::copy, {2.0, 0, 1.4}, {0, 0, 0}},
    {"rgb64", "libyuv", &CxJob::yuvRGB64, {0.62, 0.62, 0.62}, {1.05, 1.05, 1.05}},
};

/// A format without a peer is measured against memcpy, without bars.
SxPeer fx_PeerOf(SxPackedFormat const& format)
{
    for (SxPeer const& peer : kPeers)
        if (std::strcmp(peer.name, format.name) == 0)
            return peer;
    return {format.name, "memcpy", &CxJob::copy, {0, 0, 0}, {0, 0, 0}};
}

/// The way back has one format.
constexpr SxPackedFormat kShown = {"rgb32", 2, 4, &SxIYUVKernels::rgb32};
constexpr SxPeer kBack = {"YUV to RGB32", "libyuv", &CxJob::yuvToRGB32, {0.55, 0.75, 1.0}, {1.0, 1.0, 1.0}};

using Conversion = void (CxJob::*)();

void fx_Run(benchmark::State& state, SxSize const& size, SxPackedFormat const& format, Conversion conversion,
            SxPeer const& peer, double bar, char const* target)
{
    if (!fx_ForceVectorTarget(target))
        state.SkipWithError("no such instruction set");
    CxJob job(size.width, size.height, format);
    fx_CompareWork(
        state, bar, [&] { (job.*conversion)(); }, [&] { (job.*peer.peer)(); });
}

void fx_Register(SxPackedFormat const& format, Conversion conversion, SxPeer const& peer)
{
    for (std::size_t i = 0; i < std::size(kSizes); ++i) {
        for (VectorTarget const target : fx_GetVectorTargets()) {
            bool const isFastest = target == fx_GetVectorTargets().front();
            bool const isAVX2 = target == VectorTarget::AVX2;
            double const bar = isFastest ? peer.bars[i] : isAVX2 ? peer.avx2Bars[i] : 0;
            std::string const name = std::string(peer.name) + '/' + kSizes[i].name + '/' +
                                     fx_GetName(target) + " / " + peer.peerName;
            benchmark::RegisterBenchmark(name.c_str(), fx_Run, kSizes[i], format, conversion, peer, bar,
                                         fx_GetName(target))
                ->UseManualTime()
                ->Iterations(kSizes[i].turns)
                ->Unit(benchmark::kMicrosecond);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    for (SxPackedFormat const& format : kPackedFormats)
        fx_Register(format, &CxJob::toIYUV, fx_PeerOf(format));
    fx_Register(kShown, &CxJob::fromIYUV, kBack);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

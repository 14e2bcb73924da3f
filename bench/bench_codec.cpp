// What does the plug-in add to OpenH264? encode() and loadedData() to the library's own calls alone, in
// the same process and picture by picture; random access to the frames it must feed; page faults of
// steady playback.

#include <sys/resource.h>

#include <QFile>
#include <QTemporaryDir>
#include <cstring>
#include <memory>
#include <random>

#include "AnnexB.h"
#include "BenchStream.h"
#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "H264VideoLoader.h"
#include "IYUVConversion.h"
#include "Ratio.h"
#include "openH264Encoder.h"

static QSize const k1080p(1920, 1080);

// --- encode() ---------------------------------------------------------------------------------------

/// The library by itself, set up as the plug-in's encoder sets it up.
class CxBareEncoder
{
public:
    CxBareEncoder(QSize size, unsigned rate)
    {
        WelsCreateSVCEncoder(&m_encoder);
        SEncParamExt params;
        m_encoder->GetDefaultParams(&params);
        params.iUsageType = SCREEN_CONTENT_REAL_TIME;
        params.iPicWidth = size.width();
        params.iPicHeight = size.height();
        params.fMaxFrameRate = 30;
        params.iTargetBitrate = static_cast<int>(rate);
        params.iRCMode = RC_BITRATE_MODE;
        params.iComplexityMode = MEDIUM_COMPLEXITY;
        params.bEnableFrameSkip = true;
        params.iMaxBitrate = 288000000;
        SSpatialLayerConfig& layer = params.sSpatialLayers[0];
        layer.iVideoWidth = size.width();
        layer.iVideoHeight = size.height();
        layer.fFrameRate = 30;
        layer.iSpatialBitrate = params.iTargetBitrate;
        layer.iMaxSpatialBitrate = params.iMaxBitrate;
        layer.uiProfileIdc = PRO_BASELINE;
        layer.uiLevelIdc = LEVEL_5_2;
        layer.sSliceArgument.uiSliceMode = SM_SINGLE_SLICE;
        if (m_encoder->InitializeExt(&params) != 0)
            qFatal("InitializeExt failed");
    }
    ~CxBareEncoder() { WelsDestroySVCEncoder(m_encoder); }

    void encode(std::vector<uchar>& planes, QSize size, bool isKey)
    {
        SSourcePicture source;
        std::memset(&source, 0, sizeof source);
        source.iColorFormat = videoFormatI420;
        source.iPicWidth = source.iStride[0] = size.width();
        source.iPicHeight = size.height();
        source.iStride[1] = source.iStride[2] = size.width() / 2;
        source.pData[0] = planes.data();
        source.pData[1] = source.pData[0] + size.width() * size.height();
        source.pData[2] = source.pData[1] + size.width() * size.height() / 4;
        if (isKey)
            m_encoder->ForceIntraFrame(true, -1);
        SFrameBSInfo info;
        std::memset(&info, 0, sizeof info);
        m_encoder->EncodeFrame(&source, &info);
    }

private:
    ISVCEncoder* m_encoder = nullptr;
};

static void encode_to_EncodeFrame(benchmark::State& state)
{
    constexpr int kPictures = 60, kKeyFrameInterval = 5;
    std::vector<PicturePtr> const pictures = fx_CameraPictures(k1080p, kPictures);
    std::vector<std::vector<uchar>> planes;
    for (PicturePtr const& picture : pictures) {
        planes.emplace_back(GetIYUVSize(*picture));
        ConvertPicBuftoIYUV(*picture, planes.back().data(), planes.back().size());
    }
    std::vector<uchar> out(planes.front().size());

    for (auto _ : state) {
        CxOpenH264Encoder ours;
        CxBareEncoder bare(k1080p, ours.bitrate(*pictures.front()));
        double ourTime = 0, bareTime = 0;
        for (int i = 0; i < kPictures; ++i) {
            auto const index = static_cast<size_t>(i);
            double const bareSeconds =
                fx_Seconds([&] { bare.encode(planes[index], k1080p, i % kKeyFrameInterval == 0); });
            unsigned long size = out.size();
            double const ourSeconds =
                fx_Seconds([&] { ours.encode(*pictures[index], out.data(), size, nullptr); });
            if (i == 0)
                continue; // ours makes its OpenH264 instance
            bareTime += bareSeconds;
            ourTime += ourSeconds;
        }
        state.SetIterationTime(ourTime);
        fx_ReportRatio(state, 1.03, ourTime / (kPictures - 1), bareTime / (kPictures - 1));
    }
}
BENCHMARK(encode_to_EncodeFrame)
    ->Name("encode() / EncodeFrame() alone")
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// --- loadedData() -----------------------------------------------------------------------------------

/// A recording of the test camera, and its coded frames in memory.
struct SxRecording
{
    SxRecording(QSize size, int count, int keyFrameInterval)
        : stream(fx_EncodeCamera(size, count, keyFrameInterval))
        , name(folder.filePath(QStringLiteral("recording.h264")))
    {
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly) || file.write(stream) != stream.size())
            qFatal("cannot write %s", qPrintable(name));
        CxFrameScanner scanner(reinterpret_cast<uchar const*>(stream.constData()),
                               static_cast<size_t>(stream.size()));
        for (SxFrameRange frame; scanner.next(frame);)
            frames.push_back(frame);
    }

    std::unique_ptr<CxH264VideoLoader> open() const
    {
        auto loader = std::make_unique<CxH264VideoLoader>();
        loader->setInputFile(name);
        if (!loader->load())
            qFatal("cannot load %s", qPrintable(name));
        return loader;
    }

    QTemporaryDir folder;
    QByteArray stream;
    QString name;
    std::vector<SxFrameRange> frames;
};

/// The library by itself: unit by unit, with an empty call behind each that gave no picture.
class CxBareDecoder
{
public:
    CxBareDecoder()
    {
        WelsCreateDecoder(&m_decoder);
        SDecodingParam param;
        std::memset(&param, 0, sizeof param);
        param.uiTargetDqLayer = 255;
        param.eEcActiveIdc = ERROR_CON_SLICE_COPY;
        param.sVideoProperty.size = sizeof(SVideoProperty);
        param.sVideoProperty.eVideoBsType = VIDEO_BITSTREAM_SVC;
        m_decoder->Initialize(&param);
    }
    ~CxBareDecoder() { WelsDestroyDecoder(m_decoder); }

    void decode(SxRecording const& recording, size_t frame)
    {
        SxFrameRange const& range = recording.frames[frame];
        uchar const* const data = reinterpret_cast<uchar const*>(recording.stream.constData()) + range.offset;
        for (size_t start = 0; start < range.size;) {
            // From its third byte on a start code is none any more.
            size_t const end = fx_FindStartCode(data, range.size, start + 2);
            if (!call(data + start, static_cast<int>(end - start)))
                call(nullptr, 0);
            start = end;
        }
    }

private:
    bool call(uchar const* data, int size)
    {
        uchar* planes[3] = {};
        SBufferInfo info;
        std::memset(&info, 0, sizeof info);
        m_decoder->DecodeFrame2(data, size, planes, &info);
        return info.iBufferStatus == 1;
    }

    ISVCDecoder* m_decoder = nullptr;
};

static std::unique_ptr<IxChainData> fx_Picture(CxH264VideoLoader& loader, int frame)
{
    std::unique_ptr<IxChainData> picture(loader.loadedData(frame));
    if (!picture)
        qFatal("frame %d is missing", frame);
    return picture;
}

/// Frames at the start of which each takes memory or makes an OpenH264 instance, once.
constexpr size_t kWarmUp = 3;

static void loadedData_to_DecodeFrame2(benchmark::State& state)
{
    static SxRecording const recording(k1080p, 120, 30);
    for (auto _ : state) {
        auto const loader = recording.open();
        CxBareDecoder bare;
        std::unique_ptr<IxChainData> shown; // as a player: the picture before stays until the next is there
        double ourTime = 0, bareTime = 0;
        for (size_t frame = 0; frame < recording.frames.size(); ++frame) {
            double const bareSeconds = fx_Seconds([&] { bare.decode(recording, frame); });
            double const ourSeconds =
                fx_Seconds([&] { shown = fx_Picture(*loader, static_cast<int>(frame)); });
            if (frame < kWarmUp)
                continue;
            bareTime += bareSeconds;
            ourTime += ourSeconds;
        }
        state.SetIterationTime(ourTime);
        auto const count = static_cast<double>(recording.frames.size() - kWarmUp);
        fx_ReportRatio(state, 1.04, ourTime / count, bareTime / count);
    }
}
BENCHMARK(loadedData_to_DecodeFrame2)
    ->Name("loadedData() in order / OpenH264 alone")
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

static void random_access_to_frames_fed(benchmark::State& state)
{
    int const rate = static_cast<int>(state.range(0));
    SxRecording const recording(k1080p, 200, rate);
    std::mt19937 random(1);
    for (auto _ : state) {
        auto const loader = recording.open();
        CxBareDecoder bare;
        std::unique_ptr<IxChainData> shown = fx_Picture(*loader, 0);
        double ourTime = 0, bareTime = 0;
        for (int i = 0; i < 40; ++i) {
            // A target in another group, so that what must be fed is its group up to it.
            int target = loader->lastProcessedFrame();
            while (target / rate == loader->lastProcessedFrame() / rate)
                target = static_cast<int>(random() % recording.frames.size());
            bareTime += fx_Seconds([&] {
                for (int frame = target / rate * rate; frame <= target; ++frame)
                    bare.decode(recording, static_cast<size_t>(frame));
            });
            ourTime += fx_Seconds([&] { shown = fx_Picture(*loader, target); });
        }
        state.SetIterationTime(ourTime);
        fx_ReportRatio(state, 1.06, ourTime / 40, bareTime / 40);
    }
}
BENCHMARK(random_access_to_frames_fed)
    ->Name("random access / OpenH264 alone")
    ->ArgName("key-frame_interval")
    ->Arg(5)
    ->Arg(30)
    ->Arg(100)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

static long fx_PageFaults()
{
    rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

static void page_faults_a_picture(benchmark::State& state)
{
    QSize const size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    SxRecording const recording(size, 40, 10);
    auto const loader = recording.open();
    for (auto _ : state) {
        std::unique_ptr<IxChainData> shown;
        for (int frame = 0; frame < 20; ++frame)
            shown = fx_Picture(*loader, frame);
        long const before = fx_PageFaults();
        for (int frame = 20; frame < 40; ++frame)
            shown = fx_Picture(*loader, frame);
        state.counters["figure"] = double(fx_PageFaults() - before) / 20;
    }
    state.counters["bar"] = 50;
}
BENCHMARK(page_faults_a_picture)
    ->Name("page faults a picture")
    ->ArgNames({"width", "height"})
    ->Args({640, 480})
    ->Args({1920, 1080})
    ->Args({4096, 2304})
    ->Iterations(1);

BENCHMARK_MAIN();

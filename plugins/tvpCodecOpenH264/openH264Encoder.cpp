#include "openH264Encoder.h"

#include <algorithm>
#include <cstring>
#include <locale>
#include <sstream>

#include "CriticalMessage.h"
#include "FourCC.h"
#include "IYUVConversion.h"
#include "RGB32Format.h"
#include "openH264Levels.h"
#include "openH264Panel.h"

/// The level that an option stands for; those outside the enumeration have the limits of none.
static ELevelIdc fx_Level(int option)
{
    return option >= 0 && option <= LEVEL_5_2 ? static_cast<ELevelIdc>(option) : LEVEL_UNKNOWN;
}

/// Gives a field of the library's an option as it is, also where its enumeration has no such number.
template<typename Enumeration>
static void fx_SetNumber(Enumeration& field, int option)
{
    static_assert(sizeof(Enumeration) == sizeof(int), "an option is an int");
    std::memcpy(&field, &option, sizeof field);
}

// The real rate of a recording is not known when it starts, so the rate control plans for this one.
static constexpr float kFrameRate = 30.0f;

CxOpenH264Encoder::~CxOpenH264Encoder()
{
    m_encoder.reset(); // before the planes, which the last EncodeFrame() gave it
}

QString CxOpenH264Encoder::name() { return QStringLiteral("OpenH264"); }

unsigned int CxOpenH264Encoder::fourCC() { return kFourCCH264; }

unsigned long CxOpenH264Encoder::maxEncodedSize(SxPicBufInfo const& format) { return GetIYUVSize(format); }

void CxOpenH264Encoder::setEncoderOptions(QMap<QString, QVariant> const& options)
{
    auto const take = [&options](char const* key, int& member) {
        auto const it = options.constFind(QLatin1String(key));
        if (it != options.constEnd())
            member = it->toInt();
    };
    take(kQualityKey, m_options.quality);
    take(kKeyFrameRateKey, m_options.keyFrameInterval);
    take(kComplexityKey, m_options.complexity);
    take(kProfileKey, m_options.profile);
    take(kLevelKey, m_options.level);

    auto const advanced = options.constFind(QLatin1String(kShowAdvancedKey));
    if (advanced != options.constEnd())
        m_options.showAdvanced = advanced->toBool();
}

QWidget* CxOpenH264Encoder::widgetForSaveDlg(QWidget* parent)
{
    // Deliberate: the panel and this object agree on what stands in for a value not offered.
    return fx_NewPanel(parent, m_options);
}

QMap<QString, QVariant> CxOpenH264Encoder::optionsFromWidgetInSaveDlg(QWidget* widget)
{
    return fx_OptionsFromPanel(widget);
}

unsigned int CxOpenH264Encoder::bitrate(SxPicBufInfo const& format) const
{
    // Sums are made unsigned, where 32-bit arithmetic wraps for sizes and qualities that make no
    // sense, and read back as signed.
    quint32 const size = static_cast<quint32>(GetIYUVSize(format));
    qint32 const maxRate = static_cast<qint32>(fx_GetMaxBitRateForLevel(fx_Level(m_options.level)));
    qint32 const cap = std::min(static_cast<qint32>(size * 30u), maxRate);
    qint32 const base = static_cast<qint32>(size) / 4;
    if (cap < base)
        return static_cast<quint32>(cap);
    qint32 const step = static_cast<qint32>(static_cast<quint32>(cap) - static_cast<quint32>(base)) / 9;
    return static_cast<quint32>(base) +
           static_cast<quint32>(step) * (static_cast<quint32>(m_options.quality) - 1u);
}

/// A size to whole pixels; sizes that no 32 bits hold come from formats that no picture has.
static quint32 fx_Truncate(double size) { return static_cast<quint32>(static_cast<qint64>(size)); }

void CxOpenH264Encoder::queryOuputFormat(SxPicBufInfo const& input, SxPicBufInfo& output)
{
    SxPicBufInfo format = input; // aside, since the host may pass one record as both
    fx_SetRGB32(format);

    QSize const box = fx_GetMaxResolutionForLevel(fx_Level(m_options.level));
    int const width = static_cast<int>(input.width);
    int const height = static_cast<int>(input.height);
    if (width > box.width() || height > box.height()) {
        double const ratio = input.height != 0 ? double(input.width) / double(input.height) : 0.0;
        bool const isWider = double(box.width()) / double(box.height()) < ratio && ratio > 0.0;
        if (isWider) {
            format.width = static_cast<quint32>(std::min(width, box.width()));
            format.height = fx_Truncate(double(format.width) / ratio);
        } else {
            format.height = static_cast<quint32>(std::min(height, box.height()));
            format.width = fx_Truncate(double(format.height) * ratio);
        }
    }
    format.width &= ~1u; // chroma has one sample for two pixels
    format.height &= ~1u;
    format.pitch = (format.width * 4 + 3) & ~3u; // RGB32
    output = format;
}

bool CxOpenH264Encoder::createEncoder(SxPicBufInfo const& format)
{
    ISVCEncoder* created = nullptr;
    int const createError = WelsCreateSVCEncoder(&created);
    std::unique_ptr<ISVCEncoder, SxEncoderDeleter> encoder(created); // freed on every return below
    if (createError != 0 || !encoder) {
        TVP_CRITICAL("CxOpenH264Encoder::createEncoder(): %1", "Cannot create the OpenH264 encoder.");
        return false;
    }

    quint32 const targetRate = bitrate(format);
    quint32 const maxRate = fx_GetMaxBitRateForLevel(fx_Level(m_options.level));
    encoder->GetDefaultParams(&m_params);
    // Deliberate: the screen-content mode, which keeps sharp edges.
    m_params.iUsageType = SCREEN_CONTENT_REAL_TIME;
    m_params.iPicWidth = static_cast<int>(format.width);
    m_params.iPicHeight = static_cast<int>(format.height);
    m_params.fMaxFrameRate = kFrameRate;
    m_params.iTargetBitrate = static_cast<int>(targetRate);
    m_params.iRCMode = RC_BITRATE_MODE;
    fx_SetNumber(m_params.iComplexityMode, m_options.complexity);
    m_params.bEnableFrameSkip = true;
    m_params.iMaxBitrate = static_cast<int>(maxRate);
    SSpatialLayerConfig& layer = m_params.sSpatialLayers[0];
    layer.iVideoWidth = m_params.iPicWidth;
    layer.iVideoHeight = m_params.iPicHeight;
    layer.fFrameRate = m_params.fMaxFrameRate;
    layer.iSpatialBitrate = m_params.iTargetBitrate;
    layer.iMaxSpatialBitrate = m_params.iMaxBitrate;
    fx_SetNumber(layer.uiProfileIdc, m_options.profile);
    fx_SetNumber(layer.uiLevelIdc, m_options.level);
    layer.sSliceArgument.uiSliceMode = SM_SINGLE_SLICE;

    int const initError = encoder->InitializeExt(&m_params);
    if (initError != 0) {
        TVP_CRITICAL("CxOpenH264Encoder::createEncoder(): %1",
                     QStringLiteral("InitializeExt failed with error %1").arg(initError));
        qCritical() << dumpEncParams(m_params).c_str();
        return false;
    }

    std::memset(&m_frameInfo, 0, sizeof m_frameInfo);
    m_encoder = std::move(encoder);
    return true;
}

/// Fills the planes from a picture; reports and returns false when that fails.
bool CxOpenH264Encoder::convert(SxPicBuf const& picture)
{
    if (!m_planes) {
        unsigned long const size = GetIYUVSize(picture);
        // V starts at a quarter of width * height, which for odd sizes moves its last row behind the
        // picture's nominal end: by height / 4 bytes, less than a sixteenth. OpenH264 reads them.
        unsigned long const margin = size / 16 + 16;
        m_planes.reset(static_cast<uchar*>(std::malloc(size + margin)));
        if (!m_planes) {
            TVP_CRITICAL("CxOpenH264Encoder::encode(): %1",
                         QStringLiteral("Cannot alloc YUVBuffer with size %1").arg(size));
            return false;
        }
        std::memset(m_planes.get() + size, 128, margin);
        m_planesSize = size;
    }
    // Deliberate: the buffer keeps its first size. A larger picture does not fit and is refused.
    if (!ConvertPicBuftoIYUV(picture, m_planes.get(), m_planesSize)) {
        TVP_CRITICAL("CxOpenH264Encoder::encode(): %1", "ConvertPicBuftoIYUV failed");
        return false;
    }
    return true;
}

/// Bytes of one layer: its NAL units' lengths, start codes included (SLayerBSInfo,
/// codec_app_def.h). 0 when the layer holds no unit.
static int fx_LayerBytes(SLayerBSInfo const& layer)
{
    int bytes = 0;
    for (int nal = 0; nal < layer.iNalCount; ++nal)
        bytes += layer.pNalLengthInByte[nal];
    return bytes;
}

/// Puts the layers' NAL units one behind the other. False, with \p size unchanged, when they are
/// more than \p capacity bytes.
bool CxOpenH264Encoder::assemble(void* out, unsigned long capacity, unsigned long& size) const
{
    uchar* position = static_cast<uchar*>(out);
    int total = 0;
    for (int i = 0; i < m_frameInfo.iLayerNum; ++i) {
        SLayerBSInfo const& layer = m_frameInfo.sLayerInfo[i];
        int const bytes = fx_LayerBytes(layer);
        total += bytes;
        if (total > static_cast<int>(capacity))
            return false;
        if (bytes > 0) {
            std::memcpy(position, layer.pBsBuf, static_cast<size_t>(bytes));
            position += bytes;
        }
    }
    size = static_cast<unsigned long>(total);
    return true;
}

/// What the library reads of a picture whose planes lie at \p planes, I420.
static SSourcePicture fx_SourcePicture(SxPicBuf const& picture, uchar* planes)
{
    SSourcePicture source;
    std::memset(&source, 0, sizeof source);
    unsigned long const pixels = static_cast<unsigned long>(picture.width) * picture.height;
    source.iColorFormat = videoFormatI420;
    source.iStride[0] = static_cast<int>(picture.width);
    source.iStride[1] = source.iStride[2] = static_cast<int>(picture.width / 2);
    source.pData[0] = planes;
    source.pData[1] = source.pData[0] + pixels;
    source.pData[2] = source.pData[1] + pixels / 4;
    source.iPicWidth = static_cast<int>(picture.width);
    source.iPicHeight = static_cast<int>(picture.height);
    source.uiTimeStamp = static_cast<long long>(picture.timestamp / 1000); // milliseconds
    return source;
}

bool CxOpenH264Encoder::encode(SxPicBuf const& picture, void* out, unsigned long& size, bool* keyFrame)
{
    if (!m_encoder && !createEncoder(picture))
        return false;

    unsigned long const need = maxEncodedSize(picture);
    if (need > size) {
        TVP_CRITICAL("CxOpenH264Encoder::encode(): %1", "Too short buffer for encoding.");
        return false;
    }
    if (!convert(picture))
        return false;

    if (m_frameCounter - m_lastKeyFrame >= m_options.keyFrameInterval || m_frameCounter == 0)
        m_encoder->ForceIntraFrame(true, -1); // an IDR picture, in all layers

    SSourcePicture const source = fx_SourcePicture(picture, m_planes.get());
    int const error = m_encoder->EncodeFrame(&source, &m_frameInfo);
    if (error != 0) {
        TVP_CRITICAL("CxOpenH264Encoder::encode(): %1",
                     QStringLiteral("EncodeFrame failed with error %1").arg(error));
        return false;
    }
    if (m_frameInfo.eFrameType == videoFrameTypeInvalid) {
        TVP_CRITICAL("CxOpenH264Encoder::encode(): %1", "EncodeFrame made videoFrameTypeInvalid");
        return false;
    }
    if (m_frameInfo.eFrameType == videoFrameTypeSkip) {
        // A skipped picture takes no number, so the next forced IDR comes one picture later.
        size = 0;
        return true;
    }
    if (!assemble(out, need, size))
        return false;

    bool const isIdr = m_frameInfo.eFrameType == videoFrameTypeIDR;
    if (keyFrame)
        *keyFrame = isIdr;
    if (isIdr)
        m_lastKeyFrame = m_frameCounter;
    ++m_frameCounter;
    return true;
}

/// The number in a field that an option fills, which may be none that the library's enumeration has.
/// Signed, as options are, whatever the compiler chose for the enumeration.
template<typename Enumeration>
static int fx_Number(Enumeration const& field)
{
    int number;
    std::memcpy(&number, &field, sizeof number);
    return number;
}

std::string dumpEncParams(TagEncParamExt const& params)
{
    std::ostringstream text;
    text.imbue(std::locale::classic()); // numbers without a locale's separators
    text << "=== Encoder Params ===\n";
    text << "UsageType=" << params.iUsageType << "  Size=" << params.iPicWidth << "x" << params.iPicHeight
         << "  SpatialLayerNum=" << params.iSpatialLayerNum << "  FPS=" << params.fMaxFrameRate << "\n";
    text << "TargetBitrate=" << params.iTargetBitrate << "  MaxBitrate=" << params.iMaxBitrate
         << "  RCMode=" << params.iRCMode << "  Complexity=" << fx_Number(params.iComplexityMode)
         << "  FrameSkip=" << params.bEnableFrameSkip << "\n";
    int const layers = std::min(params.iSpatialLayerNum, int(MAX_SPATIAL_LAYER_NUM));
    for (int i = 0; i < layers; ++i) {
        SSpatialLayerConfig const& layer = params.sSpatialLayers[i];
        text << "Layer[" << i << "]: " << layer.iVideoWidth << "x" << layer.iVideoHeight
             << "  FPS=" << layer.fFrameRate << "  Bitrate=" << layer.iSpatialBitrate
             << "  Max=" << layer.iMaxSpatialBitrate << "  Profile=" << fx_Number(layer.uiProfileIdc)
             << "  Level=" << fx_Number(layer.uiLevelIdc)
             << "  SliceMode=" << layer.sSliceArgument.uiSliceMode << "\n";
    }
    return text.str();
}

void encoderLog(void*, int, char const*) {}

#include "support/OpenH264EncoderDouble.h"

#include <algorithm>
#include <cstring>

// NOLINTBEGIN(bugprone-reserved-identifier): the names are those that the linker's --wrap makes.
extern "C" {
int __real_WelsCreateSVCEncoder(ISVCEncoder** encoder);
void __real_WelsDestroySVCEncoder(ISVCEncoder* encoder);
int __wrap_WelsCreateSVCEncoder(ISVCEncoder** encoder);
void __wrap_WelsDestroySVCEncoder(ISVCEncoder* encoder);
}

SxOpenH264Double& fx_OpenH264Double()
{
    static SxOpenH264Double theDouble;
    return theDouble;
}

std::vector<int> SxOpenH264Double::forcedPictures() const
{
    std::vector<int> numbers;
    for (size_t i = 0; i < pictures.size(); ++i) {
        if (pictures[i].isForced)
            numbers.push_back(static_cast<int>(i));
    }
    return numbers;
}

SEncParamExt fx_DoubleDefaultParams()
{
    SEncParamExt params;
    std::memset(static_cast<void*>(&params), 0, sizeof params);
    params.iTemporalLayerNum = 3;
    params.iSpatialLayerNum = 1;
    params.uiIntraPeriod = 77;
    params.iNumRefFrame = 7;
    params.eSpsPpsIdStrategy = SPS_LISTING;
    params.iEntropyCodingModeFlag = 1;
    params.iMaxQp = 49;
    params.iMinQp = 3;
    params.uiMaxNalSize = 1111;
    params.iLTRRefNum = 5;
    params.iMultipleThreadIdc = 9;
    params.iLoopFilterDisableIdc = 2;
    params.iLoopFilterAlphaC0Offset = -4;
    params.iPaddingFlag = 6;
    params.bEnableDenoise = true;
    params.bEnableSceneChangeDetect = true;
    params.bPrefixNalAddingCtrl = true;
    // Also what the plug-in must overwrite starts out different from what it writes.
    params.iUsageType = CAMERA_VIDEO_NON_REAL_TIME;
    params.iRCMode = RC_TIMESTAMP_MODE;
    params.fMaxFrameRate = 12.5f;
    for (SSpatialLayerConfig& layer : params.sSpatialLayers) {
        layer.iVideoWidth = 12;
        layer.iVideoHeight = 34;
        layer.fFrameRate = 56.0f;
        layer.iDLayerQp = 31;
        layer.sSliceArgument.uiSliceMode = SM_RASTER_SLICE;
        layer.sSliceArgument.uiSliceNum = 8;
        layer.sSliceArgument.uiSliceSizeConstraint = 1500;
        layer.uiProfileIdc = PRO_MAIN;
        layer.uiLevelIdc = LEVEL_1_1;
    }
    return params;
}

static std::vector<unsigned char> fx_Plane(unsigned char const* data, int stride, int width, int height)
{
    std::vector<unsigned char> plane;
    for (int row = 0; row < height; ++row)
        plane.insert(plane.end(), data + row * stride, data + row * stride + width);
    return plane;
}

namespace {

class CxEncoderDouble : public ISVCEncoder
{
public:
    CxEncoderDouble() = default;
    ~CxEncoderDouble() override
    {
        if (m_real)
            __real_WelsDestroySVCEncoder(m_real);
    }

    int createReal() { return __real_WelsCreateSVCEncoder(&m_real); }

    int EXTAPI InitializeExt(SEncParamExt const* params) override;
    int EXTAPI GetDefaultParams(SEncParamExt* params) override;
    int EXTAPI Uninitialize() override;
    int EXTAPI EncodeFrame(SSourcePicture const* picture, SFrameBSInfo* info) override;
    int EXTAPI ForceIntraFrame(bool isIdr, int layer) override;

    int EXTAPI Initialize(SEncParamBase const*) override { return refuse(); }
    int EXTAPI EncodeParameterSets(SFrameBSInfo*) override { return refuse(); }
    int EXTAPI SetOption(ENCODER_OPTION, void*) override { return refuse(); }
    int EXTAPI GetOption(ENCODER_OPTION, void*) override { return refuse(); }

private:
    int refuse()
    {
        ++fx_OpenH264Double().otherCalls;
        return cmUnsupportedData;
    }
    int answer(SxEncodeAnswer const& script, SFrameBSInfo* info);

    ISVCEncoder* m_real = nullptr;
    bool m_isForced = false;
    std::string m_bytes[MAX_LAYER_NUM_OF_FRAME];        ///< of the layers of the last picture
    std::vector<int> m_lengths[MAX_LAYER_NUM_OF_FRAME]; ///< of their NAL units
};

int CxEncoderDouble::InitializeExt(SEncParamExt const* params)
{
    SxOpenH264Double& record = fx_OpenH264Double();
    record.params.emplace_back();
    std::memcpy(static_cast<void*>(&record.params.back()), params, sizeof *params);
    return m_real ? m_real->InitializeExt(params) : record.initError;
}

int CxEncoderDouble::GetDefaultParams(SEncParamExt* params)
{
    if (m_real)
        return m_real->GetDefaultParams(params);
    SEncParamExt const defaults = fx_DoubleDefaultParams();
    std::memcpy(static_cast<void*>(params), &defaults, sizeof defaults);
    return 0;
}

int CxEncoderDouble::Uninitialize()
{
    ++fx_OpenH264Double().uninitialized;
    return m_real ? m_real->Uninitialize() : 0;
}

int CxEncoderDouble::ForceIntraFrame(bool isIdr, int layer)
{
    if (!isIdr || layer != -1)
        ++fx_OpenH264Double().otherCalls;
    m_isForced = true;
    return m_real ? m_real->ForceIntraFrame(isIdr, layer) : 0;
}

int CxEncoderDouble::EncodeFrame(SSourcePicture const* picture, SFrameBSInfo* info)
{
    SxOpenH264Double& record = fx_OpenH264Double();
    auto const* const infoBytes = reinterpret_cast<unsigned char const*>(info);
    SxEncodedPicture seen;
    seen.header = *picture;
    seen.isForced = m_isForced;
    seen.isRecordZero =
        std::all_of(infoBytes, infoBytes + sizeof *info, [](unsigned char b) { return b == 0; });
    seen.planes.y = fx_Plane(picture->pData[0], picture->iStride[0], picture->iPicWidth, picture->iPicHeight);
    for (int i = 1; i <= 2; ++i) {
        (i == 1 ? seen.planes.u : seen.planes.v) =
            fx_Plane(picture->pData[i], picture->iStride[i], picture->iPicWidth / 2, picture->iPicHeight / 2);
    }
    m_isForced = false;
    size_t const number = record.pictures.size();
    record.pictures.push_back(std::move(seen));
    bool const isScripted = number < record.answers.size();
    if (m_real && !(isScripted && record.answers[number].error != 0))
        return m_real->EncodeFrame(picture, info);
    if (isScripted)
        return answer(record.answers[number], info);
    SxEncodeAnswer usual;
    usual.type = record.pictures.back().isForced ? videoFrameTypeIDR : videoFrameTypeP;
    usual.layers = {{"picture" + std::to_string(number)}};
    return answer(usual, info);
}

int CxEncoderDouble::answer(SxEncodeAnswer const& script, SFrameBSInfo* info)
{
    std::memset(info, 0, sizeof *info);
    info->eFrameType = script.type;
    info->iLayerNum = script.layerCount == -2 ? static_cast<int>(script.layers.size()) : script.layerCount;
    for (size_t i = 0; i < script.layers.size(); ++i) {
        m_bytes[i].clear();
        m_lengths[i].clear();
        for (std::string const& nal : script.layers[i]) {
            m_bytes[i] += nal;
            m_lengths[i].push_back(static_cast<int>(nal.size()));
        }
        SLayerBSInfo& layer = info->sLayerInfo[i];
        layer.iNalCount = script.emptyNalCount;
        if (!m_lengths[i].empty()) { // an empty layer shows no bytes and no lengths
            layer.iNalCount = static_cast<int>(m_lengths[i].size());
            layer.pNalLengthInByte = m_lengths[i].data();
            layer.pBsBuf = reinterpret_cast<unsigned char*>(&m_bytes[i][0]);
        }
    }
    return script.error;
}

} // namespace

int __wrap_WelsCreateSVCEncoder(ISVCEncoder** encoder)
{
    SxOpenH264Double& record = fx_OpenH264Double();
    *encoder = nullptr;
    if (!record.givesHandle)
        return record.createError;
    auto* const created = new CxEncoderDouble;
    *encoder = created;
    ++record.created;
    if (record.forwards && created->createReal() != 0)
        return cmInitParaError;
    return record.createError;
}

void __wrap_WelsDestroySVCEncoder(ISVCEncoder* encoder)
{
    ++fx_OpenH264Double().destroyed;
    delete encoder;
}
// NOLINTEND(bugprone-reserved-identifier)

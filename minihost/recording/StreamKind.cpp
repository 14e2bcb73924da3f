#include "StreamKind.h"

#include <QFile>
#include <algorithm>
#include <climits>
#include <numeric>

#include "H264Evidence.h"
#include "ProfileAndLevel.h"
#include "ShellWord.h"
#include "UnitScan.h"

using Codec = SxStreamKind::Codec;

namespace {

constexpr qint64 kLookAt = 4 << 20; // bytes; a key frame with all its slices is smaller

// First bytes of units of MPEG video (ISO/IEC 13818-2, 6.2) and H.265 (ITU-T H.265, 7.3.1.2).
constexpr uchar kMpegPicture = 0x00;
constexpr uchar kMpegSequence = 0xB3;
constexpr uchar kMpegExtension = 0xB5;
constexpr uchar kH265Sps = 0x42;

/// Whether a stream that begins with this unit is H.265: parameter sets, a delimiter or a message, each
/// followed by layer 0 and temporal layer 0. No stream of H.264 begins with them.
bool fx_IsH265(uchar const* unit, size_t size)
{
    bool const isType = unit[0] == 0x40 || unit[0] == kH265Sps || unit[0] == 0x46 || unit[0] == 0x4E;
    return size > 1 && isType && unit[1] == 0x01;
}

Codec fx_CodecOfFirst(uchar const* unit, size_t size)
{
    if (unit[0] == kMpegSequence)
        return Codec::Mpeg1; // until an extension says otherwise
    return fx_IsH265(unit, size) ? Codec::H265 : Codec::H264;
}

/// Size and depth of H.265's sequence parameter set (7.3.2.2.1).
void fx_ReadH265Sps(uchar const* unit, size_t size, SxStreamKind& kind)
{
    CxBitReader reader(unit, size);
    reader.skip(16 + 4);
    int const layers = static_cast<int>(reader.bits(3)); // sps_max_sub_layers_minus1
    reader.skip(1 + 88 + 8);                             // profile_tier_level(), of all layers
    quint32 const flags = layers > 0 ? reader.bits(16) : 0;
    for (int layer = 0; layer < layers; ++layer) {
        reader.skip((flags >> (15 - 2 * layer) & 1U) != 0 ? 88 : 0);
        reader.skip((flags >> (14 - 2 * layer) & 1U) != 0 ? 8 : 0);
    }
    reader.ue(); // sps_seq_parameter_set_id
    quint32 const chroma_format_idc = reader.ue();
    if (chroma_format_idc == 3)
        reader.flag();
    qint64 width = reader.ue();
    qint64 height = reader.ue();
    if (reader.flag()) { // conformance_window_flag
        int const unitX = chroma_format_idc == 1 || chroma_format_idc == 2 ? 2 : 1;
        int const unitY = chroma_format_idc == 1 ? 2 : 1;
        qint64 const left = reader.ue(), right = reader.ue(), top = reader.ue(), bottom = reader.ue();
        width -= (left + right) * unitX;
        height -= (top + bottom) * unitY;
    }
    quint32 const bitDepth = 8 + reader.ue();
    if (!reader.isGood() || width < 1 || width > 16384 || height < 1 || height > 16384)
        return;
    kind.width = static_cast<int>(width);
    kind.height = static_cast<int>(height);
    if (bitDepth > 8 && bitDepth <= 16)
        kind.features = QStringList{QStringLiteral("%1 bits").arg(bitDepth)};
}

void fx_TakeMpegUnit(uchar const* unit, size_t size, SxStreamKind& kind)
{
    if (unit[0] == kMpegSequence && size >= 4 && kind.width == 0) {
        kind.width = unit[1] << 4 | unit[2] >> 4;
        kind.height = (unit[2] & 0x0F) << 8 | unit[3];
    } else if (unit[0] == kMpegExtension && size >= 2 && unit[1] >> 4 == 1) { // sequence_extension()
        kind.codec = Codec::Mpeg2;
    }
}

/// A picture takes two ticks (ITU-T H.264, E.2.1, time_scale).
SxPictureRate fx_Rate(SxH264Sps const& sps)
{
    quint64 const ticks = quint64{2} * sps.num_units_in_tick;
    quint64 const divisor = std::max<quint64>(std::gcd(quint64{sps.time_scale}, ticks), 1);
    quint64 const numerator = sps.time_scale / divisor;
    quint64 const denominator = ticks / divisor;
    if (numerator > INT_MAX || denominator > INT_MAX)
        return {};
    SxPictureRate const rate{static_cast<int>(numerator), static_cast<int>(denominator)};
    return fx_IsSane(rate) ? rate : SxPictureRate();
}

void fx_Conclude(CxH264Evidence const& evidence, SxStreamKind& kind)
{
    if (!evidence.isH264())
        kind.codec = Codec::Unknown;
    kind.isForeign = evidence.isForeign();
    if (kind.isForeign)
        kind.features = evidence.features();
    SxH264Sps const sps = evidence.sps();
    kind.width = sps.width;
    kind.height = sps.height;
    if (sps.width == 0)
        return;
    SxProfileAndLevel const named = fx_ProfileAndLevel(sps);
    kind.profile = named.profile;
    kind.level = named.level;
    kind.saysColours = sps.colour_description_present_flag;
    kind.rate = fx_Rate(sps);
}

/// Pictures of H.265 or MPEG video that begin with this unit, counted in fields, of which a picture has two.
int fx_FieldsOf(uchar const* unit, size_t size, Codec codec)
{
    if (codec == Codec::H265) // slices, first_slice_segment_in_pic_flag
        return (unit[0] >> 1 & 0x3F) < 32 && size > 2 && (unit[2] & 0x80) != 0 ? 2 : 0;
    if (unit[0] == kMpegPicture)
        return 2;
    bool const isOfPicture =
        unit[0] == kMpegExtension && size > 3 && unit[1] >> 4 == 8; // picture_coding_extension()
    return isOfPicture && (unit[3] & 3) != 3 ? -1 : 0;              // picture_structure: a field after all
}

} // namespace

QString SxStreamKind::codecName() const
{
    switch (codec) {
    case Codec::H264:
        return QStringLiteral("H.264");
    case Codec::H265:
        return QStringLiteral("H.265");
    case Codec::Mpeg1:
        return QStringLiteral("MPEG-1");
    case Codec::Mpeg2:
        return QStringLiteral("MPEG-2");
    case Codec::Unknown:
        break;
    }
    return QString();
}

SxStreamKind fx_StreamKindOf(QString const& fileName)
{
    SxStreamKind kind;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || !fx_BeginsWithStartCode(file))
        return kind;
    CxH264Evidence evidence;
    fx_ForEachUnit(file, kLookAt, [&](uchar const* unit, size_t size) {
        if (kind.codec == Codec::Unknown)
            kind.codec = fx_CodecOfFirst(unit, size);
        if (kind.codec == Codec::H264)
            evidence.take(unit, size);
        else if (kind.codec != Codec::H265)
            fx_TakeMpegUnit(unit, size, kind);
        else if (unit[0] == kH265Sps && kind.width == 0)
            fx_ReadH265Sps(unit, size, kind);
    });
    kind.isForeign = kind.codec != Codec::Unknown;
    if (kind.codec == Codec::H264)
        fx_Conclude(evidence, kind);
    return kind;
}

qint64 fx_CountPictures(QString const& fileName, Codec codec)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    CxH264Evidence evidence;
    qint64 fields = 0;
    bool const isRead = fx_ForEachUnit(file, -1, [&](uchar const* unit, size_t size) {
        if (codec == Codec::H264)
            evidence.take(unit, size);
        else
            fields += fx_FieldsOf(unit, size, codec);
    });
    if (!isRead)
        return -1;
    return codec == Codec::H264 ? evidence.pictures() : (fields + 1) / 2;
}

QString fx_ForeignStreamText(SxStreamKind const& kind)
{
    QString text = kind.codec == Codec::H264 ? QStringLiteral("H.264 of another encoder")
                                             : kind.codecName() + QStringLiteral(" video");
    if (!kind.features.isEmpty())
        text += QStringLiteral(" (%1)").arg(kind.features.join(QStringLiteral(", ")));
    return text;
}

/// As a word for a shell.
QString fx_CommandToRecord(QString const& fileName)
{
    return QStringLiteral("minihost record %1 out.h264").arg(fx_ShellWord(fileName));
}

QString fx_CommandToCutFront(QString const& fileName, qint64 bytes)
{
    return QStringLiteral("tail -c +%1 %2 > out.h264").arg(bytes + 1).arg(fx_ShellWord(fileName));
}

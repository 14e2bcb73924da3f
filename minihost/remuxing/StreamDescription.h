#pragma once

#include <QByteArray>
#include <optional>

#include "FFmpegHandles.h"
#include "PictureRanges.h"
#include "PictureRate.h"

/// How the pictures of a recording are to be shown, which its stream does not say.
struct SxStreamDescription
{
    AVRational rate = {kPicturesASecond, 1}; ///< pictures a second, in lowest terms
    bool isRateAssumed = true;               ///< nobody told it
    int rotation = 0;   ///< degrees clockwise by which they are to be turned: 0, 90, 180 or 270
    QByteArray comment; ///< UTF-8, for people: what a container can say otherwise nowhere; may be empty

    void takeRate(SxPictureRate const& told); ///< an unknown one stays assumed

    // What the encoder's conversion makes of the host's pictures, whatever they are.
    static constexpr AVColorRange kRange = AVCOL_RANGE_JPEG;
    static constexpr AVColorSpace kMatrix = AVCOL_SPC_SMPTE170M; // BT.601
    static constexpr AVColorPrimaries kPrimaries = AVCOL_PRI_BT709;
    static constexpr AVColorTransferCharacteristic kTransfer = AVCOL_TRC_IEC61966_2_1; // sRGB
};

/// For a recording that lacks \p count of its source's \p pictures; empty when it lacks none.
QByteArray fx_SkippedComment(QVector<SxPictureRange> const& skipped, int count, int pictures);

/// The sequence parameter set \p sps, from its header byte on, with rate and colours in its VUI (ITU-T H.264,
/// E.2.1); nothing when it makes no sense. What comes before the VUI stays bit for bit.
std::optional<QByteArray> fx_DescribeSps(QByteArray const& sps, SxStreamDescription const& description);

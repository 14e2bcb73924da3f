#include "EncoderTrial.h"

#include <memory>
#include <vector>

#include "CodecOptions.h"
#include "CxPicBufAPI.h"
#include "CxVideoCodecManager.h"
#include "IxVideoEncoder.h"
#include "PictureChanges.h"
#include "PictureFormat.h"

bool fx_EncoderTakes(SxPicBuf const& picture)
{
    std::unique_ptr<IxVideoEncoder> const encoder(
        CxVideoCodecManager::instance()->encoderForFourCC(kFourCCH264));
    if (!encoder)
        return false;
    SxPicBufInfo wanted;
    encoder->queryOuputFormat(picture, wanted);
    SxPicBuf const* given = &picture;
    CxOwnedPicture scaled;
    if (wanted.width != picture.width || wanted.height != picture.height) {
        SxPicBufInfo format = picture;
        format.width = wanted.width;
        format.height = wanted.height;
        if (!fx_PreparePicture(scaled.get(), format) || !CxPicBufAPI::Resize(picture, scaled.get()))
            return false;
        given = &scaled.get();
    }
    unsigned long size = encoder->maxEncodedSize(*given);
    std::vector<unsigned char> buffer(size);
    return encoder->encode(*given, buffer.data(), size, nullptr);
}

SxPicBufInfo fx_SavedFormat(SxPicBufInfo const& input, SxEncoderOptions const& options)
{
    fx_SetCodecOptions(kFourCCH264, options.toMap());
    std::unique_ptr<IxVideoEncoder> const encoder(
        CxVideoCodecManager::instance()->encoderForFourCC(kFourCCH264));
    SxPicBufInfo saved = input;
    if (encoder)
        encoder->queryOuputFormat(input, saved);
    return saved;
}

QString fx_ObstacleToEncoding(SxPicBufInfo const& input, SxPicBufInfo const& saved)
{
    auto const isTaken = [](SxPicBufInfo const& info) {
        constexpr quint32 least = kSmallestSide;
        return info.width >= least && info.height >= least;
    };
    if (isTaken(saved))
        return QString();
    bool const isShrunk =
        isTaken(input); // what the user cannot see: the level leaves less than the picture has
    return QStringLiteral("Pictures of %1 x %2 %3: the encoder takes 16 x 16 and more.")
        .arg(input.width)
        .arg(input.height)
        .arg(isShrunk ? QStringLiteral("would be saved as %1 x %2").arg(saved.width).arg(saved.height)
                      : QStringLiteral("are too small"));
}

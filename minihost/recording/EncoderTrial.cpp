#include "EncoderTrial.h"

#include <memory>
#include <vector>

#include "CxPicBufAPI.h"
#include "CxVideoCodecManager.h"
#include "EncoderOptions.h"
#include "IxVideoEncoder.h"
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

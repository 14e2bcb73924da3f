#include "Extradata.h"

#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/mem.h>
}

bool fx_SetExtradata(AVCodecParameters& stream, QByteArray const& bytes)
{
    auto const size = static_cast<size_t>(bytes.size());
    stream.extradata = static_cast<uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!stream.extradata)
        return false;
    std::memcpy(stream.extradata, bytes.constData(), size);
    stream.extradata_size = static_cast<int>(size);
    return true;
}

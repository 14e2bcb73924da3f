#include "support/LoadedPictures.h"

#include <memory>

#include "CxImageData.h"
#include "H264VideoLoader.h"

QByteArray fx_LoadedPicture(CxH264VideoLoader& loader, int frame)
{
    std::unique_ptr<IxChainData> const data(loader.loadedData(frame));
    auto const* const image = qobject_cast<CxImageData const*>(data.get());
    QByteArray pixels;
    if (!image)
        return pixels;
    SxPicBuf const& picture = *image->picBuf();
    for (quint32 y = 0; y < picture.height; ++y)
        pixels.append(reinterpret_cast<char const*>(picture.data + size_t(y) * picture.pitch),
                      static_cast<int>(picture.width * 4));
    return pixels;
}

QList<QByteArray> fx_LoadedPictures(QString const& fileName)
{
    CxH264VideoLoader loader;
    loader.setInputFile(fileName);
    QList<QByteArray> pictures;
    for (int frame = 0, count = loader.sequenceSize(); frame < count; ++frame)
        pictures.append(fx_LoadedPicture(loader, frame));
    return pictures;
}

#include "BenchStream.h"

#include "CxPicBufAPI.h"
#include "TestCamera.h"
#include "openH264Encoder.h"

void SxPictureDeleter::operator()(SxPicBuf* picture) const
{
    CxPicBufAPI::FreePicBuf(*picture, true);
    delete picture;
}

std::vector<PicturePtr> fx_CameraPictures(QSize size, int count)
{
    SxTestCameraOptions options;
    options.width = static_cast<quint32>(size.width());
    options.height = static_cast<quint32>(size.height());
    options.frames = count;
    options.format = *fx_TestCameraFormat(QStringLiteral("bgr32"));
    CxTestCamera camera(options);
    std::vector<PicturePtr> pictures;
    for (int i = 0; i < count; ++i) {
        pictures.emplace_back(new SxPicBuf);
        if (camera.next(*pictures.back()) != IxPictureSource::Result::Picture)
            qFatal("%s", qPrintable(camera.errorText()));
    }
    return pictures;
}

QByteArray fx_EncodeCamera(QSize size, int count, int keyFrameInterval)
{
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions({{QStringLiteral("h264_keyframerate"), keyFrameInterval}});
    QByteArray stream;
    for (PicturePtr const& picture : fx_CameraPictures(size, count)) {
        unsigned long bytes = encoder.maxEncodedSize(*picture);
        QByteArray frame(static_cast<int>(bytes), Qt::Uninitialized);
        if (!encoder.encode(*picture, frame.data(), bytes, nullptr))
            qFatal("the encoder failed");
        stream.append(frame.constData(), static_cast<int>(bytes));
    }
    return stream;
}

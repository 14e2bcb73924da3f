#include "support/CodedStream.h"

#include <vector>

#include "openH264Encoder.h"
#include "support/TestPicture.h"

QByteArray SxCodedStream::bytes() const
{
    QByteArray all;
    for (QByteArray const& frame : frames)
        all += frame;
    return all;
}

void fx_DrawFrame(CxTestPicture& picture, int frame)
{
    SxPicBuf const& buf = picture.buf;
    quint32 const side = buf.height / 3;
    quint32 const left = static_cast<quint32>(frame) * 3 % (buf.width - side);
    quint32 const top = static_cast<quint32>(frame) * 5 % (buf.height - side);
    for (quint32 y = 0; y < buf.height; ++y) {
        for (quint32 x = 0; x < buf.width; ++x) {
            bool const isInSquare = x - left < side && y - top < side;
            uchar* const pixel = buf.data + y * buf.pitch + x * buf.components;
            for (quint32 c = 0; c < buf.components; ++c)
                pixel[c] = static_cast<uchar>(isInSquare ? 40 + 60 * c + static_cast<quint32>(frame) % 16
                                                         : (x * (c + 1) + y * 2) * 255 / (3 * buf.width));
        }
    }
}

SxCodedStream fx_CodeStream(int count, quint32 width, quint32 height, QMap<QString, QVariant> const& options)
{
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions(options);
    CxTestPicture picture(width, height);
    std::vector<char> buffer(encoder.maxEncodedSize(picture.buf) + 4096);
    SxCodedStream stream;
    for (int frame = 0; frame < count; ++frame) {
        fx_DrawFrame(picture, frame);
        unsigned long size = buffer.size();
        bool isKey = false;
        if (!encoder.encode(picture.buf, buffer.data(), size, &isKey) || size == 0)
            return SxCodedStream();
        if (isKey)
            stream.keys.append(frame);
        stream.frames.append(QByteArray(buffer.data(), static_cast<int>(size)));
    }
    return stream;
}

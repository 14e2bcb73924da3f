#include <QObject>
#include <algorithm>
#include <tarnCore.h>

/// A decoder of streams whose coded frames are one byte each: a picture of 16 x 16 pixels of that grey.
class CxOneGreyDecoder : public QObject, public IxVideoDecoder
{
    Q_OBJECT
    Q_CLASSINFO("CustomName", "One Grey Video Decoder")
public:
    Q_INVOKABLE CxOneGreyDecoder() {}
    QString name() override { return QStringLiteral("One grey"); }
    unsigned int fourCC() override { return 0x59455247; } // "GREY"
    bool decode(int frame, IxVideoAccessor* accessor, SxPicBuf& picture) override
    {
        unsigned char grey = 0;
        unsigned long size = accessor->frameDataSize(frame);
        if (size != 1 || !accessor->frameData(frame, &grey, size))
            return false;
        SxPicBufInfo format;
        format.width = format.height = format.pitch = 16;
        format.components = 1;
        format.bitsPerSample = 8;
        format.sampleType = 2; // bytes
        format.layout = 1;     // packed
        if (!picture.data && !CxPicBufAPI::AllocPicBufFromHeap(picture, format, false, 0))
            return false;
        std::fill_n(picture.data, picture.pitch * picture.height, grey);
        return true;
    }
};

class CxOneGreyPlugin : public QObject, public CxPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.CxOneGreyPlugin")
    Q_INTERFACES(CxPlugin)
public:
    bool init() override
    {
        return CxRTTI::instance()->registerClass(this, CxOneGreyDecoder::staticMetaObject, "IxVideoDecoder");
    }
    QString name() const override { return QStringLiteral("One grey"); }
};

#include "OneGrey.moc"

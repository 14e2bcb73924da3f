// The host and its plug-ins are built apart: what counts between them is where a field and a virtual
// operation lie. Every interface is therefore called through a class of the test's own, which lists the
// operations in the order of the contract and knows nothing of host/.

#include <QtTest>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "tarnCore.h"

// The calls below go through a class that the object does not have: that is their point.
#define TARN_NO_VPTR_CHECK __attribute__((no_sanitize("vptr")))

// Not in an unnamed namespace, where the compiler may conclude that nothing implements these.
namespace contract {

struct Plugin
{
    virtual ~Plugin() {}
    virtual bool init() = 0;
    virtual void finish() = 0;
    virtual void loadSettings(QSettings*) = 0;
    virtual void saveSettings(QSettings*) = 0;
    virtual QString copyrightNotice() const = 0;
    virtual QString name() const = 0;
    virtual QString author() const = 0;
    virtual QString description() const = 0;
    virtual void versionNumbers(int&, int&, int&) const = 0;
    virtual QString versionText() const = 0;
    virtual QString website() const = 0;
    virtual void activeViewChanged(int) = 0;
    virtual void viewAboutToClose(int) = 0;
    virtual void newCameraConnected(void*) = 0;
    virtual void cameraDisconnected(void*) = 0;
    virtual void viewGotNewImage(int, void const*) = 0;
    virtual void viewMouseBtnPressEvent(int, void*) = 0;
    virtual void viewMouseMoveEvent(int, void*) = 0;
    virtual void viewMouseBtnReleaseEvent(int, void*) = 0;
    virtual void viewMouseDoubleClickEvent(int, void*) = 0;
    virtual void customCommand(QString const&, int, int, void*, void*) = 0;
};

struct Loader
{
    virtual ~Loader() {}
    virtual bool load() = 0;
    virtual int sequenceSize() = 0;
    virtual void* loadedData(int) = 0;
    virtual QString inputFile() = 0;
    virtual void setInputFile(QString const&) = 0;
    virtual double loadedFps() = 0;
    virtual QList<CxImageFormat> supportedImageFormats() = 0;
};

struct Accessor
{
    virtual int framesCount() = 0;
    virtual unsigned long frameDataSize(int) = 0;
    virtual bool frameData(int, void*, unsigned long&) = 0;
    virtual int lastProcessedFrame() = 0;
    virtual void keyFrames(QList<int>&) = 0;
};

struct Saver
{
    virtual ~Saver() {}
    virtual void setSequenceSize(int) = 0;
    virtual bool save(void const*, int) = 0;
    virtual QList<CxImageFormat> supportedImageFormats() = 0;
    virtual void setOutputFile(QString const&) = 0;
    virtual bool querySavedImageFormat(SxPicBufInfo const&, SxPicBufInfo&) = 0;
    virtual void setSaverOptions(QMap<QString, QVariant> const&) = 0;
    virtual void* widgetForSaveDlg(void*) = 0;
    virtual QMap<QString, QVariant> optionsFromWidgetInSaveDlg(void*) = 0;
    virtual QMap<QString, QVariant> codecOptionsFromWigetInSaveDlg(void*, unsigned int&) = 0;
};

struct Encoder
{
    virtual ~Encoder() {}
    virtual QString name() = 0;
    virtual unsigned int fourCC() = 0;
    virtual bool encode(SxPicBuf const&, void*, unsigned long&, bool*) = 0;
    virtual unsigned long maxEncodedSize(SxPicBufInfo const&) = 0;
    virtual void queryOuputFormat(SxPicBufInfo const&, SxPicBufInfo&) = 0;
    virtual void setEncoderOptions(QMap<QString, QVariant> const&) = 0;
    virtual double getForcedFps() = 0;
    virtual void* widgetForSaveDlg(void*) = 0;
    virtual QMap<QString, QVariant> optionsFromWidgetInSaveDlg(void*) = 0;
};

struct Decoder
{
    virtual ~Decoder() {}
    virtual QString name() = 0;
    virtual unsigned int fourCC() = 0;
    virtual bool decode(int, void*, SxPicBuf&) = 0;
};

} // namespace contract

/// What lies at \p object as a Contract; the compiler, who must not see what it is, forgets it here.
template<typename Contract>
static Contract* fx_As(void* object)
{
    asm volatile("" : "+r"(object) : : "memory"); // and has by now stored all that it knows
    return static_cast<Contract*>(object);
}

/// The operations called, in order, with what they were given.
static QStringList s_calls;

static void fx_Note(char const* operation) { s_calls.append(QLatin1String(operation)); }
static void fx_Note(char const* operation, int argument)
{
    s_calls.append(QStringLiteral("%1 %2").arg(QLatin1String(operation)).arg(argument));
}

static void* fx_Pointer(quintptr value) { return reinterpret_cast<void*>(value); }

template<typename Pointer>
static int fx_Number(Pointer const* pointer)
{
    return static_cast<int>(reinterpret_cast<quintptr>(pointer));
}

/// Overrides nothing: shows the host's bodies.
class CxSilentPlugin : public CxPlugin
{};

class CxNotingPlugin : public CxPlugin
{
public:
    ~CxNotingPlugin() override { fx_Note("~"); }
    bool init() override { return fx_Note("init"), true; }
    void finish() override { fx_Note("finish"); }
    void loadSettings(QSettings* settings) override { fx_Note("loadSettings", fx_Number(settings)); }
    void saveSettings(QSettings* settings) override { fx_Note("saveSettings", fx_Number(settings)); }
    QString copyrightNotice() const override { return QStringLiteral("copyrightNotice"); }
    QString name() const override { return QStringLiteral("name"); }
    QString author() const override { return QStringLiteral("author"); }
    QString description() const override { return QStringLiteral("description"); }
    void version(int& major, int& minor, int& build) const override { major = 4, minor = 5, build = 6; }
    QString version() const override { return QStringLiteral("version"); }
    QString website() const override { return QStringLiteral("website"); }
    void activeViewChanged(int view) override { fx_Note("activeViewChanged", view); }
    void viewAboutToClose(int view) override { fx_Note("viewAboutToClose", view); }
    void newCameraConnected(void* camera) override { fx_Note("newCameraConnected", fx_Number(camera)); }
    void cameraDisconnected(void* camera) override { fx_Note("cameraDisconnected", fx_Number(camera)); }
    void viewGotNewImage(int view, CxImageData const* image) override
    {
        fx_Note("viewGotNewImage", view + fx_Number(image));
    }
    void viewMouseBtnPressEvent(int view, QGraphicsSceneMouseEvent* event) override
    {
        fx_Note("viewMouseBtnPressEvent", view + fx_Number(event));
    }
    void viewMouseMoveEvent(int view, QGraphicsSceneMouseEvent* event) override
    {
        fx_Note("viewMouseMoveEvent", view + fx_Number(event));
    }
    void viewMouseBtnReleaseEvent(int view, QGraphicsSceneMouseEvent* event) override
    {
        fx_Note("viewMouseBtnReleaseEvent", view + fx_Number(event));
    }
    void viewMouseDoubleClickEvent(int view, QGraphicsSceneMouseEvent* event) override
    {
        fx_Note("viewMouseDoubleClickEvent", view + fx_Number(event));
    }
    void customCommand(QString const& command, int view, int argument, void* in, void* out) override
    {
        QCOMPARE(command, QStringLiteral("command"));
        fx_Note("customCommand", view + argument + fx_Number(in) + fx_Number(out));
    }
};

class CxNotingLoader : public IxImageDataLoader
{
public:
    ~CxNotingLoader() override { fx_Note("~"); }
    bool load() override { return fx_Note("load"), true; }
    int sequenceSize() override { return 11; }
    IxChainData* loadedData(int index) override
    {
        fx_Note("loadedData", index);
        return nullptr;
    }
    QString inputFile() override { return QStringLiteral("input"); }
    void setInputFile(QString const& fileName) override { s_calls.append(fileName); }
    double loadedFps() override { return 12.5; }
    QList<CxImageFormat> supportedImageFormats() override { return {CxImageFormat{QStringLiteral("f"), 2}}; }
};

class CxNotingAccessor : public IxVideoAccessor
{
public:
    int framesCount() override { return 21; }
    unsigned long frameDataSize(int frame) override { return 5000000000UL + static_cast<unsigned>(frame); }
    bool frameData(int frame, void* buffer, unsigned long& size) override
    {
        fx_Note("frameData", frame + fx_Number(buffer));
        size += 1;
        return true;
    }
    int lastProcessedFrame() override { return 22; }
    void keyFrames(QList<int>& frames) override { frames = {0, 30}; }
};

class CxNotingSaver : public IxImageDataSaver
{
public:
    ~CxNotingSaver() override { fx_Note("~"); }
    void setSequenceSize(int count) override { fx_Note("setSequenceSize", count); }
    bool save(IxChainData const* data, int index) override
    {
        fx_Note("save", index + fx_Number(data));
        return true;
    }
    QList<CxImageFormat> supportedImageFormats() override { return {CxImageFormat{QStringLiteral("g"), 2}}; }
    void setOutputFile(QString const& fileName) override { s_calls.append(fileName); }
    bool querySavedImageFormat(SxPicBufInfo const& input, SxPicBufInfo& output) override
    {
        output.width = input.width + 1;
        return true;
    }
    void setSaverOptions(QMap<QString, QVariant> const& options) override { s_calls += options.keys(); }
    QWidget* widgetForSaveDlg(QWidget* parent) override
    {
        fx_Note("widgetForSaveDlg", fx_Number(parent));
        return nullptr;
    }
    QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget*) override
    {
        return {{QStringLiteral("codec"), 1}};
    }
    QMap<QString, QVariant> codecOptionsFromWigetInSaveDlg(QWidget*, unsigned int& fourCC) override
    {
        fourCC = 31;
        return {{QStringLiteral("quality"), 1}};
    }
};

class CxNotingEncoder : public IxVideoEncoder
{
public:
    ~CxNotingEncoder() override { fx_Note("~"); }
    QString name() override { return QStringLiteral("encoder"); }
    unsigned int fourCC() override { return 41; }
    bool encode(SxPicBuf const& picture, void* buffer, unsigned long& size, bool* keyFrame) override
    {
        fx_Note("encode", static_cast<int>(picture.width) + fx_Number(buffer));
        size += 1;
        *keyFrame = true;
        return true;
    }
    unsigned long maxEncodedSize(SxPicBufInfo const& format) override { return format.width; }
    void queryOuputFormat(SxPicBufInfo const& input, SxPicBufInfo& output) override
    {
        output.width = input.width + 2;
    }
    void setEncoderOptions(QMap<QString, QVariant> const& options) override { s_calls += options.keys(); }
    QWidget* widgetForSaveDlg(QWidget* parent) override
    {
        fx_Note("widgetForSaveDlg", fx_Number(parent));
        return nullptr;
    }
    QMap<QString, QVariant> optionsFromWidgetInSaveDlg(QWidget*) override
    {
        return {{QStringLiteral("quality"), 1}};
    }
};

class CxNotingDecoder : public IxVideoDecoder
{
public:
    ~CxNotingDecoder() override { fx_Note("~"); }
    QString name() override { return QStringLiteral("decoder"); }
    unsigned int fourCC() override { return 51; }
    bool decode(int frame, IxVideoAccessor* accessor, SxPicBuf& picture) override
    {
        fx_Note("decode", frame + fx_Number(accessor));
        picture.width = 52;
        return true;
    }
};

class tst_hostInterfaces : public QObject
{
    Q_OBJECT

private slots:
    void init() { s_calls.clear(); }
    void formatRecordHasItsLayout();
    void pictureIsItsFormat();
    void setPicFormatCopiesTheFormatOnly();
    void fourCCReadsH264();
    void pluginSlotsStandInOrder();
    void loaderSlotsStandInOrder();
    void accessorSlotsStandInOrder();
    void saverSlotsStandInOrder();
    void encoderSlotsStandInOrder();
    void decoderSlotsStandInOrder();
    void pluginDefaultsDoNothing();
    void pluginInterfaceHasItsId();
    void chainDataIsToldApartByItsType();
};

void tst_hostInterfaces::formatRecordHasItsLayout()
{
    SxPicBufInfo const format;
    quint32 expected[9] = {0, 0, 0, 0, 0, 0, 0, 1, 0}; // the fields in order; only layout is not 0
    QCOMPARE(std::memcmp(&format, expected, sizeof expected), 0);
    QVERIFY(!format.formatFlag);

    QCOMPARE(offsetof(SxPicBufInfo, width), std::size_t(0));
    QCOMPARE(offsetof(SxPicBufInfo, height), std::size_t(4));
    QCOMPARE(offsetof(SxPicBufInfo, pitch), std::size_t(8));
    QCOMPARE(offsetof(SxPicBufInfo, components), std::size_t(12));
    QCOMPARE(offsetof(SxPicBufInfo, bitsPerSample), std::size_t(16));
    QCOMPARE(offsetof(SxPicBufInfo, auxField), std::size_t(20));
    QCOMPARE(offsetof(SxPicBufInfo, sampleType), std::size_t(24));
    QCOMPARE(offsetof(SxPicBufInfo, layout), std::size_t(28));
    QCOMPARE(offsetof(SxPicBufInfo, formatVariant), std::size_t(32));
    QCOMPARE(offsetof(SxPicBufInfo, formatFlag), std::size_t(36));
    QVERIFY(std::is_trivially_copyable<SxPicBufInfo>::value);
}

static quint32 fx_WidthOf(SxPicBufInfo const& format) { return format.width; }

void tst_hostInterfaces::pictureIsItsFormat()
{
    SxPicBuf picture;
    QVERIFY(!picture.data);
    QCOMPARE(picture.timestamp, quint64(0));
    QCOMPARE(picture.layout, 1U);

    picture.width = 640;
    QCOMPARE(fx_WidthOf(picture), 640U);
    SxPicBufInfo const& format = picture;
    QCOMPARE(static_cast<void const*>(&format), static_cast<void const*>(&picture));

    // `data` follows the format at once: 40 bytes of it on every 64-bit machine.
    QCOMPARE(reinterpret_cast<char const*>(&picture.data) - reinterpret_cast<char const*>(&picture),
             std::ptrdiff_t(40));
}

void tst_hostInterfaces::setPicFormatCopiesTheFormatOnly()
{
    unsigned char pixel = 7;
    SxPicBuf picture;
    picture.data = &pixel;
    picture.timestamp = 99;

    SxPicBufInfo format;
    format.width = 1;
    format.height = 2;
    format.pitch = 3;
    format.components = 4;
    format.bitsPerSample = 5;
    format.auxField = 6;
    format.sampleType = 7;
    format.layout = 8;
    format.formatVariant = 9;
    format.formatFlag = true;
    picture.setPicFormat(format);

    SxPicBufInfo const& copied = picture;
    QCOMPARE(std::memcmp(&copied, &format, 9 * sizeof(quint32)), 0);
    QVERIFY(picture.formatFlag);
    QCOMPARE(picture.data, &pixel);
    QCOMPARE(picture.timestamp, quint64(99));
}

void tst_hostInterfaces::fourCCReadsH264()
{
    quint32 const fourCC = quint32('H') | quint32('2') << 8 | quint32('6') << 16 | quint32('4') << 24;
    QCOMPARE(fourCC, 0x34363248U);
    uchar bytes[4];
    qToLittleEndian(fourCC, bytes);
    QCOMPARE(QByteArray(reinterpret_cast<char const*>(bytes), 4), QByteArray("H264"));
}

TARN_NO_VPTR_CHECK void tst_hostInterfaces::pluginSlotsStandInOrder()
{
    auto* const plugin = fx_As<contract::Plugin>(static_cast<CxPlugin*>(new CxNotingPlugin));
    QVERIFY(plugin->init());
    plugin->finish();
    plugin->loadSettings(static_cast<QSettings*>(fx_Pointer(1)));
    plugin->saveSettings(static_cast<QSettings*>(fx_Pointer(2)));
    QCOMPARE(plugin->copyrightNotice(), QStringLiteral("copyrightNotice"));
    QCOMPARE(plugin->name(), QStringLiteral("name"));
    QCOMPARE(plugin->author(), QStringLiteral("author"));
    QCOMPARE(plugin->description(), QStringLiteral("description"));
    int major = 0;
    int minor = 0;
    int build = 0;
    plugin->versionNumbers(major, minor, build);
    QCOMPARE(major * 100 + minor * 10 + build, 456);
    QCOMPARE(plugin->versionText(), QStringLiteral("version"));
    QCOMPARE(plugin->website(), QStringLiteral("website"));
    plugin->activeViewChanged(3);
    plugin->viewAboutToClose(4);
    plugin->newCameraConnected(fx_Pointer(5));
    plugin->cameraDisconnected(fx_Pointer(6));
    plugin->viewGotNewImage(3, fx_Pointer(4));
    plugin->viewMouseBtnPressEvent(3, fx_Pointer(5));
    plugin->viewMouseMoveEvent(3, fx_Pointer(6));
    plugin->viewMouseBtnReleaseEvent(3, fx_Pointer(7));
    plugin->viewMouseDoubleClickEvent(3, fx_Pointer(8));
    plugin->customCommand(QStringLiteral("command"), 1, 2, fx_Pointer(4), fx_Pointer(5));
    delete plugin;
    QCOMPARE(s_calls, (QStringList{"init", "finish", "loadSettings 1", "saveSettings 2",
                                   "activeViewChanged 3", "viewAboutToClose 4", "newCameraConnected 5",
                                   "cameraDisconnected 6", "viewGotNewImage 7", "viewMouseBtnPressEvent 8",
                                   "viewMouseMoveEvent 9", "viewMouseBtnReleaseEvent 10",
                                   "viewMouseDoubleClickEvent 11", "customCommand 12", "~"}));
}

TARN_NO_VPTR_CHECK void tst_hostInterfaces::loaderSlotsStandInOrder()
{
    auto* const loader = fx_As<contract::Loader>(static_cast<IxImageDataLoader*>(new CxNotingLoader));
    QVERIFY(loader->load());
    QCOMPARE(loader->sequenceSize(), 11);
    QVERIFY(!loader->loadedData(9));
    QCOMPARE(loader->inputFile(), QStringLiteral("input"));
    loader->setInputFile(QStringLiteral("setInputFile"));
    QCOMPARE(loader->loadedFps(), 12.5);
    QCOMPARE(loader->supportedImageFormats().value(0).description, QStringLiteral("f"));
    delete loader;
    QCOMPARE(s_calls, (QStringList{"load", "loadedData 9", "setInputFile", "~"}));
}

TARN_NO_VPTR_CHECK void tst_hostInterfaces::accessorSlotsStandInOrder()
{
    CxNotingAccessor noting;
    auto* const accessor = fx_As<contract::Accessor>(static_cast<IxVideoAccessor*>(&noting));
    QCOMPARE(accessor->framesCount(), 21);
    QCOMPARE(accessor->frameDataSize(3), 5000000003UL); // 64 bits wide
    unsigned long size = 7;
    QVERIFY(accessor->frameData(3, fx_Pointer(4), size));
    QCOMPARE(size, 8UL);
    QCOMPARE(accessor->lastProcessedFrame(), 22);
    QList<int> frames;
    accessor->keyFrames(frames);
    QCOMPARE(frames, (QList<int>{0, 30}));
    QCOMPARE(s_calls, QStringList{"frameData 7"});
}

TARN_NO_VPTR_CHECK void tst_hostInterfaces::saverSlotsStandInOrder()
{
    auto* const saver = fx_As<contract::Saver>(static_cast<IxImageDataSaver*>(new CxNotingSaver));
    saver->setSequenceSize(5);
    QVERIFY(saver->save(fx_Pointer(1), 6));
    QCOMPARE(saver->supportedImageFormats().value(0).description, QStringLiteral("g"));
    saver->setOutputFile(QStringLiteral("setOutputFile"));
    SxPicBufInfo input;
    SxPicBufInfo output;
    QVERIFY(saver->querySavedImageFormat(input, output));
    QCOMPARE(output.width, 1U);
    saver->setSaverOptions({{QStringLiteral("setSaverOptions"), 1}});
    QVERIFY(!saver->widgetForSaveDlg(fx_Pointer(8)));
    QCOMPARE(saver->optionsFromWidgetInSaveDlg(nullptr).keys(), QStringList{"codec"});
    unsigned int fourCC = 0;
    QCOMPARE(saver->codecOptionsFromWigetInSaveDlg(nullptr, fourCC).keys(), QStringList{"quality"});
    QCOMPARE(fourCC, 31U);
    delete saver;
    QCOMPARE(s_calls, (QStringList{"setSequenceSize 5", "save 7", "setOutputFile", "setSaverOptions",
                                   "widgetForSaveDlg 8", "~"}));
}

TARN_NO_VPTR_CHECK void tst_hostInterfaces::encoderSlotsStandInOrder()
{
    auto* const encoder = fx_As<contract::Encoder>(static_cast<IxVideoEncoder*>(new CxNotingEncoder));
    QCOMPARE(encoder->name(), QStringLiteral("encoder"));
    QCOMPARE(encoder->fourCC(), 41U);
    SxPicBuf picture;
    picture.width = 2;
    unsigned long size = 7;
    bool isKeyFrame = false;
    QVERIFY(encoder->encode(picture, fx_Pointer(3), size, &isKeyFrame));
    QCOMPARE(size, 8UL);
    QVERIFY(isKeyFrame);
    QCOMPARE(encoder->maxEncodedSize(picture), 2UL);
    SxPicBufInfo output;
    encoder->queryOuputFormat(picture, output);
    QCOMPARE(output.width, 4U);
    encoder->setEncoderOptions({{QStringLiteral("setEncoderOptions"), 1}});
    QCOMPARE(encoder->getForcedFps(), 0.0); // the host's own body
    QVERIFY(!encoder->widgetForSaveDlg(fx_Pointer(6)));
    QCOMPARE(encoder->optionsFromWidgetInSaveDlg(nullptr).keys(), QStringList{"quality"});
    delete encoder;
    QCOMPARE(s_calls, (QStringList{"encode 5", "setEncoderOptions", "widgetForSaveDlg 6", "~"}));
}

TARN_NO_VPTR_CHECK void tst_hostInterfaces::decoderSlotsStandInOrder()
{
    auto* const decoder = fx_As<contract::Decoder>(static_cast<IxVideoDecoder*>(new CxNotingDecoder));
    QCOMPARE(decoder->name(), QStringLiteral("decoder"));
    QCOMPARE(decoder->fourCC(), 51U);
    SxPicBuf picture;
    QVERIFY(decoder->decode(1, fx_Pointer(2), picture));
    QCOMPARE(picture.width, 52U);
    delete decoder;
    QCOMPARE(s_calls, (QStringList{"decode 3", "~"}));
}

void tst_hostInterfaces::pluginDefaultsDoNothing()
{
    CxSilentPlugin silent;
    CxPlugin& plugin = silent;
    QVERIFY(plugin.init());
    plugin.finish();
    plugin.loadSettings(nullptr);
    plugin.saveSettings(nullptr);
    QVERIFY(plugin.copyrightNotice().isEmpty());
    QVERIFY(plugin.name().isEmpty());
    QVERIFY(plugin.author().isEmpty());
    QVERIFY(plugin.description().isEmpty());
    QVERIFY(plugin.website().isEmpty());
    int major = 1;
    int minor = 1;
    int build = 1;
    plugin.version(major, minor, build);
    QCOMPARE(major + minor + build, 0);
    QCOMPARE(plugin.version(), QStringLiteral("0.0.0"));
    plugin.activeViewChanged(0);
    plugin.viewAboutToClose(0);
    plugin.newCameraConnected(nullptr);
    plugin.cameraDisconnected(nullptr);
    plugin.viewGotNewImage(0, nullptr);
    plugin.viewMouseBtnPressEvent(0, nullptr);
    plugin.viewMouseMoveEvent(0, nullptr);
    plugin.viewMouseBtnReleaseEvent(0, nullptr);
    plugin.viewMouseDoubleClickEvent(0, nullptr);
    int untouched = 5;
    plugin.customCommand(QString(), 0, 0, nullptr, &untouched);
    QCOMPARE(untouched, 5);

    /// Says its version once, as numbers.
    class CxVersionedPlugin : public CxPlugin
    {
    public:
        using CxPlugin::version;
        void version(int& first, int& second, int& third) const override
        {
            first = 1, second = 20, third = 3;
        }
    };
    QCOMPARE(CxVersionedPlugin().version(), QStringLiteral("1.20.3"));
}

void tst_hostInterfaces::pluginInterfaceHasItsId()
{
    QCOMPARE(QByteArray(qobject_interface_iid<CxPlugin*>()), QByteArray("com.quarn.CxPlugin"));
}

void tst_hostInterfaces::chainDataIsToldApartByItsType()
{
    CxImageData image;
    IxChainData plain;
    QCOMPARE(qobject_cast<CxImageData*>(static_cast<IxChainData*>(&image)), &image);
    QVERIFY(!qobject_cast<CxImageData*>(&plain));
    QCOMPARE(CxImageData::staticMetaObject.superClass(), &IxChainData::staticMetaObject);
    QCOMPARE(IxChainData::staticMetaObject.superClass(), &QObject::staticMetaObject);
}

QTEST_APPLESS_MAIN(tst_hostInterfaces)
#include "tst_hostInterfaces.moc"

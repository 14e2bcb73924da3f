// The smallest host: loads a codec plug-in, records twelve pictures that grow lighter, and plays the last.
//
//   smallHost PLUGIN OUTPUT.h264
#include <ClassRegistry.h>
#include <CodecOptions.h>
#include <QCoreApplication>
#include <QFile>
#include <QPluginLoader>
#include <QTextStream>
#include <algorithm>
#include <memory>
#include <tarnCore.h>

static constexpr unsigned kFourCC = 0x34363248; // "H264", the first letter in the lowest byte
static constexpr int kPictures = 12;

/// An object of the first class that is registered for an interface; null without one.
static std::unique_ptr<QObject> create(char const* interfaceName)
{
    auto const known = fx_RegisteredClasses(QLatin1String(interfaceName));
    return std::unique_ptr<QObject>(known.isEmpty() ? nullptr : known.first().metaObject->newInstance());
}

static bool allocate(SxPicBuf& picture)
{
    SxPicBufInfo format;
    format.width = 64;
    format.height = 48;
    format.pitch = 0; // the allocation chooses it
    format.components = 1;
    format.bitsPerSample = 8;
    format.sampleType = 2; // bytes
    format.layout = 1;     // packed
    return CxPicBufAPI::AllocPicBufFromHeap(picture, format, false, 0);
}

/// The number of pictures that the encoder skipped, or -1 when one was not saved.
static int record(QString const& fileName)
{
    // Codec options go to the codec manager, not to the saver; quality 8 of 1 to 10.
    fx_SetCodecOptions(kFourCC, {{QStringLiteral("h264_quality"), 8}});
    std::unique_ptr<QObject> const object = create("IxImageDataSaver");
    if (!object)
        return -1;
    auto* const saver = static_cast<IxImageDataSaver*>(object->qt_metacast("IxImageDataSaver"));
    saver->setSaverOptions({});
    saver->setOutputFile(fileName);
    saver->setSequenceSize(kPictures);

    int skipped = 0;
    qint64 written = 0;
    for (int i = 0; i < kPictures; ++i) {
        SxPicBuf picture;
        if (!allocate(picture))
            return -1;
        std::fill_n(picture.data, picture.pitch * picture.height, static_cast<unsigned char>(20 * i));
        CxImageData image;
        image.setPicBuf(picture); // which now owns the memory
        if (!saver->save(&image, i))
            return -1; // why is in the log: qInstallMessageHandler()
        // A picture that the encoder skips is "saved" too: only the file, a child of the saver, tells.
        qint64 const position = object->findChild<QFile*>()->pos();
        skipped += position == written;
        written = position;
    }
    return skipped; // with the saver the file is closed
}

/// The grey in the middle of the last picture of a recording, or -1.
static int play(QString const& fileName)
{
    std::unique_ptr<QObject> const object = create("IxImageDataLoader");
    if (!object)
        return -1;
    auto* const loader = static_cast<IxImageDataLoader*>(object->qt_metacast("IxImageDataLoader"));
    loader->setInputFile(fileName);
    if (!loader->load() || loader->sequenceSize() == 0)
        return -1;
    std::unique_ptr<IxChainData> const data(loader->loadedData(loader->sequenceSize() - 1));
    auto const* const image = qobject_cast<CxImageData*>(data.get());
    if (!image)
        return -1;                              // damaged there; others may be had
    SxPicBuf const& picture = *image->picBuf(); // blue, green, red, 255
    return picture.data[picture.height / 2 * picture.pitch + picture.width / 2 * 4];
}

int main(int argc, char** argv)
{
    QCoreApplication const app(argc, argv);
    QTextStream out(stdout);
    QPluginLoader loader(app.arguments().value(1));
    auto* const plugin = qobject_cast<CxPlugin*>(loader.instance());
    if (!plugin || !plugin->init()) {
        out << loader.errorString() << '\n';
        return 1;
    }
    QString const fileName = app.arguments().value(2);
    out << plugin->name() << ": " << record(fileName) << " pictures skipped, ";
    out << "the last is of grey " << play(fileName) << '\n';
    plugin->finish();
    return 0;
}

#include <QtTest>

#include <dlfcn.h>
#include <memory>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "CxImageData.h"
#include "CxPlugin.h"
#include "IxImageDataLoader.h"
#include "IxImageDataSaver.h"
#include "support/MemoryInUse.h"
#include "support/TestPicture.h"

/// The plug-in loaded and unloaded, over and over, by a host that goes on.
class tst_loading : public QObject
{
    Q_OBJECT

private slots:
    void loadedAndUnloadedHundredTimes_data();
    void loadedAndUnloadedHundredTimes();
};

static constexpr int kTimes = 100;
static constexpr int kPictures = 6;

/// A new object of the class that implements this interface; null when none does.
template<typename Interface>
static std::unique_ptr<Interface> fx_New(char const* interfaceName)
{
    QList<SxRegisteredClass> const classes = fx_RegisteredClasses(QLatin1String(interfaceName));
    QObject* const object = classes.isEmpty() ? nullptr : classes.first().metaObject->newInstance();
    return std::unique_ptr<Interface>(object ? static_cast<Interface*>(object->qt_metacast(interfaceName))
                                             : nullptr);
}

/// Records a few pictures and plays them, as the host does. False when that fails.
static bool fx_Use(QString const& fileName)
{
    CxTestPicture picture(64, 48);
    CxImageData image;
    image.setPicBuf(picture.buf);
    auto saver = fx_New<IxImageDataSaver>("IxImageDataSaver");
    if (!saver)
        return false;
    saver->setOutputFile(fileName);
    bool isSaved = true;
    for (int i = 0; i < kPictures; ++i)
        isSaved = saver->save(&image, i) && isSaved;
    saver.reset(); // writes the last bytes

    auto const loader = fx_New<IxImageDataLoader>("IxImageDataLoader");
    if (!loader || !isSaved)
        return false;
    loader->setInputFile(fileName);
    for (int i = 0; i < kPictures; ++i)
        if (!std::unique_ptr<IxChainData>(loader->loadedData(i)))
            return false;
    return loader->sequenceSize() == kPictures;
}

static int fx_Entries(char const* folder)
{
    return static_cast<int>(
        QDir(QLatin1String(folder)).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
}

/// Qt keeps a plug-in's code in memory unless it is told not to; the second way is the harder one.
void tst_loading::loadedAndUnloadedHundredTimes_data()
{
    QTest::addColumn<bool>("isCodeKept");
    QTest::newRow("with its code") << false;
    QTest::newRow("as Qt does by itself") << true;
}

void tst_loading::loadedAndUnloadedHundredTimes()
{
    QFETCH(bool, isCodeKept);
    QTemporaryDir const folder;
    QVERIFY(folder.isValid());
    int files = 0, threads = 0;
    std::size_t heap = 0;
    for (int i = 0; i < kTimes; ++i) {
        QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
        if (!isCodeKept)
            loader.setLoadHints(QLibrary::LoadHints());
        auto* const plugin = qobject_cast<CxPlugin*>(loader.instance());
        QVERIFY2(plugin, qPrintable(loader.errorString()));
        QVERIFY(plugin->init());
        QCOMPARE(fx_RegisteredClasses().size(), 4);
        QVERIFY(fx_Use(folder.filePath(QStringLiteral("out.h264"))));

        fx_UnregisterClasses(plugin);
        QVERIFY(fx_RegisteredClasses().isEmpty());
        QVERIFY2(loader.unload(), qPrintable(loader.errorString()));
        void* const remains = dlopen(PLUGIN_FILE, RTLD_LAZY | RTLD_NOLOAD);
        QCOMPARE(remains != nullptr, isCodeKept);
        if (remains)
            dlclose(remains);
        if (i == kTimes / 10) { // what is made once is made now
            files = fx_Entries("/proc/self/fd");
            threads = fx_Entries("/proc/self/task");
            heap = fx_HeapBytes();
        }
    }
    QCOMPARE(fx_Entries("/proc/self/fd"), files);
    QCOMPARE(fx_Entries("/proc/self/task"), threads);
    std::size_t const now = fx_HeapBytes();
    QVERIFY2(now < heap + 100000, qPrintable(QStringLiteral("%1 after %2 bytes").arg(now).arg(heap)));
}

QTEST_GUILESS_MAIN(tst_loading)
#include "tst_loading.moc"

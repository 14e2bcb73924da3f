// Records, opens, scrubs and closes with random options for as long as it is told, in one process, and fails
// when that holds more and more memory, files or threads: soak [SECONDS [SEED]].
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPluginLoader>
#include <QTemporaryDir>
#include <QWidget>
#include <cstdio>
#include <memory>
#include <random>
#include <unistd.h>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "CxPlugin.h"
#include "IxImageDataLoader.h"
#include "IxImageDataSaver.h"
#include "support/MemoryInUse.h"
#include "support/TestPicture.h"

static constexpr unsigned kFourCC = 0x34363248;
static constexpr int kLines = 10;                        ///< figures printed, over the whole time
static constexpr std::size_t kHeapSlack = 256 << 10;     ///< bytes more than after the warm-up
static constexpr std::size_t kResidentSlack = 24 * kMiB; ///< the allocator's own: pictures differ in size

namespace {

struct SxFigures
{
    std::size_t resident = 0; ///< bytes of memory
    std::size_t heap = 0;     ///< bytes that were asked for and not given back
    int files = 0;
    int threads = 0;
};

/// One round after the other, each with what its random numbers say.
class CxSoak
{
public:
    CxSoak(QString const& folder, unsigned seed)
        : m_fileName(folder + QStringLiteral("/soak.h264"))
        , m_random(seed)
    {}

    void round();
    void showPanel();
    int rounds = 0;
    int saved = 0;
    int decoded = 0;
    int faults = 0; ///< pictures that were not saved or not decoded

private:
    int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(m_random); }
    void chooseOptions();
    void record();
    void play();

    QString m_fileName;
    std::mt19937 m_random;
};

} // namespace

static int fx_Entries(char const* folder)
{
    QDir const all(QLatin1String(folder), {}, QDir::Unsorted,
                   QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    return static_cast<int>(all.entryList().size());
}

/// The memory of the last picture stays for a moment, and has its size; a small one takes its place.
static void fx_DropLastPicture()
{
    SxPicBufInfo format;
    format.width = format.height = format.components = 1;
    SxPicBuf small;
    if (CxPicBufAPI::AllocPicBufFromHeap(small, format, false, 0))
        CxPicBufAPI::FreePicBuf(small, true);
}

static SxFigures fx_Figures()
{
    fx_DropLastPicture();
    SxFigures figures;
#ifndef TARN_ADDRESS_SANITIZER // which keeps what was freed
    if (std::FILE* const file = std::fopen("/proc/self/statm", "r")) {
        unsigned long all = 0, resident = 0;
        if (std::fscanf(file, "%lu %lu", &all, &resident) == 2)
            figures.resident = resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        std::fclose(file);
    }
#endif
    figures.heap = fx_HeapBytes();
    figures.files = fx_Entries("/proc/self/fd");
    figures.threads = fx_Entries("/proc/self/task");
    return figures;
}

/// A new object of the class that implements this interface.
template<typename Interface>
static std::unique_ptr<Interface> fx_New(char const* interfaceName)
{
    QObject* const object =
        fx_RegisteredClasses(QLatin1String(interfaceName)).first().metaObject->newInstance();
    return std::unique_ptr<Interface>(static_cast<Interface*>(object->qt_metacast(interfaceName)));
}

void CxSoak::chooseOptions()
{
    static constexpr int kLevels[] = {10, 20, 31, 40, 52};
    fx_SetCodecOptions(kFourCC, {{"h264_quality", 1 + below(10)},
                                 {"h264_keyframerate", 1 + below(30)},
                                 {"h264_level_idc", kLevels[below(5)]}});
}

void CxSoak::record()
{
    static constexpr quint32 kComponents[] = {1, 3, 4};
    CxTestPicture picture(static_cast<quint32>(128 + below(500)), static_cast<quint32>(96 + below(300)),
                          kComponents[below(3)], below(2) == 0 ? 2 : 4, static_cast<quint32>(below(3) * 16));
    auto const saver = fx_New<IxImageDataSaver>("IxImageDataSaver");
    saver->setOutputFile(m_fileName);
    bool const isNoisy = below(4) == 0;
    for (int i = 0, count = 1 + below(40); i < count; ++i) {
        if (isNoisy)
            picture.fillNoise(static_cast<unsigned>(i));
        else
            picture.fillSmooth(static_cast<unsigned>(i));
        CxImageData image;
        image.setPicBuf(picture.buf);
        bool const isSaved = saver->save(&image, i);
        saved += isSaved ? 1 : 0;
        faults += isSaved ? 0 : 1;
    }
}

void CxSoak::play()
{
    auto const loader = fx_New<IxImageDataLoader>("IxImageDataLoader");
    loader->setInputFile(m_fileName);
    int const count = loader->sequenceSize();
    bool const isScrubbing = below(2) == 0;
    for (int i = 0, wanted = below(2 * count + 1); i < wanted; ++i) {
        std::unique_ptr<IxChainData> const picture(
            loader->loadedData(isScrubbing ? below(count) : i % count));
        decoded += picture ? 1 : 0;
        faults += picture ? 0 : 1;
    }
}

void CxSoak::showPanel()
{
    auto const saver = fx_New<IxImageDataSaver>("IxImageDataSaver");
    QWidget dialog;
    unsigned fourCC = 0;
    QWidget* const panel = saver->widgetForSaveDlg(&dialog);
    faults += panel && !saver->codecOptionsFromWigetInSaveDlg(panel, fourCC).isEmpty() ? 0 : 1;
}

void CxSoak::round()
{
    ++rounds;
    chooseOptions();
    if (below(10) == 0)
        showPanel();
    record();
    for (int i = below(3); i > 0; --i)
        play();
}

static bool fx_IsFlat(SxFigures const& before, SxFigures const& now)
{
    return now.heap <= before.heap + kHeapSlack && now.resident <= before.resident + kResidentSlack &&
           now.files == before.files && now.threads == before.threads;
}

/// Runs rounds for some seconds, a fifth of them to warm up. \return whether all stayed flat and nothing
/// failed.
static bool fx_Soak(int seconds, unsigned seed, QString const& folder)
{
    CxSoak soak(folder, seed);
    SxFigures base;
    bool isFlat = true;
    soak.showPanel(); // fonts and the like are loaded once
    QElapsedTimer time;
    time.start();
    std::printf("%8s %8s %9s %9s %10s %10s %6s %8s\n", "seconds", "rounds", "saved", "decoded", "RSS kB",
                "heap kB", "files", "threads");
    for (int line = 1; line <= kLines; ++line) {
        do
            soak.round();
        while (time.elapsed() < qint64(seconds) * 1000 * line / kLines);
        SxFigures const now = fx_Figures();
        std::printf("%8.0f %8d %9d %9d %10zu %10zu %6d %8d\n", double(time.elapsed()) / 1000, soak.rounds,
                    soak.saved, soak.decoded, now.resident / 1024, now.heap / 1024, now.files, now.threads);
        std::fflush(stdout);
        if (line <= kLines / 5)
            base = now;
        isFlat = isFlat && fx_IsFlat(base, now);
    }
    if (soak.faults > 0)
        std::printf("%d pictures failed.\n", soak.faults);
    if (!isFlat)
        std::printf(
            "Not flat: more than %zu kB of heap or %zu kB of memory above the second line, or other files or "
            "threads.\n",
            kHeapSlack / 1024, kResidentSlack / 1024);
    return isFlat && soak.faults == 0;
}

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QStringList const arguments = QApplication::arguments();
    int const seconds = arguments.value(1, QStringLiteral("3")).toInt();
    unsigned const seed = arguments.size() > 2 ? arguments.at(2).toUInt() : std::random_device()();
    std::printf("seed %u\n", seed);

    QTemporaryDir const folder;
    QPluginLoader loader(QStringLiteral(PLUGIN_FILE));
    auto* const plugin = qobject_cast<CxPlugin*>(loader.instance());
    if (!folder.isValid() || !plugin || !plugin->init())
        return 1;
    bool const isSound = fx_Soak(seconds, seed, folder.path());
    fx_UnregisterClasses(plugin);
    return isSound ? 0 : 1;
}

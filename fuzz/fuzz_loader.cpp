// What a host does with a loader, then the file: whatever both are, answers stay within the file's frames.
#include <QLoggingCategory>
#include <cstdint>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "CxImageData.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "H264VideoLoader.h"

static constexpr unsigned kMostIndexed = 400; // opening again adds to the index

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    return 0;
}

namespace {

/// A file without a disk.
class CxFile
{
public:
    explicit CxFile(CxFuzzInput const& content)
        : m_file(memfd_create("stream", 0))
    {
        TARN_EXPECT(m_file >= 0);
        append(content);
    }
    ~CxFile() { close(m_file); }
    CxFile(CxFile const&) = delete;
    CxFile& operator=(CxFile const&) = delete;

    QString name() const { return QStringLiteral("/proc/self/fd/%1").arg(m_file); }
    void append(CxFuzzInput const& bytes)
    {
        lseek(m_file, 0, SEEK_END);
        TARN_EXPECT(write(m_file, bytes.data(), bytes.left()) == static_cast<ssize_t>(bytes.left()));
    }
    void overwrite(unsigned at, std::uint8_t byte)
    {
        TARN_EXPECT(pwrite(m_file, &byte, 1, static_cast<off_t>(at)) == 1);
    }
    void cut(unsigned size) { TARN_EXPECT(ftruncate(m_file, static_cast<off_t>(size)) == 0); }

private:
    int m_file;
};

} // namespace

static void fx_LoadedData(CxH264VideoLoader& loader, int frame)
{
    int const last = loader.lastProcessedFrame();
    std::unique_ptr<IxChainData> const data(loader.loadedData(frame));
    auto const* const image = qobject_cast<CxImageData const*>(data.get());
    TARN_EXPECT((image != nullptr) == (data != nullptr));
    if (!image) {
        TARN_EXPECT(loader.lastProcessedFrame() == last || loader.lastProcessedFrame() == -1);
        return;
    }
    SxPicBuf const& picture = *image->picBuf();
    TARN_EXPECT(frame >= 0 && frame < loader.sequenceSize() && loader.lastProcessedFrame() == frame);
    TARN_EXPECT(picture.data && picture.pitch / 4 >= picture.width);
    TARN_EXPECT(picture.timestamp == static_cast<quint64>(frame * (1000000 / 30.0)));
}

static void fx_FrameData(CxH264VideoLoader& loader, int frame, unsigned capacity)
{
    std::vector<std::uint8_t> bytes(capacity, 0x55);
    unsigned long size = capacity;
    bool const hasBuffer = !bytes.empty();
    TARN_EXPECT(loader.frameData(frame, bytes.data(), size) == (bytes.data() != nullptr));
    TARN_EXPECT(size == capacity || (hasBuffer && size < capacity && size == loader.frameDataSize(frame)));
}

static void fx_Step(CxH264VideoLoader& loader, CxFile& file, CxFuzzInput& choices)
{
    std::uint8_t const step = choices.byte() % 16;
    int const frame = static_cast<std::int8_t>(choices.byte());
    QList<int> keys;
    switch (step) {
    case 0:
        if (loader.frameDataSize(kMostIndexed) == 0)
            loader.open();
        break;
    case 1:
        loader.close();
        break;
    case 2:
        TARN_EXPECT(loader.load() == loader.load());
        break;
    case 3:
        TARN_EXPECT(loader.sequenceSize() == loader.framesCount());
        break;
    case 4:
        loader.keyFrames(keys);
        for (int const key : keys)
            TARN_EXPECT(loader.frameDataSize(key) != 0);
        break;
    case 5:
        fx_FrameData(loader, frame, choices.below(4096));
        break;
    case 6:
        fx_FrameData(loader, frame, static_cast<unsigned>(loader.frameDataSize(frame)));
        break;
    case 7:
        file.cut(choices.below(4096));
        break;
    case 8:
        file.append(choices.split());
        break;
    case 9:
        file.overwrite(choices.below(4096), choices.byte());
        break;
    case 10:
        loader.setInputFile(choices.flag() ? QStringLiteral("/nowhere") : file.name());
        break;
    case 11:
        TARN_EXPECT(loader.loadedFps() == 0.0 || loader.loadedFps() == 30.0);
        break;
    default:
        fx_LoadedData(loader, frame);
    }
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    CxFuzzInput input(data, size);
    CxFuzzInput choices = input.split();
    CxFile file(input);
    CxH264VideoLoader loader;
    loader.setInputFile(file.name());
    while (choices.left() > 0)
        fx_Step(loader, file, choices);
    for (int frame = qMin(loader.sequenceSize(), 6); frame >= -1; --frame)
        fx_LoadedData(loader, frame);
    return 0;
}

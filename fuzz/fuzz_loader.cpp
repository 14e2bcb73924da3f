// Any bytes as a file: opened or refused, pictures or none.
#include <QLoggingCategory>
#include <cstdint>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>

#include "CxImageData.h"
#include "Expect.h"
#include "H264VideoLoader.h"

static constexpr int kMostFrames = 6; // more only take time

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    return 0;
}

static void fx_Play(QString const& name, int file)
{
    CxH264VideoLoader loader;
    loader.setInputFile(name);
    int const count = loader.sequenceSize();
    TARN_EXPECT(loader.load() == (count > 0));
    for (int frame = qMin(count, kMostFrames); frame >= -1; --frame) {
        if (frame == 1) // from here on the file is shorter than its index says
            TARN_EXPECT(ftruncate(file, static_cast<off_t>(loader.frameDataSize(0))) == 0);
        std::unique_ptr<IxChainData> const data(loader.loadedData(frame));
        TARN_EXPECT(!data || (frame >= 0 && frame < count && loader.lastProcessedFrame() == frame));
    }
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    int const file = memfd_create("stream", 0); // a file without a disk
    TARN_EXPECT(file >= 0);
    TARN_EXPECT(write(file, data, size) == static_cast<ssize_t>(size));
    fx_Play(QStringLiteral("/proc/self/fd/%1").arg(file), file);
    close(file);
    return 0;
}

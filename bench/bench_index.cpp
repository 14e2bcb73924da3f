// Does the plug-in's work for one picture grow with the recording, and what does an entry of the index
// cost? Playback in a stream of a million frames to one of a thousand; bytes of the heap an entry.

#include <malloc.h>

#include <QFile>
#include <QTemporaryDir>
#include <memory>

#include "BenchStream.h"
#include "CxImageData.h"
#include "H264VideoLoader.h"
#include "Ratio.h"

/// A recording of \p frames tiny frames: one group of pictures over and over.
static QString fx_MakeStream(int frames)
{
    static QTemporaryDir const folder;
    constexpr int kGroup = 10;
    static QByteArray const group = fx_EncodeCamera(QSize(64, 64), kGroup, kGroup);
    QString const name = folder.filePath(QString::number(frames));
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(name));
    for (int frame = 0; frame < frames; frame += kGroup)
        file.write(group);
    return name;
}

static std::unique_ptr<CxH264VideoLoader> fx_Open(QString const& name)
{
    auto loader = std::make_unique<CxH264VideoLoader>();
    loader->setInputFile(name);
    if (!loader->load())
        qFatal("cannot load %s", qPrintable(name));
    return loader;
}

/// Plays 500 frames from the middle of a recording, in order.
static void fx_Play(CxH264VideoLoader& loader)
{
    int const first = loader.sequenceSize() / 2;
    for (int frame = first; frame < first + 500; ++frame) {
        std::unique_ptr<IxChainData> const picture(loader.loadedData(frame));
        if (!picture)
            qFatal("frame %d is missing", frame);
    }
}

static void work_a_frame_million_to_thousand(benchmark::State& state)
{
    auto const large = fx_Open(fx_MakeStream(1000000));
    auto const small = fx_Open(fx_MakeStream(1000));
    fx_CompareWork(
        state, 1.02, [&] { fx_Play(*large); }, [&] { fx_Play(*small); });
}
BENCHMARK(work_a_frame_million_to_thousand)
    ->Name("work a frame with 1000000 entries / with 1000")
    ->UseManualTime()
    ->Iterations(41);

static void index_bytes_an_entry(benchmark::State& state)
{
    QString const name = fx_MakeStream(1000000);
    for (auto _ : state) {
        size_t const before = mallinfo2().uordblks + mallinfo2().hblkhd;
        auto const loader = fx_Open(name);
        size_t const after = mallinfo2().uordblks + mallinfo2().hblkhd;
        state.counters["figure"] = double(after - before) / loader->sequenceSize();
    }
    state.counters["bar"] = 44;
}
BENCHMARK(index_bytes_an_entry)->Name("bytes an entry")->Iterations(1);

BENCHMARK_MAIN();

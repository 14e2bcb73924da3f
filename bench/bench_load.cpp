// How far is opening a recording from what memory allows? The whole of load(), on a file in the page
// cache and a fresh mapping each time, to memchr() for an absent byte on one, and to a plain read().

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include <QFile>
#include <QTemporaryDir>

#include "H264VideoLoader.h"
#include "Ratio.h"

static constexpr size_t kFileBytes = size_t(1) << 29;
static constexpr int kAbsentByte = 0xFF;

/// A stream with a key frame every 30 and frames of \p frameBytes random bytes, without zeros but in start
/// codes and without the absent byte. Its name stays valid while the process lives.
static QByteArray fx_MakeStream(size_t frameBytes)
{
    static QTemporaryDir const folder;
    QByteArray const name = QFile::encodeName(folder.filePath(QStringLiteral("%1.h264").arg(frameBytes)));
    if (QFile::exists(QFile::decodeName(name)))
        return name;

    // 320 x 240, Baseline.
    static char const sps[] = "\0\0\0\1\x67\x42\xc0\x0d\xda\x05\x07\xe8\x40\0\0\0\1\x68\xce\x3c\x80";
    quint32 random = 1;
    QByteArray stream;
    stream.reserve(static_cast<int>(kFileBytes + frameBytes));
    for (int frame = 0; static_cast<size_t>(stream.size()) < kFileBytes; ++frame) {
        bool const isKey = frame % 30 == 0;
        if (isKey)
            stream.append(sps, sizeof sps - 1);
        stream.append(isKey ? "\0\0\0\1\x65" : "\0\0\0\1\x61", 5);
        for (size_t i = 0; i < frameBytes; ++i) {
            random = random * 1664525u + 1013904223u;
            stream.append(static_cast<char>(1 + (random >> 24) % 254));
        }
    }
    QFile file(QFile::decodeName(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(stream) != stream.size())
        qFatal("cannot write %s", name.constData());
    return name;
}

static void fx_SearchFreshMapping(QByteArray const& name)
{
    int const file = ::open(name.constData(), O_RDONLY);
    off_t const size = ::lseek(file, 0, SEEK_END);
    void* const data = ::mmap(nullptr, static_cast<size_t>(size), PROT_READ, MAP_SHARED, file, 0);
    benchmark::DoNotOptimize(std::memchr(data, kAbsentByte, static_cast<size_t>(size)));
    ::munmap(data, static_cast<size_t>(size));
    ::close(file);
}

static void fx_ReadAll(QByteArray const& name)
{
    static char buffer[1 << 18];
    int const file = ::open(name.constData(), O_RDONLY);
    while (::read(file, buffer, sizeof buffer) > 0)
        benchmark::ClobberMemory();
    ::close(file);
}

static void fx_Load(QByteArray const& name)
{
    CxH264VideoLoader loader;
    loader.setInputFile(QFile::decodeName(name));
    if (!loader.load())
        qFatal("cannot load %s", name.constData());
    loader.close();
}

static void load_to_memchr(benchmark::State& state)
{
    size_t const frameBytes = static_cast<size_t>(state.range(0));
    QByteArray const name = fx_MakeStream(frameBytes);
    fx_CompareWork(
        state, frameBytes > 10000 ? 1.25 : 1.8, [&] { fx_Load(name); }, [&] { fx_SearchFreshMapping(name); });
}
BENCHMARK(load_to_memchr)
    ->Name("load() / memchr()")
    ->ArgName("frame_bytes")
    ->Arg(80000)
    ->Arg(1400)
    ->UseManualTime()
    ->Iterations(9);

static void load_to_read(benchmark::State& state)
{
    QByteArray const name = fx_MakeStream(static_cast<size_t>(state.range(0)));
    fx_CompareWork(
        state, 0, [&] { fx_Load(name); }, [&] { fx_ReadAll(name); });
}
BENCHMARK(load_to_read)
    ->Name("load() / read()")
    ->ArgName("frame_bytes")
    ->Arg(80000)
    ->Arg(1400)
    ->UseManualTime()
    ->Iterations(9);

BENCHMARK_MAIN();

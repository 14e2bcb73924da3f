// Notes beside a recording, which a person or another program may have written: used as a whole, or ignored
// with a sentence.
#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>

#include "Expect.h"
#include "Sidecar.h"

namespace {

/// A recording, and what a note must say to belong to it.
struct SxRecording
{
    SxRecording()
        : name(folder.filePath(QStringLiteral("clip.h264")))
    {
        QByteArray const bytes(1000, 'x');
        QFile file(name);
        TARN_EXPECT(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        QByteArray const hash = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
        begin = R"({"format": "minihost-sidecar-1", "recording": {"bytes": 1000, "sha256OfFirst64KiB": ")" +
                hash + "\"}";
    }
    QTemporaryDir folder{QStringLiteral("/dev/shm/fuzz_sidecar-XXXXXX")};
    QString name;
    QByteArray begin;
};

} // namespace

// Qt's parser loses some bytes of an object whose name comes twice, which nothing here could give back.
extern "C" char const* __asan_default_options() { return "detect_leaks=0"; }

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static SxRecording const recording;
    bool const isWhole = size > 0 && data[0] == '{'; // else what follows the recording in one of ours
    QByteArray const bytes(reinterpret_cast<char const*>(data), static_cast<int>(size));
    QFile note(fx_SidecarName(recording.name));
    TARN_EXPECT(note.open(QIODevice::WriteOnly));
    note.write(isWhole ? bytes : recording.begin + bytes);
    note.close();

    SxFoundSidecar const found = fx_FindSidecar(recording.name);
    TARN_EXPECT(found.sidecar.has_value() == found.warning.isEmpty());
    if (!found.sidecar)
        return 0;
    SxSidecar const& sidecar = *found.sidecar;
    TARN_EXPECT(!sidecar.rate.isKnown() || fx_IsSane(sidecar.rate));
    TARN_EXPECT(sidecar.rotation >= 0 && sidecar.rotation < 360 && sidecar.rotation % 90 == 0);
    TARN_EXPECT(sidecar.skippedCount >= 0 && sidecar.skippedCount <= sidecar.pictures);
    for (SxPictureRange const& range : sidecar.skipped)
        TARN_EXPECT(range.first >= 0 && range.first <= range.last && range.last < sidecar.pictures);
    return 0;
}

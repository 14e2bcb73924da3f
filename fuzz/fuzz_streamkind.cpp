// Files of any encoder: their kind and their pictures are told from bytes that others wrote.
#include <QString>
#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

#include "Expect.h"
#include "StreamKind.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    int const file = memfd_create("stream", 0);
    TARN_EXPECT(file >= 0 && write(file, data, size) == static_cast<ssize_t>(size));
    QString const name = QStringLiteral("/proc/self/fd/%1").arg(file);

    SxStreamKind const kind = fx_StreamKindOf(name);
    TARN_EXPECT(kind.width >= 0 && kind.height >= 0);
    TARN_EXPECT(!kind.isForeign || kind.codec != SxStreamKind::Codec::Unknown);
    TARN_EXPECT(!kind.isForeign || !fx_ForeignStreamText(kind).isEmpty());
    qint64 const pictures = fx_CountPictures(name, kind.codec);
    TARN_EXPECT(pictures >= 0 && static_cast<std::size_t>(pictures) <= size);
    close(file);
    return 0;
}

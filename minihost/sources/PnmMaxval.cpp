#include "PnmMaxval.h"

#include <QByteArray>
#include <QList>

#include "PictureFormat.h"

static constexpr int kLongestHeader = 4096; // with comments, which programs write about themselves

static QByteArray fx_WithoutComments(QByteArray const& header)
{
    QByteArray kept;
    bool isComment = false;
    for (char const c : header) {
        isComment = c == '#' || (isComment && c != '\n');
        if (!isComment)
            kept += c;
    }
    return kept;
}

int fx_PnmMaxval(uint8_t const* data, int size)
{
    QByteArray const file =
        QByteArray::fromRawData(reinterpret_cast<char const*>(data), qMin(size, kLongestHeader));
    QList<QByteArray> const words = fx_WithoutComments(file).simplified().split(' ');
    QByteArray const& magic = words.first();
    if (magic == "P7") {
        auto const at = words.indexOf("MAXVAL");
        return at < 0 ? 0 : words.value(at + 1).toInt();
    }
    bool const isPnm = magic == "P2" || magic == "P3" || magic == "P5" || magic == "P6";
    return isPnm ? words.value(3).toInt() : 0; // behind magic, width and height
}

void fx_RestorePnmWords(SxPicBuf& picture, int maxval)
{
    quint32 bits = 9;
    while (bits < 16 && (1 << bits) - 1 != maxval)
        ++bits;
    if (bits == 16 || !fx_IsWordFormat(picture) || picture.bitsPerSample != 16)
        return;
    auto const highest = static_cast<quint32>(maxval);
    for (quint32 y = 0; y < picture.height; ++y) {
        auto* const row = reinterpret_cast<quint16*>(picture.data + size_t{y} * picture.pitch);
        for (size_t i = 0; i < size_t{picture.width} * picture.components; ++i)
            row[i] = static_cast<quint16>((row[i] * highest + 32767) / 65535);
    }
    picture.bitsPerSample = bits;
}

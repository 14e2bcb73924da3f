#include "Refusal.h"

#include <QFile>

#include "MediaProbe.h"
#include "StreamKind.h"
#include "UnitScan.h"

static constexpr qint64 kHeadBytes = 1 << 20;

/// What else it is, or where in it a recording seems to begin; empty when nothing speaks for either.
static QString fx_HintFor(QString const& fileName, QByteArray const& head)
{
    QString const media = fx_MediaName(head);
    if (!media.isEmpty())
        return QStringLiteral("it looks like %1; '%2' makes a recording of it")
            .arg(media, fx_CommandToRecord(fileName));
    int const set = static_cast<int>(head.indexOf(QByteArray::fromHex("0000000167")));
    if (set > 0)
        return QStringLiteral("its first %1 bytes belong to no picture; '%2' keeps what follows")
            .arg(set)
            .arg(fx_CommandToCutFront(fileName, set));
    return QString();
}

QString fx_CauseOfRefusal(QString const& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return file.errorString() + QLatin1Char('.');
    if (!fx_BeginsWithStartCode(file)) {
        file.seek(0);
        QString const hint = fx_HintFor(fileName, file.read(kHeadBytes));
        return QStringLiteral("this is no raw H.264 stream, since it does not begin with a start code%1.")
            .arg(hint.isEmpty() ? hint : QStringLiteral(": ") + hint);
    }
    if (!file.map(0, file.size())) // as the loader does with the whole file
        return QStringLiteral("there is not enough memory to open it.");
    return QStringLiteral("the picture size is unknown, since the stream holds no sequence parameter set.");
}

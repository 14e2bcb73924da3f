#include "Sidecar.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>
#include <sys/stat.h>

namespace {

constexpr qint64 kMostBytes = 4 * 1024 * 1024;
constexpr int kMostRangeBytes = 3 * 1024 * 1024; // a skipped picture in every second place for hours
constexpr int kMostText = 4096;                  // characters of a name
constexpr int kMostPictures = 1000000000;
constexpr qint64 kHead = 64 * 1024; // bytes of the recording that are compared

QString const kFormatKey = QStringLiteral("format");
QString const kFormat = QStringLiteral("minihost-sidecar-1");
QString const kFormatOfAnyVersion = QStringLiteral("minihost-sidecar-");

QString const kBytesKey = QStringLiteral("bytes");
QString const kHashKey = QStringLiteral("sha256OfFirst64KiB");
// Of a file that grows, whose bytes are not known yet. The number of one that was removed is given to the
// next.
QString const kInodeKey = QStringLiteral("unfinishedInode");
QString const kBirthKey = QStringLiteral("unfinishedSince");

/// What identifies a recording; empty when it cannot be read.
QJsonObject fx_Identity(QString const& recording)
{
    QFile file(recording);
    if (!QFileInfo(recording).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    QByteArray const hash = QCryptographicHash::hash(file.read(kHead), QCryptographicHash::Sha256);
    return {{kBytesKey, file.size()}, {kHashKey, QString::fromLatin1(hash.toHex())}};
}

/// What identifies a recording that is being written; empty when it cannot be asked.
QJsonObject fx_IdentityOfUnfinished(QString const& recording)
{
    struct stat status = {};
    if (stat(QFile::encodeName(recording).constData(), &status) != 0)
        return {};
    QJsonObject identity{{kInodeKey, QStringLiteral("%1:%2").arg(status.st_dev).arg(status.st_ino)}};
    QDateTime const birth = QFileInfo(recording).birthTime();
    if (birth.isValid()) // not every file system keeps it
        identity[kBirthKey] = birth.toUTC().toString(Qt::ISODateWithMs);
    return identity;
}

bool fx_IsOf(QJsonObject const& identity, QString const& recording)
{
    if (identity.contains(kInodeKey))
        return identity == fx_IdentityOfUnfinished(recording);
    QJsonObject const actual = fx_Identity(recording);
    return !actual.isEmpty() &&
           identity.value(kBytesKey).toDouble(-1) == actual.value(kBytesKey).toDouble() &&
           identity.value(kHashKey).toString() == actual.value(kHashKey).toString();
}

/// The object in a file; \p why says, as half a sentence, why there is none of ours in it.
QJsonObject fx_ReadObject(QString const& fileName, QString& why)
{
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile()) { // a pipe would wait for its other end
        why = QStringLiteral("it is no regular file");
    } else if (!file.open(QIODevice::ReadOnly)) {
        why = file.errorString();
    } else if (file.size() > kMostBytes) {
        why = QStringLiteral("it is too large to be minihost's");
    } else {
        QJsonDocument const document = QJsonDocument::fromJson(file.read(kMostBytes));
        if (document.object().value(kFormatKey).toString().startsWith(kFormatOfAnyVersion))
            return document.object();
        why = document.isNull() ? QStringLiteral("it is damaged, or not minihost's")
                                : QStringLiteral("it is not minihost's");
    }
    return {};
}

/// A text that others may have written, fit for a terminal.
QString fx_Plain(QJsonValue const& value)
{
    QString text = value.toString().left(kMostText);
    for (QChar& character : text) {
        if (!character.isPrint() && !character.isSurrogate())
            character = QLatin1Char('?');
    }
    return text;
}

/// What is said of pictures of one kind, as "skipped" and "skippedCount"; false when it does not add up.
bool fx_ParsePictures(QJsonObject const& json, QString const& kind, int pictures, int& count,
                      QVector<SxPictureRange>& ranges)
{
    count = json.value(kind + QStringLiteral("Count")).toInt();
    auto const read = fx_RangesFromText(json.value(kind).toString(), pictures);
    ranges = read.value_or(QVector<SxPictureRange>());
    return read && count >= 0 && count <= pictures && (ranges.isEmpty() || fx_CountOf(ranges) == count);
}

/// \return why it cannot be used, half a sentence; empty when \p sidecar holds it.
QString fx_Parse(QJsonObject const& json, SxSidecar& sidecar)
{
    if (json.value(kFormatKey) != kFormat)
        return QStringLiteral("it is another version's");
    for (char const* const key : {"rate", "skipped", "lost", "source", "program"}) {
        if (json.contains(QLatin1String(key)) && !json.value(QLatin1String(key)).isString())
            return QStringLiteral("its %1 is no text").arg(QLatin1String(key));
    }
    for (char const* const key : {"rotation", "pictures", "skippedCount", "lostCount"}) {
        if (json.contains(QLatin1String(key)) && !json.value(QLatin1String(key)).isDouble())
            return QStringLiteral("its %1 is no number").arg(QLatin1String(key));
    }
    QJsonValue const rate = json.value(QStringLiteral("rate"));
    if (rate.isString()) {
        std::optional<SxPictureRate> const read = fx_RateFromText(rate.toString());
        if (!read)
            return QStringLiteral("'%1' is no rate").arg(fx_Plain(rate).left(40));
        sidecar.rate = *read;
        sidecar.rate.isAverage = json.value(QStringLiteral("rateIsAverage")).toBool();
    }
    sidecar.rotation =
        json.value(QStringLiteral("rotation")).toInt(json.contains(QStringLiteral("rotation")) ? -1 : 0);
    if (sidecar.rotation < 0 || sidecar.rotation > 270 || sidecar.rotation % 90 != 0)
        return QStringLiteral("%1 degrees are no rotation").arg(sidecar.rotation);
    sidecar.pictures = json.value(QStringLiteral("pictures")).toInt(-1);
    bool const isSound =
        sidecar.pictures >= 0 && sidecar.pictures <= kMostPictures &&
        fx_ParsePictures(json, QStringLiteral("skipped"), sidecar.pictures, sidecar.skippedCount,
                         sidecar.skipped) &&
        fx_ParsePictures(json, QStringLiteral("lost"), sidecar.pictures, sidecar.lostCount, sidecar.lost);
    if (!isSound)
        return QStringLiteral("the pictures in it do not add up");
    sidecar.source = fx_Plain(json.value(QStringLiteral("source")));
    sidecar.program = fx_Plain(json.value(QStringLiteral("program")));
    sidecar.options = json.value(QStringLiteral("options")).toObject();
    return QString();
}

QJsonObject fx_Json(SxSidecar const& sidecar, QJsonObject const& identity)
{
    QJsonObject json{
        {kFormatKey, kFormat},
        {QStringLiteral("recording"), identity},
        {QStringLiteral("rotation"), sidecar.rotation},
        {QStringLiteral("source"), sidecar.source.left(kMostText)},
        {QStringLiteral("options"), sidecar.options},
        {QStringLiteral("pictures"), sidecar.pictures},
        {QStringLiteral("skippedCount"), sidecar.skippedCount},
        {QStringLiteral("program"), sidecar.program},
    };
    if (sidecar.rate.isKnown()) {
        json[QStringLiteral("rate")] = sidecar.rate.exact();
        json[QStringLiteral("rateIsAverage")] = sidecar.rate.isAverage;
    }
    QString const skipped = fx_RangesText(sidecar.skipped, 0);
    QString const lost = fx_RangesText(sidecar.lost, 0);
    if (skipped.size() + lost.size() <= kMostRangeBytes)
        json[QStringLiteral("skipped")] = skipped;
    if (sidecar.lostCount > 0) {
        json[QStringLiteral("lostCount")] = sidecar.lostCount;
        if (skipped.size() + lost.size() <= kMostRangeBytes)
            json[QStringLiteral("lost")] = lost;
    }
    return json;
}

} // namespace

QString fx_SidecarName(QString const& recording) { return recording + QStringLiteral(".json"); }

SxFoundSidecar fx_FindSidecar(QString const& recording)
{
    SxFoundSidecar found;
    QString const fileName = fx_SidecarName(recording);
    if (!QFileInfo::exists(fileName))
        return found;
    QString why;
    SxSidecar sidecar;
    QJsonObject const json = fx_ReadObject(fileName, why);
    if (why.isEmpty() && !fx_IsOf(json.value(QStringLiteral("recording")).toObject(), recording))
        why = QStringLiteral("it describes another recording");
    if (why.isEmpty())
        why = fx_Parse(json, sidecar);
    if (why.isEmpty())
        found.sidecar = sidecar;
    else
        found.warning = QStringLiteral("%1 is ignored: %2.").arg(fileName, why);
    return found;
}

/// A file without a byte was left by a full disk.
static bool fx_IsOurs(QString const& fileName)
{
    QFileInfo const info(fileName);
    if (!info.exists() || (info.isFile() && info.size() == 0))
        return true;
    QString why;
    fx_ReadObject(fileName, why);
    return why.isEmpty();
}

bool fx_WriteSidecar(QString const& recording, SxSidecar const& sidecar, QString& error, bool isFinished)
{
    QString const fileName = fx_SidecarName(recording);
    if (!fx_IsOurs(fileName)) {
        error = QStringLiteral("%1 is not minihost's and stays as it is, so it does not tell the recording's "
                               "rate, rotation and skipped pictures.")
                    .arg(fileName);
        return false;
    }
    QSaveFile file(fileName);
    QJsonObject const identity = isFinished ? fx_Identity(recording) : fx_IdentityOfUnfinished(recording);
    QByteArray const bytes = QJsonDocument(fx_Json(sidecar, identity)).toJson();
    // Closing by itself does not tell Qt that the last bytes found no room.
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() && file.commit())
        return true;
    error = QStringLiteral("%1: %2.").arg(fileName, file.errorString());
    return false;
}

void fx_RemoveSidecar(QString const& recording)
{
    QString const fileName = fx_SidecarName(recording);
    if (QFileInfo::exists(fileName) && fx_IsOurs(fileName))
        QFile::remove(fileName);
}

#include "support/FFprobe.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <cmath>

/// Standard output of a program that said nothing else and ended with 0; else empty.
static QByteArray fx_OutputOf(QString const& program, QStringList const& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(-1) || process.exitCode() != 0)
        return QByteArray();
    QByteArray const said = process.readAllStandardError();
    if (!said.isEmpty())
        qWarning("%s", said.constData());
    return said.isEmpty() ? process.readAllStandardOutput() : QByteArray();
}

static QJsonArray fx_Probed(QString const& fileName, QString const& what)
{
    QByteArray const json = fx_OutputOf("ffprobe", {"-v", "error", "-show_" + what, "-of", "json", fileName});
    return QJsonDocument::fromJson(json).object().value(what).toArray();
}

QJsonObject fx_ProbedStream(QString const& fileName) { return fx_Probed(fileName, "streams")[0].toObject(); }

QStringList fx_ProbedPackets(QString const& fileName, double rate)
{
    QStringList packets;
    for (QJsonValue const& value : fx_Probed(fileName, "packets")) {
        QJsonObject const packet = value.toObject();
        double const time = packet.value("pts_time").toString().toDouble();
        bool const isOrdered = packet.value("pts_time") == packet.value("dts_time");
        packets += QStringLiteral("%1 %2")
                       .arg(isOrdered ? std::lround(time * rate) : -1)
                       .arg(packet.value("flags").toString().left(1));
    }
    return packets;
}

QList<QByteArray> fx_DecodedHashes(QString const& fileName)
{
    QList<QByteArray> hashes;
    QByteArray const lines = fx_OutputOf("ffmpeg", {"-v", "error", "-i", fileName, "-map", "0:v", "-fps_mode",
                                                    "passthrough", "-f", "framemd5", "-"});
    for (QByteArray const& line : lines.split('\n')) {
        if (!line.isEmpty() && !line.startsWith('#'))
            hashes += line.mid(line.lastIndexOf(',') + 1).trimmed();
    }
    return hashes;
}

QByteArray fx_DefaultRgb(QString const& fileName)
{
    return fx_OutputOf("ffmpeg", {"-v", "error", "-i", fileName, "-fps_mode", "passthrough", "-pix_fmt",
                                  "rgb24", "-f", "rawvideo", "-"});
}

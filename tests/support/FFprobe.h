#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

/// What the ffprobe and ffmpeg programs make of a file, as any other program would that is built on FFmpeg.

/// The first stream as ffprobe describes it; empty when it finds none.
QJsonObject fx_ProbedStream(QString const& fileName);

/// "0 K_", "1 __": time stamp in pictures of \p rate a second and flags of each packet.
QStringList fx_ProbedPackets(QString const& fileName, double rate);

/// MD5 of every picture that ffmpeg decodes, in order of output. Empty when it complains about anything.
QList<QByteArray> fx_DecodedHashes(QString const& fileName);

/// All pictures as ffmpeg turns them into red, green, blue when nobody tells it how.
QByteArray fx_DefaultRgb(QString const& fileName);

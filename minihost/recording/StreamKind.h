#pragma once

#include <QString>
#include <QStringList>

#include "PictureRate.h"

/// What a raw stream holds, judged by its units and not by its name.
///
/// A recording is H.264 as OpenH264 writes it: each picture one slice, opened by a unit that the loader's
/// index knows, none shown in another order than coded. Other streams can be indexed, too, but under a number
/// stands then no picture or several.
struct SxStreamKind
{
    enum class Codec { Unknown, H264, H265, Mpeg1, Mpeg2 };

    Codec codec = Codec::Unknown;
    bool isForeign = false; ///< no recording, but a stream that the sources can read
    QString profile;        ///< of H.264, "high"; empty when the stream does not say
    QString level;
    QStringList features; ///< of a foreign one: "10 bits", "B pictures", ...
    int width = 0;        ///< of its pictures; 0 when it does not say
    int height = 0;
    SxPictureRate rate;       ///< that H.264 itself says, which few do; else unknown
    bool saysColours = false; ///< H.264 says what its colours are

    QString codecName() const; ///< "H.264"
};

/// Looks at the first megabytes of a file. A file that cannot be read is of unknown kind.
SxStreamKind fx_StreamKindOf(QString const& fileName);

/// Pictures in a foreign stream, counted from its front to its end; -1 when it cannot be read.
qint64 fx_CountPictures(QString const& fileName, SxStreamKind::Codec codec);

/// "H.264 of another encoder (B pictures, 4 slices a picture)", "H.265 video"
QString fx_ForeignStreamText(SxStreamKind const& kind);

/// The command that makes a recording of the file, for a shell.
QString fx_CommandToRecord(QString const& fileName);

/// The command that leaves out the file's first \p bytes, for a shell.
QString fx_CommandToCutFront(QString const& fileName, qint64 bytes);

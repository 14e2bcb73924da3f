#pragma once

#include <QString>

#include "PictureWriter.h"

/// What is to become of a recording's pictures.
struct SxExportRequest
{
    enum class Kind { Files, Stream, Sheet, Hashes };

    Kind kind = Kind::Files;
    QString recording; ///< the file that they come from, which is never written
    QString output;    ///< a file name or pattern; for a stream also "-"; empty for hashes
    CxPictureStream::Format stream = CxPictureStream::Format::Y4m;
    SxPictureRate rate; ///< the recording's; unknown when nothing tells it
    int sheetColumns = 0;
    bool overwrite = false;
    bool printsHashes = true; ///< each as it is known; false: only exportedJson() has them
};

#pragma once

#include <QJsonArray>
#include <QSize>
#include <QString>
#include <QVector>
#include <functional>
#include <memory>

#include "ExportRequest.h"
#include "SxPicBuf.h"

/// What a sink has written.
struct SxExported
{
    QString target; ///< the file or pattern; empty where the user saw it pass by, on standard output
    int pictures = 0;
    QSize size; ///< of each, or of the sheet
};

/// What is written of one picture.
struct SxMadePicture
{
    QByteArray bytes;          ///< a file, a part of a stream, a hash
    bool needsPicture = false; ///< the picture must be there while it is written: these may be its own bytes
    QString error;             ///< half a sentence; empty unless it cannot be made
};

/// Makes it, in any thread. It keeps what pictures share, so each thread has one of its own.
using MakePicture = std::function<SxMadePicture(SxPicBuf const& picture)>;

/// Where exported pictures go: files, a stream, a contact sheet, hashes.
class IxExportSink
{
public:
    enum class Result {
        Taken,
        ReaderGone, ///< whoever read standard output has closed it: nothing more is wanted
        Error       ///< with one sentence
    };

    virtual ~IxExportSink() = default;

    virtual MakePicture newMaker() const = 0;

    /// Writes what such a maker made of a picture of \p size; \p picture is null unless that needs it.
    virtual Result take(int frame, SxMadePicture const& made, QSize size, SxPicBuf const* picture,
                        QString& error) = 0;

    /// After the last picture.
    virtual Result finish(QString& error) = 0;

    virtual SxExported exported() const = 0;
    virtual QJsonArray exportedJson() const = 0; ///< an object for each frame taken, for programs
};

/// The sink for this request and frames. Null, with \p error one sentence, when it cannot or must not
/// be written to; nothing is touched then.
std::unique_ptr<IxExportSink> fx_MakeExportSink(SxExportRequest const& request, QVector<int> const& frames,
                                                QString& error);

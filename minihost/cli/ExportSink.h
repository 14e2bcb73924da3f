#pragma once

#include <QJsonArray>
#include <QString>
#include <QVector>
#include <memory>

#include "ExportArguments.h"
#include "SxPicBuf.h"

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

    virtual Result take(int frame, SxPicBuf const& picture, QString& error) = 0;

    /// After the last picture.
    virtual Result finish(QString& error) = 0;

    virtual QString summary() const = 0; ///< what was written, for people; empty when they see it anyway
    virtual QJsonArray summaryJson() const = 0; ///< an object for each frame taken, for programs
};

/// The sink for these arguments and frames. Null, with \p error one sentence, when it cannot or must not
/// be written to; nothing is touched then.
std::unique_ptr<IxExportSink> fx_MakeExportSink(SxExportArguments const& arguments,
                                                QVector<int> const& frames, QString& error);

#pragma once

#include <QByteArray>
#include <QFileDevice>
#include <QString>
#include <memory>
#include <utility>

#include "ExportRequest.h"

/// What stands in the way of writing \p fileName, one sentence; empty when nothing does.
QString fx_Obstacle(QString const& fileName, SxExportRequest const& request);

/// \return false, with the device's errorString(), unless it took them all. Qt reports a write that ended
/// halfway without a cause; the attempt to write the rest brings it.
bool fx_WriteAll(QIODevice& device, QByteArray const& bytes);

/// A file that is there only once it is whole: until finish() the bytes go into another one beside it, which
/// goes with this object, and a file of that name stays as it was. Pipes and devices take the bytes as they
/// come.
class CxOutputFile
{
public:
    explicit CxOutputFile(QString fileName)
        : m_fileName(std::move(fileName))
    {}

    /// Both: false, with \p error one sentence that names the file and what the disk said, when that fails.
    bool write(QByteArray const& bytes, QString& error); ///< opens it, too
    bool finish(QString& error);

    /// A name under which a library writes into the file by itself, opened and closed as often as it likes
    /// before finish(); empty, with \p error as above, when the file cannot be opened.
    QString nameForWriters(QString& error);

private:
    bool open();
    QString complaint() const;

    QString m_fileName;
    std::unique_ptr<QFileDevice> m_file;
};

/// Writes a whole file. \return false, with \p error one sentence, when that fails; what was there stays.
bool fx_WriteFile(QString const& fileName, QByteArray const& bytes, QString& error);

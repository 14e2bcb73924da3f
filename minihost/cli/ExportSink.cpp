#include "ExportSink.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QSet>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "Console.h"
#include "ContactSheet.h"
#include "Readable.h"
#include "SameFile.h"

namespace {

using Result = IxExportSink::Result;

QString fx_ErrnoText() { return QString::fromLocal8Bit(std::strerror(errno)); }

Result fx_WriteTo(FILE* stream, QString const& name, QByteArray const& bytes, bool flushes, QString& error)
{
    errno = 0;
    auto const wanted = static_cast<size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, wanted, stream) == wanted && (!flushes || std::fflush(stream) == 0))
        return Result::Taken;
    if (errno == EPIPE)
        return Result::ReaderGone;
    error = QStringLiteral("%1: %2.").arg(name, fx_ErrnoText());
    return Result::Error;
}

Result fx_WriteToStdout(QByteArray const& bytes, bool flushes, QString& error)
{
    return fx_WriteTo(stdout, QStringLiteral("Standard output"), bytes, flushes, error);
}

/// Writes a whole file. Where that fails no half file stays behind.
bool fx_WriteFile(QString const& fileName, QByteArray const& bytes, QString& error)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        error = QStringLiteral("%1: %2.").arg(fileName, file.errorString());
        return false;
    }
    bool const isWritten = file.write(bytes) == bytes.size() && file.flush();
    if (!isWritten) {
        error = QStringLiteral("%1: %2.").arg(fileName, file.errorString());
        file.close();
        if (QFileInfo(fileName).isFile())
            file.remove();
    }
    return isWritten;
}

/// What stands in the way of writing \p fileName, one sentence; empty when nothing does.
QString fx_Obstacle(QString const& fileName, SxExportArguments const& arguments)
{
    QFileInfo const info(fileName);
    if (info.isDir())
        return QStringLiteral("%1: this is a folder.").arg(fileName);
    if (fx_IsSameFile(arguments.common.file, fileName))
        return QStringLiteral("%1: what is written would replace the recording.").arg(fileName);
    if (info.isFile() && !arguments.overwrite)
        return QStringLiteral("%1: the file exists; --overwrite replaces it.").arg(fileName);
    QFileInfo const folder(info.absolutePath());
    if (!folder.isDir())
        return QStringLiteral("%1: there is no folder %2.").arg(fileName, folder.filePath());
    return QString();
}

bool fx_WritePicture(CxPictureEncoder& encoder, SxPicBuf const& picture, QString const& fileName,
                     QString& error)
{
    QString cause;
    std::optional<QByteArray> const bytes = encoder.encode(picture, cause);
    if (!bytes) {
        error = QStringLiteral("%1: the picture cannot be made: %2.").arg(fileName, cause);
        return false;
    }
    return fx_WriteFile(fileName, *bytes, error);
}

/// A file a frame. A frame that is asked for twice has one file.
class CxFileSink : public IxExportSink
{
public:
    explicit CxFileSink(QString const& pattern)
        : m_pattern(pattern)
        , m_encoder(QFileInfo(pattern).suffix())
    {}

    Result take(int frame, SxPicBuf const& picture, QString& error) override
    {
        if (m_written.contains(frame))
            return Result::Taken;
        QString const fileName = *fx_FileNameOf(m_pattern, frame);
        if (!fx_WritePicture(m_encoder, picture, fileName, error))
            return Result::Error;
        m_written.insert(frame);
        m_json.append(QJsonObject{{QStringLiteral("frame"), frame}, {QStringLiteral("file"), fileName}});
        m_size = QStringLiteral("%1 x %2").arg(picture.width).arg(picture.height);
        return Result::Taken;
    }
    Result finish(QString&) override { return Result::Taken; }
    QString summary() const override
    {
        return QStringLiteral("%1: %2 of %3 written.")
            .arg(m_pattern, fx_Count(m_written.size(), "picture"), m_size);
    }
    QJsonArray summaryJson() const override { return m_json; }

private:
    QString m_pattern;
    CxPictureEncoder m_encoder;
    QSet<int> m_written;
    QJsonArray m_json;
    QString m_size;
};

struct SxFileCloser
{
    void operator()(FILE* file) const { std::fclose(file); }
};

/// All pictures behind each other, on standard output or in one file.
class CxStreamSink : public IxExportSink
{
public:
    explicit CxStreamSink(SxExportArguments const& arguments)
        : m_stream(arguments.stream)
        , m_fileName(arguments.output == QLatin1String("-") ? QString() : arguments.output)
    {}

    Result take(int frame, SxPicBuf const& picture, QString& error) override
    {
        if (!m_fileName.isEmpty() && !m_file) {
            m_file.reset(std::fopen(QFile::encodeName(m_fileName).constData(), "wb"));
            if (!m_file) {
                error = QStringLiteral("%1: %2.").arg(m_fileName, fx_ErrnoText());
                return Result::Error;
            }
            m_size = QStringLiteral("%1 x %2").arg(picture.width).arg(picture.height);
        }
        std::optional<QByteArray> const bytes = m_stream.next(picture);
        if (!bytes) {
            error = QStringLiteral("Out of memory.");
            return Result::Error;
        }
        if (!m_file)
            return fx_WriteToStdout(*bytes, true, error);
        Result const result = fx_WriteTo(m_file.get(), m_fileName, *bytes, true, error);
        if (result == Result::Taken)
            m_json.append(
                QJsonObject{{QStringLiteral("frame"), frame}, {QStringLiteral("file"), m_fileName}});
        return result;
    }
    Result finish(QString&) override { return Result::Taken; }
    QString summary() const override
    {
        return m_file ? QStringLiteral("%1: %2 of %3 written.")
                            .arg(m_fileName, fx_Count(m_json.size(), "picture"), m_size)
                      : QString();
    }
    QJsonArray summaryJson() const override { return m_json; }

private:
    CxPictureStream m_stream;
    QString m_fileName; ///< empty for standard output
    std::unique_ptr<FILE, SxFileCloser> m_file;
    QString m_size;
    QJsonArray m_json;
};

class CxSheetSink : public IxExportSink
{
public:
    CxSheetSink(SxExportArguments const& arguments, int count)
        : m_fileName(*fx_FileNameOf(arguments.output, 0))
        , m_sheet(arguments.sheetColumns, count)
    {}

    Result take(int frame, SxPicBuf const& picture, QString& error) override
    {
        m_json.append(QJsonObject{{QStringLiteral("frame"), frame}, {QStringLiteral("file"), m_fileName}});
        if (m_sheet.add(frame, picture))
            return Result::Taken;
        error = QStringLiteral("%1: the sheet would be too large; take fewer frames.").arg(m_fileName);
        return Result::Error;
    }
    Result finish(QString& error) override
    {
        CxOwnedPicture whole;
        if (!m_sheet.finish(whole.get())) {
            error = QStringLiteral("%1: out of memory.").arg(m_fileName);
            return Result::Error;
        }
        m_size = QStringLiteral("%1 x %2").arg(whole.get().width).arg(whole.get().height);
        CxPictureEncoder encoder(QFileInfo(m_fileName).suffix());
        return fx_WritePicture(encoder, whole.get(), m_fileName, error) ? Result::Taken : Result::Error;
    }
    QString summary() const override
    {
        return QStringLiteral("%1: a sheet of %2, %3.")
            .arg(m_fileName, fx_Count(m_json.size(), "picture"), m_size);
    }
    QJsonArray summaryJson() const override { return m_json; }

private:
    QString m_fileName;
    CxContactSheet m_sheet;
    QJsonArray m_json;
    QString m_size;
};

class CxHashSink : public IxExportSink
{
public:
    explicit CxHashSink(bool asJson)
        : m_asJson(asJson)
    {}

    Result take(int frame, SxPicBuf const& picture, QString& error) override
    {
        QByteArray const hash =
            QCryptographicHash::hash(fx_PackedRows(picture), QCryptographicHash::Md5).toHex();
        Console::transient(QString()); // on a terminal the lines and the progress line share the screen
        if (!m_asJson)
            return fx_WriteToStdout(QByteArray::number(frame) + ' ' + hash + '\n', false, error);
        m_json.append(QJsonObject{{QStringLiteral("frame"), frame},
                                  {QStringLiteral("md5"), QString::fromLatin1(hash)}});
        return Result::Taken;
    }
    Result finish(QString& error) override { return fx_WriteToStdout(QByteArray(), true, error); }
    QString summary() const override { return QString(); }
    QJsonArray summaryJson() const override { return m_json; }

private:
    bool m_asJson;
    QJsonArray m_json;
};

/// What stands in the way of writing the files, one sentence; empty when nothing does.
QString fx_ObstacleToFiles(SxExportArguments const& arguments, QVector<int> const& frames)
{
    QSet<QString> names;
    for (int const frame : frames) {
        QString const name = *fx_FileNameOf(arguments.output, frame);
        if (names.contains(name))
            continue;
        names.insert(name);
        QString obstacle = fx_Obstacle(name, arguments);
        if (!obstacle.isEmpty())
            return obstacle;
    }
    return QString();
}

} // namespace

std::unique_ptr<IxExportSink> fx_MakeExportSink(SxExportArguments const& arguments,
                                                QVector<int> const& frames, QString& error)
{
    switch (arguments.kind) {
    case SxExportArguments::Kind::Hashes:
        return std::make_unique<CxHashSink>(arguments.common.json);
    case SxExportArguments::Kind::Stream:
        if (arguments.output != QLatin1String("-")) {
            error = fx_Obstacle(arguments.output, arguments);
            if (!error.isEmpty())
                return nullptr;
        } else if (isatty(STDOUT_FILENO) == 1) {
            error =
                QStringLiteral("Standard output is a terminal; pipe the pictures into a program or a file.");
            return nullptr;
        }
        return std::make_unique<CxStreamSink>(arguments);
    case SxExportArguments::Kind::Files:
    case SxExportArguments::Kind::Sheet:
        break;
    }
    error = fx_ObstacleToFiles(arguments, frames);
    if (!error.isEmpty())
        return nullptr;
    if (arguments.kind == SxExportArguments::Kind::Sheet)
        return std::make_unique<CxSheetSink>(arguments, frames.size());
    return std::make_unique<CxFileSink>(arguments.output);
}

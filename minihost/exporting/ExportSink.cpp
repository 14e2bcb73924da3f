#include "ExportSink.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QJsonObject>
#include <QSet>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "ContactSheet.h"
#include "NumberedFileName.h"
#include "OutputFile.h"
#include "PictureFormat.h"

namespace {

using Result = IxExportSink::Result;

QSize fx_Size(SxPicBufInfo const& picture)
{
    return {static_cast<int>(picture.width), static_cast<int>(picture.height)};
}

Result fx_WriteToStdout(QByteArray const& bytes, bool flushes, QString& error)
{
    errno = 0;
    auto const wanted = static_cast<size_t>(bytes.size());
    if (std::fwrite(bytes.constData(), 1, wanted, stdout) == wanted && (!flushes || std::fflush(stdout) == 0))
        return Result::Taken;
    if (errno == EPIPE)
        return Result::ReaderGone;
    error = QStringLiteral("Standard output: %1.").arg(QString::fromLocal8Bit(std::strerror(errno)));
    return Result::Error;
}

Result fx_ResultOf(bool isWritten) { return isWritten ? Result::Taken : Result::Error; }

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
        m_size = fx_Size(picture);
        return Result::Taken;
    }
    Result finish(QString&) override { return Result::Taken; }
    SxExported exported() const override { return {m_pattern, static_cast<int>(m_written.size()), m_size}; }
    QJsonArray exportedJson() const override { return m_json; }

private:
    QString m_pattern;
    CxPictureEncoder m_encoder;
    QSet<int> m_written;
    QJsonArray m_json;
    QSize m_size;
};

/// All pictures behind each other, on standard output or in one file.
class CxStreamSink : public IxExportSink
{
public:
    explicit CxStreamSink(SxExportRequest const& request)
        : m_stream(request.stream, request.rate)
        , m_fileName(request.output == QLatin1String("-") ? QString() : request.output)
        , m_file(m_fileName)
    {}

    Result take(int frame, SxPicBuf const& picture, QString& error) override
    {
        m_size = fx_Size(picture);
        std::optional<QByteArray> const bytes = m_stream.next(picture);
        if (!bytes) {
            error = QStringLiteral("Out of memory.");
            return Result::Error;
        }
        if (m_fileName.isEmpty())
            return fx_WriteToStdout(*bytes, true, error);
        Result const result = fx_ResultOf(m_file.write(*bytes, error));
        if (result == Result::Taken)
            m_json.append(
                QJsonObject{{QStringLiteral("frame"), frame}, {QStringLiteral("file"), m_fileName}});
        return result;
    }
    Result finish(QString& error) override
    {
        return m_fileName.isEmpty() ? Result::Taken : fx_ResultOf(m_file.finish(error));
    }
    SxExported exported() const override { return {m_fileName, static_cast<int>(m_json.size()), m_size}; }
    QJsonArray exportedJson() const override { return m_json; }

private:
    CxPictureStream m_stream;
    QString m_fileName; ///< empty for standard output
    CxOutputFile m_file;
    QSize m_size;
    QJsonArray m_json;
};

class CxSheetSink : public IxExportSink
{
public:
    CxSheetSink(SxExportRequest const& request, int count)
        : m_fileName(*fx_FileNameOf(request.output, 0))
        , m_sheet(request.sheetColumns, count)
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
        m_size = fx_Size(whole.get());
        CxPictureEncoder encoder(QFileInfo(m_fileName).suffix());
        return fx_WritePicture(encoder, whole.get(), m_fileName, error) ? Result::Taken : Result::Error;
    }
    SxExported exported() const override { return {m_fileName, static_cast<int>(m_json.size()), m_size}; }
    QJsonArray exportedJson() const override { return m_json; }

private:
    QString m_fileName;
    CxContactSheet m_sheet;
    QJsonArray m_json;
    QSize m_size;
};

class CxHashSink : public IxExportSink
{
public:
    explicit CxHashSink(bool prints)
        : m_prints(prints)
    {}

    Result take(int frame, SxPicBuf const& picture, QString& error) override
    {
        QByteArray const hash =
            QCryptographicHash::hash(fx_PackedRows(picture), QCryptographicHash::Md5).toHex();
        if (m_prints)
            return fx_WriteToStdout(QByteArray::number(frame) + ' ' + hash + '\n', false, error);
        m_json.append(QJsonObject{{QStringLiteral("frame"), frame},
                                  {QStringLiteral("md5"), QString::fromLatin1(hash)}});
        return Result::Taken;
    }
    Result finish(QString& error) override { return fx_WriteToStdout(QByteArray(), true, error); }
    SxExported exported() const override { return {}; }
    QJsonArray exportedJson() const override { return m_json; }

private:
    bool m_prints;
    QJsonArray m_json;
};

/// What stands in the way of writing the files, one sentence; empty when nothing does.
QString fx_ObstacleToFiles(SxExportRequest const& request, QVector<int> const& frames)
{
    QSet<QString> names;
    for (int const frame : frames) {
        QString const name = *fx_FileNameOf(request.output, frame);
        if (names.contains(name))
            continue;
        names.insert(name);
        QString obstacle = fx_Obstacle(name, request);
        if (!obstacle.isEmpty())
            return obstacle;
    }
    return QString();
}

} // namespace

std::unique_ptr<IxExportSink> fx_MakeExportSink(SxExportRequest const& request, QVector<int> const& frames,
                                                QString& error)
{
    switch (request.kind) {
    case SxExportRequest::Kind::Hashes:
        return std::make_unique<CxHashSink>(request.printsHashes);
    case SxExportRequest::Kind::Stream:
        if (request.output != QLatin1String("-")) {
            error = fx_Obstacle(request.output, request);
            if (!error.isEmpty())
                return nullptr;
        } else if (isatty(STDOUT_FILENO) == 1) {
            error =
                QStringLiteral("Standard output is a terminal; pipe the pictures into a program or a file.");
            return nullptr;
        }
        return std::make_unique<CxStreamSink>(request);
    case SxExportRequest::Kind::Files:
    case SxExportRequest::Kind::Sheet:
        break;
    }
    error = fx_ObstacleToFiles(request, frames);
    if (!error.isEmpty())
        return nullptr;
    if (request.kind == SxExportRequest::Kind::Sheet)
        return std::make_unique<CxSheetSink>(request, frames.size());
    return std::make_unique<CxFileSink>(request.output);
}

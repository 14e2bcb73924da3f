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

/// Picture files of a kind.
MakePicture fx_NewFileMaker(QString const& suffix)
{
    return [encoder = std::make_shared<CxPictureEncoder>(suffix)](SxPicBuf const& picture) {
        SxMadePicture made;
        made.bytes = encoder->encode(picture, made.error).value_or(QByteArray());
        return made;
    };
}

bool fx_WritePicture(SxMadePicture const& made, QString const& fileName, QString& error)
{
    if (made.error.isEmpty())
        return fx_WriteFile(fileName, made.bytes, error);
    error = QStringLiteral("%1: the picture cannot be made: %2.").arg(fileName, made.error);
    return false;
}

/// A file a frame. A frame that is asked for twice has one file.
class CxFileSink : public IxExportSink
{
public:
    explicit CxFileSink(QString const& pattern)
        : m_pattern(pattern)
    {}

    MakePicture newMaker() const override { return fx_NewFileMaker(QFileInfo(m_pattern).suffix()); }
    Result take(int frame, SxMadePicture const& made, QSize size, SxPicBuf const*, QString& error) override
    {
        if (m_written.contains(frame))
            return Result::Taken;
        QString const fileName = *fx_FileNameOf(m_pattern, frame);
        if (!fx_WritePicture(made, fileName, error))
            return Result::Error;
        m_written.insert(frame);
        m_json.append(QJsonObject{{QStringLiteral("frame"), frame}, {QStringLiteral("file"), fileName}});
        m_size = size;
        return Result::Taken;
    }
    Result finish(QString&) override { return Result::Taken; }
    SxExported exported() const override { return {m_pattern, static_cast<int>(m_written.size()), m_size}; }
    QJsonArray exportedJson() const override { return m_json; }

private:
    QString m_pattern;
    QSet<int> m_written;
    QJsonArray m_json;
    QSize m_size;
};

/// All pictures behind each other, on standard output or in one file.
class CxStreamSink : public IxExportSink
{
public:
    explicit CxStreamSink(SxExportRequest const& request)
        : m_format(request.stream)
        , m_rate(request.rate)
        , m_fileName(request.output == QLatin1String("-") ? QString() : request.output)
        , m_file(m_fileName)
    {}

    MakePicture newMaker() const override
    {
        return [stream = std::make_shared<CxPictureStream>(m_format)](SxPicBuf const& picture) {
            SxMadePicture made;
            std::optional<QByteArray> const bytes = stream->next(picture);
            made.bytes = bytes.value_or(QByteArray());
            made.needsPicture = stream->givesPicturesOwnBytes();
            if (!bytes)
                made.error = QStringLiteral("out of memory");
            return made;
        };
    }
    Result take(int frame, SxMadePicture const& made, QSize size, SxPicBuf const*, QString& error) override
    {
        if (!made.error.isEmpty()) {
            error = QStringLiteral("Out of memory.");
            return Result::Error;
        }
        Result result = Result::Taken;
        if (m_size.isEmpty())
            result = write(CxPictureStream(m_format).header(size, m_rate), error);
        m_size = size;
        if (result == Result::Taken)
            result = write(made.bytes, error);
        if (m_fileName.isEmpty())
            return result;
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
    Result write(QByteArray const& bytes, QString& error)
    {
        return m_fileName.isEmpty() ? fx_WriteToStdout(bytes, true, error)
                                    : fx_ResultOf(m_file.write(bytes, error));
    }

    CxPictureStream::Format m_format;
    SxPictureRate m_rate;
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

    MakePicture newMaker() const override
    {
        return [](SxPicBuf const&) {
            SxMadePicture made;
            made.needsPicture = true;
            return made;
        };
    }
    Result take(int frame, SxMadePicture const&, QSize, SxPicBuf const* picture, QString& error) override
    {
        m_json.append(QJsonObject{{QStringLiteral("frame"), frame}, {QStringLiteral("file"), m_fileName}});
        if (m_sheet.add(frame, *picture))
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
        m_size = QSize(static_cast<int>(whole.get().width), static_cast<int>(whole.get().height));
        SxMadePicture const made = fx_NewFileMaker(QFileInfo(m_fileName).suffix())(whole.get());
        return fx_ResultOf(fx_WritePicture(made, m_fileName, error));
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

    MakePicture newMaker() const override
    {
        return [](SxPicBuf const& picture) {
            SxMadePicture made;
            made.bytes = QCryptographicHash::hash(fx_PackedRows(picture), QCryptographicHash::Md5).toHex();
            return made;
        };
    }
    Result take(int frame, SxMadePicture const& made, QSize, SxPicBuf const*, QString& error) override
    {
        if (m_prints)
            return fx_WriteToStdout(QByteArray::number(frame) + ' ' + made.bytes + '\n', false, error);
        m_json.append(QJsonObject{{QStringLiteral("frame"), frame},
                                  {QStringLiteral("md5"), QString::fromLatin1(made.bytes)}});
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

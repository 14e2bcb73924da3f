#include "OutputFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>

#include "SameFile.h"

QString fx_Obstacle(QString const& fileName, SxExportRequest const& request)
{
    QFileInfo const info(fileName);
    if (info.isDir())
        return QStringLiteral("%1: this is a folder.").arg(fileName);
    if (fx_IsSameFile(request.recording, fileName))
        return QStringLiteral("%1: what is written would replace the recording.").arg(fileName);
    if (info.isFile() && !request.overwrite)
        return QStringLiteral("%1: the file exists; --overwrite replaces it.").arg(fileName);
    QFileInfo const folder(info.absolutePath());
    if (!folder.isDir())
        return QStringLiteral("%1: there is no folder %2.").arg(fileName, folder.filePath());
    return QString();
}

bool fx_WriteAll(QIODevice& device, QByteArray const& bytes)
{
    for (qint64 done = 0; done < bytes.size();) {
        qint64 const written = device.write(bytes.constData() + done, bytes.size() - done);
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

bool CxOutputFile::open()
{
    QFileInfo const info(m_fileName);
    if (info.exists() && !info.isFile())
        m_file = std::make_unique<QFile>(m_fileName);
    else
        m_file = std::make_unique<QSaveFile>(m_fileName);
    return m_file->open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

CxOutputFile::Result CxOutputFile::failure(QString& error) const
{
    if (errno == EPIPE)
        return Result::ReaderGone;
    error = QStringLiteral("%1: %2.").arg(m_fileName, m_file->errorString());
    return Result::Error;
}

CxOutputFile::Result CxOutputFile::write(QByteArray const& bytes, QString& error)
{
    errno = 0;
    if (!m_file && !open())
        return failure(error);
    return fx_WriteAll(*m_file, bytes) ? Result::Written : failure(error);
}

CxOutputFile::Result CxOutputFile::finish(QString& error)
{
    errno = 0;
    auto* const file = qobject_cast<QSaveFile*>(m_file.get());
    return !file || file->commit() ? Result::Written : failure(error);
}

bool fx_WriteFile(QString const& fileName, QByteArray const& bytes, QString& error)
{
    CxOutputFile file(fileName);
    CxOutputFile::Result result = file.write(bytes, error);
    if (result == CxOutputFile::Result::Written)
        result = file.finish(error);
    if (result == CxOutputFile::Result::ReaderGone)
        error = QStringLiteral("%1: nobody reads it any more.").arg(fileName);
    return result == CxOutputFile::Result::Written;
}

#include "OutputFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

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

bool CxOutputFile::write(QByteArray const& bytes, QString& error)
{
    bool const isWritten = (m_file || open()) && fx_WriteAll(*m_file, bytes);
    if (!isWritten)
        error = complaint();
    return isWritten;
}

QString CxOutputFile::nameForWriters(QString& error)
{
    if (m_file || open())
        return QStringLiteral("/proc/self/fd/%1").arg(m_file->handle());
    error = complaint();
    return QString();
}

bool CxOutputFile::finish(QString& error)
{
    auto* const file = qobject_cast<QSaveFile*>(m_file.get());
    bool const isWhole = !file || file->commit();
    if (!isWhole)
        error = complaint();
    return isWhole;
}

QString CxOutputFile::complaint() const
{
    return QStringLiteral("%1: %2.").arg(m_fileName, m_file->errorString());
}

bool fx_WriteFile(QString const& fileName, QByteArray const& bytes, QString& error)
{
    CxOutputFile file(fileName);
    return file.write(bytes, error) && file.finish(error);
}

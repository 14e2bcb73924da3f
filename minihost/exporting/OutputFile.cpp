#include "OutputFile.h"

#include <QFile>
#include <QFileInfo>

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

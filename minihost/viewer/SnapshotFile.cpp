#include "SnapshotFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

static QString const kFolderKey = QStringLiteral("snapshot/folder");
static constexpr int kMostOfOneName = 100000;

QString CxSnapshotFile::folder()
{
    return QSettings()
        .value(kFolderKey, QStandardPaths::writableLocation(QStandardPaths::PicturesLocation))
        .toString();
}

void CxSnapshotFile::setFolder(QString const& folder) { QSettings().setValue(kFolderKey, folder); }

QString CxSnapshotFile::reserve(QString const& base, QString& error)
{
    QDir const directory(folder());
    directory.mkpath(QStringLiteral(".")); // a folder that is missing still is when opening fails
    QFile file;
    for (int copy = 1; copy < kMostOfOneName; ++copy) {
        QString const name = copy == 1 ? base : QStringLiteral("%1_%2").arg(base, QString::number(copy));
        file.setFileName(directory.filePath(name + QStringLiteral(".png")));
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) // nobody comes in between
            return file.fileName();
        if (!QFileInfo::exists(file.fileName()))
            break;
    }
    error = file.errorString();
    return file.fileName();
}

void CxSnapshotFile::release(QString const& fileName)
{
    if (QFileInfo(fileName).size() == 0)
        QFile::remove(fileName);
}

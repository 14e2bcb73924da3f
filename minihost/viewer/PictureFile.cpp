#include "PictureFile.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>

#include "OutputFile.h"

bool CxPictureFile::save(QImage const& image, QString const& fileName, QString& error)
{
    // Coded in memory first: what the coder cannot do and what the disk cannot take stay apart.
    QString const suffix = QFileInfo(fileName).suffix();
    QBuffer coded;
    QImageWriter writer(&coded, suffix.toLatin1());
    if (!writer.write(image)) {
        error = writer.error() == QImageWriter::UnsupportedFormatError
                    ? tr("there is no picture format “%1”; “png” always works").arg(suffix)
                    : writer.errorString();
        return false;
    }
    QSaveFile file(fileName);
    bool const isSaved = file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                         fx_WriteAll(file, coded.data()) && file.commit();
    if (!isSaved)
        error = file.errorString();
    return isSaved;
}

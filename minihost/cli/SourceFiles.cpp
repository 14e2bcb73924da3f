#include "SourceFiles.h"

#include <QFileInfo>

#include "PictureFolder.h"

/// Why a file cannot be read, one sentence; empty when nothing is known to be in the way. Half a recording
/// later would be late to find out.
static QString fx_Obstacle(QString const& file)
{
    QFileInfo const info(file);
    if (!info.exists())
        return QStringLiteral("%1: there is no such file.").arg(file);
    return info.isReadable() ? QString() : QStringLiteral("%1: no permission to read it.").arg(file);
}

static void fx_Add(SxSourceFiles& found, SxPictureFiles const& pictures)
{
    found.names += pictures.files;
    if (!pictures.note.isEmpty())
        found.notes += pictures.note;
    if (!pictures.gap.isEmpty())
        found.warnings += pictures.gap;
    if (found.obstacle.isEmpty())
        found.obstacle = pictures.obstacle;
    for (int i = 0; i < pictures.files.size() && found.obstacle.isEmpty(); ++i)
        found.obstacle = fx_Obstacle(pictures.files[i]);
}

SxSourceFiles fx_FindSources(QStringList const& sources, bool isReaderChosen)
{
    SxSourceFiles found;
    for (QString const& source : sources) {
        QFileInfo const info(source);
        // What is no file may be a device, a URL, or whatever else the reader knows.
        bool const isOther = !info.exists() && (isReaderChosen || source == QLatin1String("-") ||
                                                source.contains(QLatin1Char(':')));
        if (info.isDir())
            fx_Add(found, fx_PicturesInFolder(source));
        else if (!isReaderChosen && fx_IsPicturePattern(source))
            fx_Add(found, fx_PicturesOfPattern(source));
        else if (isOther)
            found.names += source;
        else
            fx_Add(found, {{source}, QString(), QString(), QString()});
    }
    return found;
}

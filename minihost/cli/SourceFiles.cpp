#include "SourceFiles.h"

#include <QFileInfo>

#include "PictureFolder.h"

static void fx_Add(SxSourceFiles& found, SxPictureFiles const& pictures)
{
    found.names += pictures.files;
    if (!pictures.note.isEmpty())
        found.notes += pictures.note;
    if (!pictures.gap.isEmpty())
        found.warnings += pictures.gap;
    if (found.obstacle.isEmpty())
        found.obstacle = pictures.obstacle;
}

SxSourceFiles fx_FindSources(QStringList const& sources, bool isReaderChosen)
{
    SxSourceFiles found;
    for (QString const& source : sources) {
        QFileInfo const info(source);
        if (info.isDir()) {
            fx_Add(found, fx_PicturesInFolder(source));
            continue;
        }
        if (!isReaderChosen && fx_IsPicturePattern(source)) {
            fx_Add(found, fx_PicturesOfPattern(source));
            continue;
        }
        found.names += source;
        if (!isReaderChosen && !info.exists() && source != QLatin1String("-") &&
            !source.contains(QLatin1Char(':')) && found.obstacle.isEmpty())
            found.obstacle = QStringLiteral("%1: there is no such file.").arg(source);
    }
    return found;
}

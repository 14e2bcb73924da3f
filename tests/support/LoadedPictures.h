#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

class CxH264VideoLoader;

/// The visible pixels of picture \p frame, RGB32 without padding; empty when the loader gives none.
QByteArray fx_LoadedPicture(CxH264VideoLoader& loader, int frame);

/// Those of every frame of a file, in order, through a loader of its own. None when it does not open.
QList<QByteArray> fx_LoadedPictures(QString const& fileName);

#pragma once

#include <QList>
#include <QString>

/// A file format that a loader or saver offers, as the host's file dialogs list it.
struct CxImageFormat
{
    QString description; ///< text for the user with the file pattern behind it: "H.264 file (*.h264)"
    qint32 kind = 0;     ///< the host's format kind; 2 for raw H.264
};

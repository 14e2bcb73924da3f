#pragma once

#include <QCoreApplication>

class QImage;

/// Pictures as files of their own.
class CxPictureFile
{
    Q_DECLARE_TR_FUNCTIONS(CxPictureFile)

public:
    /// Writes \p image in the format that the suffix of \p fileName names. A file that was there is replaced
    /// only by a whole one.
    /// \return false, with \p error the cause for people to read, when nothing was written.
    static bool save(QImage const& image, QString const& fileName, QString& error);
};

#pragma once

#include <QString>

/// Where snapshots go: files of new names in one folder, which is set once.
class CxSnapshotFile
{
public:
    static QString folder(); ///< unless it was set, the user's folder of pictures
    static void setFolder(QString const& folder);

    /// Makes an empty file "<base>.png" in the folder, or, where that exists, "<base>_2.png" and so on, so
    /// that nothing is ever written over.
    /// \return its name; with \p error the cause for people to read when there is none.
    static QString reserve(QString const& base, QString& error);

    static void release(QString const& fileName); ///< removes it again if nothing came into it
};

#pragma once

#include <QStringList>

/// The picture files that a source stands for.
struct SxPictureFiles
{
    QStringList files; ///< in the order in which people count: shot_2 before shot_10
    QString obstacle;  ///< why there are none, or not all of them can be had, one sentence
    QString note;      ///< what was passed over, one sentence, or empty
    QString gap;       ///< which numbers of a pattern are missing between its first and last, one sentence
};

/// True for names that order numbers by their value and everything else by its code points.
bool fx_IsNaturallyBefore(QString const& a, QString const& b);

/// The pictures in a folder, by the ends of their names; not those in folders within it.
SxPictureFiles fx_PicturesInFolder(QString const& folder);

/// True for a name like "shots/shot_%05d.png" that is not a file's: a pattern for the names of many.
bool fx_IsPicturePattern(QString const& source);

/// The files whose names a pattern makes of any number, by that number. %d stands for a number, %05d for one
/// with zeros before it up to five digits, %% for a per cent sign.
SxPictureFiles fx_PicturesOfPattern(QString const& pattern);

#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

class CxTestPicture;

/// Pictures as our encoder codes them.
struct SxCodedStream
{
    QList<QByteArray> frames; ///< one access unit each, start codes included
    QList<int> keys;          ///< numbers of the IDR pictures

    QByteArray bytes() const; ///< the raw stream
};

/// Draws picture \p frame of a sequence that changes too little for the encoder to see a new scene and
/// enough that no two pictures are equal.
void fx_DrawFrame(CxTestPicture& picture, int frame);

/// Codes \p count such pictures with the encoder options given. Empty when the encoder fails.
SxCodedStream fx_CodeStream(int count, quint32 width, quint32 height, QMap<QString, QVariant> const& options);

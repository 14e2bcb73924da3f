#pragma once

#include <QByteArray>
#include <QRect>
#include <QSize>
#include <QString>

constexpr int kSmallestSide = 16; ///< of pictures that the encoder takes: one macroblock

/// What is done to every picture of a source, in this order.
struct SxPictureChanges
{
    int rotation = 0;         ///< degrees clockwise: 0, 90, 180, 270
    bool turnsItself = false; ///< instead of these, those that the source says
    QRect crop;               ///< the part of the turned picture that stays; null: all of it
    QSize scale;              ///< the size that this part is brought to; empty: its own
    bool isEven = false;      ///< an odd last column and row are left out
};

/// The same for pictures of one size.
struct SxChangePlan
{
    QByteArray filters;    ///< as FFmpeg's filter graphs are written; empty: nothing is to be done
    bool isTurned = false; ///< by a quarter or three: what was wide is high
    QSize size;            ///< of the result; empty when they cannot be done
    QSize whole;           ///< the same before an odd last column and row were left out
    QString obstacle;      ///< why not, the end of a sentence
};

/// FFmpeg's filters that turn pictures by 0, 90, 180 or 270 degrees clockwise; empty for 0.
QByteArray fx_TurnFilter(int rotation);

/// \param stored  size of the picture as it comes.
/// \param ownRotation  what the source says of it, degrees clockwise; any multiple of 90.
SxChangePlan fx_PlanChanges(SxPictureChanges const& changes, QSize stored, int ownRotation);

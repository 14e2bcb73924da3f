#pragma once

#include <QVector>

/// What a recording's frame says of its place among the others.
struct SxFrameMark
{
    int frame = 0;
    bool isKey = false;
    int frameNum =
        -1; ///< frame_num of its slice (ITU-T H.264, 7.4.3): 0 for a key, then one more each; -1: unreadable
    int extraUnits = 0; ///< behind its slice, where nothing should be: pictures whose own opening is damaged
    int idrPicId =
        -1; ///< idr_pic_id of a key's slice (7.4.3), which OpenH264 counts up; -1: none, unreadable
};

/// Pictures that are not there any more, so that the numbers behind them are too small.
struct SxVanishedPictures
{
    int beforeFrame = 0; ///< the first frame whose number is too small
    int pictures = 0;
    bool isCertain =
        false;         ///< false: the encoder may have begun a new group by itself, as it does at a new scene
    int keyFrames = 0; ///< among them, by the keys' own count; not 0: pictures is an estimate
};

/// Finds the pictures that vanished, by frame_num, by units that belong nowhere, by the key frames' own
/// count and by their spacing.
///
/// \param marks        of all frames, ascending
/// \param maxFrameNum  where frame_num begins anew
QVector<SxVanishedPictures> fx_VanishedPictures(QVector<SxFrameMark> const& marks, int maxFrameNum);

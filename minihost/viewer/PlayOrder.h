#pragma once

/// Which picture of a recording is played after which.
struct SxPlayOrder
{
    int count = 0; ///< pictures of the recording
    int first = 0; ///< of the part that a loop repeats
    int last = -1;
    bool isLooping = false;
    bool isBackwards = false;
    int stride = 1; ///< from a picture to the next one shown; first and last are never passed over

    void setRecording(int pictures); ///< with all of it as the part
    int start() const;               ///< where playing starts over
    int after(int number) const;     ///< the picture to be played then; -1: playing ends there
};

#include "PlayOrder.h"

#include <algorithm>

void SxPlayOrder::setRecording(int pictures)
{
    count = pictures;
    first = 0;
    last = pictures - 1;
}

int SxPlayOrder::start() const
{
    if (isBackwards)
        return isLooping ? last : count - 1;
    return isLooping ? first : 0;
}

int SxPlayOrder::after(int number) const
{
    // From beyond the part, playing goes on to the recording's end.
    bool const isUpToPart = isLooping && (isBackwards ? number >= first : number <= last);
    int const end = isBackwards ? (isUpToPart ? first : 0) : (isUpToPart ? last : count - 1);
    if (number == end)
        return isLooping ? start() : -1;
    return isBackwards ? std::max(number - stride, end) : std::min(number + stride, end);
}

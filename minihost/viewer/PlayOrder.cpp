#include "PlayOrder.h"

void SxPlayOrder::setRecording(int pictures)
{
    count = pictures;
    first = 0;
    last = pictures - 1;
}

int SxPlayOrder::start() const { return isLooping ? first : 0; }

int SxPlayOrder::after(int number) const
{
    // From beyond the part, playing goes on to the recording's end.
    int const end = isLooping && number <= last ? last : count - 1;
    if (number < end)
        return number + 1;
    return isLooping ? start() : -1;
}

#include "VerifyFindings.h"

#include <algorithm>

bool SxFindings::isKey(int frame) const
{
    return std::binary_search(keyFrames.begin(), keyFrames.end(), frame);
}

int SxFindings::vanishedForCertain() const
{
    int pictures = 0;
    for (SxVanishedPictures const& place : vanished)
        pictures += place.isCertain ? place.pictures : 0;
    return pictures;
}

void SxFindings::addDamage(int frame, qint64 offset, qint64 size, QString const& cause)
{
    ++failed;
    if (!damage.isEmpty() && damage.last().last == frame - 1 && damage.last().cause == cause) {
        damage.last().last = frame;
        damage.last().size += size;
    } else {
        damage.append({frame, frame, offset, size, cause});
    }
}

void SxFindings::closeDamageAt(qint64 end)
{
    if (!damage.isEmpty() && damage.last().last == examined() - 1)
        damage.last().size = end - damage.last().offset;
}

#include "VanishedPictures.h"

#include <QMap>
#include <algorithm>

#include "VanishedKeys.h"

namespace {

using Mark = QVector<SxFrameMark>::const_iterator;

/// A key frame and what follows it up to the next.
struct SxGroup
{
    Mark begin;
    Mark end;
    int size() const { return static_cast<int>(end - begin); }
};

QVector<SxGroup> fx_Groups(QVector<SxFrameMark> const& marks)
{
    QVector<SxGroup> groups;
    auto const isKey = [](SxFrameMark const& mark) { return mark.isKey; };
    for (Mark begin = marks.begin(); begin != marks.end();) {
        Mark const end = std::find_if(begin + 1, marks.end(), isKey);
        groups.append(SxGroup{begin, end});
        begin = end;
    }
    return groups;
}

/// Frames from one key frame to the next in at least half of the recording; 0 when there is no such number.
int fx_UsualSize(QVector<SxGroup> const& groups)
{
    QMap<int, int> counts;
    for (int i = 0; i + 1 < groups.size(); ++i) // the last may be unfinished
        ++counts[groups[i].size()];
    for (auto it = counts.begin(); it != counts.end(); ++it) {
        if (it.value() > 1 && it.value() * 2 >= groups.size() - 1)
            return it.key();
    }
    return 0;
}

/// Whether a frame_num that was not expected can be believed: damage changes those of single slices.
bool fx_IsConfirmed(Mark mark, SxGroup const& group, int usual, int maxFrameNum)
{
    Mark const next = mark + 1;
    if (next == group.end || next->frameNum < 0)
        return mark->frameNum < usual;
    return next->frameNum == (mark->frameNum + 1) % maxFrameNum;
}

/// What the numbers within a group say.
SxVanishedPictures fx_ByNumbers(SxGroup const& group, int usual, int maxFrameNum)
{
    SxVanishedPictures found{0, 0, true, 0};
    int expected = group.begin->isKey ? 0 : std::max(group.begin->frameNum, 0);
    for (Mark mark = group.begin; mark != group.end; ++mark) {
        int const frameNum = mark->frameNum;
        bool const isJump =
            frameNum >= 0 && frameNum != expected && fx_IsConfirmed(mark, group, usual, maxFrameNum);
        if (isJump) {
            // One that is too small belongs to a group whose beginning is gone.
            int const missing = frameNum > expected ? frameNum - expected : frameNum;
            if (found.pictures == 0)
                found.beforeFrame = mark->frame;
            found.pictures += missing;
        }
        expected = ((isJump ? frameNum : expected) + 1) % maxFrameNum;
    }
    return found;
}

/// What units say that belong nowhere.
SxVanishedPictures fx_ByUnits(SxGroup const& group)
{
    SxVanishedPictures found{0, 0, true, 0};
    for (Mark mark = group.begin; mark != group.end; ++mark) {
        if (found.pictures == 0)
            found.beforeFrame = mark->frame + 1;
        found.pictures += mark->extraUnits;
    }
    return found;
}

/// The middle one of the groups' sizes, where none is the usual one.
int fx_MiddleSize(QVector<SxGroup> const& groups)
{
    QVector<int> sizes;
    for (int i = 0; i + 1 < groups.size(); ++i)
        sizes.append(groups[i].size());
    std::sort(sizes.begin(), sizes.end());
    return sizes.value(sizes.size() / 2);
}

/// Takes in the \p keys that vanished behind the group's own: each had a group, of which nothing or little is
/// left.
SxVanishedPictures fx_WithKeys(SxVanishedPictures found, SxGroup const& group, int keys, int spacing)
{
    // Without a finding within it the group is one key's, perhaps longer than others.
    int const left = found.pictures == 0 ? std::min(group.size(), spacing) : group.size();
    int const pictures = std::max(keys, (keys + 1) * spacing - left);
    if (keys == 0 || pictures <= found.pictures)
        return found;
    if (found.pictures == 0)
        found.beforeFrame = group.end->frame;
    found.pictures = pictures;
    found.keyFrames = keys;
    return found;
}

} // namespace

QVector<SxVanishedPictures> fx_VanishedPictures(QVector<SxFrameMark> const& marks, int maxFrameNum)
{
    QVector<SxGroup> const groups = fx_Groups(marks);
    int const usual = fx_UsualSize(groups);
    int const spacing = usual > 0 ? usual : fx_MiddleSize(groups);
    QMap<int, int> const vanishedKeys = fx_VanishedKeys(marks);
    QVector<SxVanishedPictures> certain, all;
    int shortGroups = 0;
    for (SxGroup const& group : groups) {
        SxVanishedPictures const byNumbers = fx_ByNumbers(group, usual, maxFrameNum);
        SxVanishedPictures const byUnits = fx_ByUnits(group);
        SxVanishedPictures const within = byNumbers.pictures >= byUnits.pictures ? byNumbers : byUnits;
        int const keys = group.end == marks.end() ? 0 : vanishedKeys.value(group.end->frame);
        SxVanishedPictures const found = fx_WithKeys(within, group, keys, spacing);
        if (found.pictures > 0) {
            certain.append(found);
            all.append(found);
        }
        int const missing = usual - group.size() - found.pictures;
        if (missing > 0 && group.end != marks.end()) {
            ++shortGroups;
            all.append({group.end->frame, missing, false, 0});
        }
    }
    // Where many groups are short the encoder makes them so.
    return shortGroups * 10 > groups.size() && shortGroups > 1 ? certain : all;
}

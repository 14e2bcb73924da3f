#include "VanishedKeys.h"

#include <algorithm>

namespace {

constexpr int kIds = 65536; // idr_pic_id (ITU-T H.264, 7.4.3)

struct SxKey
{
    int frame = 0;
    int index = 0; ///< among all keys, also those whose id is not known
    int id = 0;
};

QVector<SxKey> fx_KnownKeys(QVector<SxFrameMark> const& marks)
{
    QVector<SxKey> keys;
    int index = 0;
    for (SxFrameMark const& mark : marks) {
        if (!mark.isKey)
            continue;
        if (mark.idrPicId >= 0 && mark.idrPicId < kIds)
            keys.append({mark.frame, index, mark.idrPicId});
        ++index;
    }
    return keys;
}

/// Ids between two keys that no key here has; less than 0: the second does not come behind the first.
int fx_MissingBetween(SxKey const& first, SxKey const& second)
{
    int const step = (second.id - first.id + kIds) % kIds;
    return step < kIds / 2 ? step - (second.index - first.index) : -1;
}

/// Two recordings one behind the other: the second begins its count anew.
bool fx_IsBeginning(SxKey const& key) { return key.id <= 1; }

/// Whether the encoder counts its keys: most often an id is the one before and one.
bool fx_AreCounted(QVector<SxKey> const& keys)
{
    int counted = 0, ahead = 0, back = 0;
    for (int i = 1; i < keys.size(); ++i) {
        int const missing = fx_MissingBetween(keys[i - 1], keys[i]);
        ++(missing == 0 ? counted : missing > 0 ? ahead : back);
    }
    return counted > 0 && counted >= ahead && counted > 2 * back; // ids that alternate go back as often
}

/// Whether an id that was not expected can be believed: damage changes those of single keys.
bool fx_IsConfirmed(QVector<SxKey> const& keys, int at, bool isAhead)
{
    if (at + 1 == keys.size())
        return isAhead;
    int const missing = fx_MissingBetween(keys[at], keys[at + 1]);
    return isAhead ? missing >= 0 || fx_IsBeginning(keys[at + 1]) : missing == 0;
}

} // namespace

QMap<int, int> fx_VanishedKeys(QVector<SxFrameMark> const& marks)
{
    QVector<SxKey> const keys = fx_KnownKeys(marks);
    QMap<int, int> vanished;
    if (!fx_AreCounted(keys))
        return vanished;
    SxKey last = keys.first();
    for (int i = 1; i < keys.size(); ++i) {
        int const missing =
            fx_IsBeginning(keys[i]) && keys[i].id < last.id ? -1 : fx_MissingBetween(last, keys[i]);
        if (missing != 0 && !fx_IsConfirmed(keys, i, missing > 0))
            continue;
        if (missing > 0)
            vanished.insert(keys[i].frame, missing);
        last = keys[i];
    }
    return vanished;
}

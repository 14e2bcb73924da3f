#include "SkippedPictures.h"

#include <algorithm>

bool CxSkippedPictures::isSkipped(qint64 end)
{
    if (end <= bytes())
        return true;
    m_ends.push_back(end);
    return false;
}

qint64 CxSkippedPictures::bytes() const { return m_ends.empty() ? 0 : m_ends.back(); }

int CxSkippedPictures::codedWithin(qint64 bytes) const
{
    return static_cast<int>(std::upper_bound(m_ends.begin(), m_ends.end(), bytes) - m_ends.begin());
}

qint64 CxSkippedPictures::endWithin(qint64 bytes) const
{
    int const coded = codedWithin(bytes);
    return coded == 0 ? 0 : m_ends[static_cast<size_t>(coded) - 1];
}

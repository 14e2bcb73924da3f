#include "CameraGaps.h"

#include <algorithm>
#include <cmath>

static constexpr size_t kStepsKept = 15;
static constexpr size_t kStepsToJudge = 5;
static constexpr double kLeastGap = 1.75; // of a usual step: a picture may be late

int CxCameraGaps::before(quint64 time)
{
    quint64 const step = time > m_last ? time - m_last : 0;
    bool const isFirst = m_isFirst;
    m_isFirst = false;
    m_last = time;
    if (isFirst)
        return 0;
    int missing = 0;
    if (m_steps.size() >= kStepsToJudge) {
        std::vector<quint64> sorted = m_steps;
        std::sort(sorted.begin(), sorted.end());
        double const usual = static_cast<double>(std::max<quint64>(sorted[sorted.size() / 2], 1));
        double const ratio = static_cast<double>(step) / usual;
        if (ratio >= kLeastGap)
            missing = static_cast<int>(std::min(std::round(ratio), 1e6)) - 1;
    }
    if (m_steps.size() == kStepsKept)
        m_steps.erase(m_steps.begin());
    m_steps.push_back(step);
    return missing;
}

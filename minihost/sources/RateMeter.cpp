#include "RateMeter.h"

#include <algorithm>
#include <cmath>

static constexpr double kTolerance = 0.02; // of the whole time: a few lost pictures are no other rate
static constexpr double kMostUneven = 0.1; // of the steps between pictures, where the rate is steady
static constexpr int kPrecision = 1000;    // of an average, as its denominator
static constexpr double kHighest = 1e6;    // which an int of such parts holds

void CxRateMeter::beginInput(SxPictureRate const& nominal, bool hasClock)
{
    if (m_isFirstInput)
        m_nominal = nominal;
    else if (std::abs(nominal.perSecond() - m_nominal.perSecond()) > 0.001)
        m_isMixed = true;
    m_hasClock = hasClock && (m_isFirstInput || m_hasClock);
    m_isFirstInput = false;
}

void CxRateMeter::add(quint64 time)
{
    double const step = static_cast<double>(time) - static_cast<double>(m_last);
    double const nominal = 1e6 / std::max(m_nominal.perSecond(), 1e-6);
    if (m_pictures > 0 && std::abs(step - nominal) > nominal / 2)
        ++m_uneven;
    ++m_pictures;
    m_last = time;
}

SxPictureRate CxRateMeter::rate() const
{
    bool const isNominal = m_nominal.isKnown() && !m_isMixed;
    if (!m_hasClock || m_pictures < 2 || m_last == 0)
        return isNominal ? m_nominal : SxPictureRate();
    double const seconds = static_cast<double>(m_last) / 1e6;
    double const steps = static_cast<double>(m_pictures - 1);
    if (isNominal) {
        double const step = 1 / m_nominal.perSecond();
        double const expected = steps * step;
        if (std::abs(seconds - expected) <= std::max(step, kTolerance * expected)) {
            SxPictureRate rate = m_nominal;
            rate.isAverage = static_cast<double>(m_uneven) > kMostUneven * steps; // MP4 names just that
            return rate;
        }
    }
    double const perSecond = std::min(steps / seconds, kHighest);
    SxPictureRate const average{static_cast<int>(std::lround(perSecond * kPrecision)), kPrecision, true};
    return fx_IsSane(average) ? average : SxPictureRate();
}

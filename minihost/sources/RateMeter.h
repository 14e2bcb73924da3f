#pragma once

#include <QtGlobal>

#include "PictureRate.h"

/// Finds out at which rate pictures came: what their inputs say, unless the pictures' own times contradict.
class CxRateMeter
{
public:
    /// The next input begins. \param nominal  what it says; may be unknown.
    /// \param hasClock  its pictures have times of their own.
    void beginInput(SxPictureRate const& nominal, bool hasClock);

    /// A picture came. \param time  microseconds from the first.
    void add(quint64 time);

    /// Of all pictures so far: steady as the inputs say it, or the average; unknown
    /// where nothing tells.
    SxPictureRate rate() const;

private:
    SxPictureRate m_nominal;
    bool m_isMixed = false;  ///< inputs have different rates
    bool m_hasClock = false; ///< all inputs have
    bool m_isFirstInput = true;
    qint64 m_pictures = 0;
    qint64 m_uneven = 0; ///< steps to the next picture that differ by more than half a step from what is said
    quint64 m_last = 0;  ///< microseconds
};

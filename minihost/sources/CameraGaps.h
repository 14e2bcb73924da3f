#pragma once

#include <QtGlobal>
#include <vector>

/// Finds by the time stamps of a camera's pictures how many it left out.
class CxCameraGaps
{
public:
    /// The next picture came. \param time  microseconds. \return pictures that are missing before it.
    ///
    /// Judged by the steps of the last pictures, most of which must agree: a camera that slows down in the
    /// dark leaves nothing out.
    int before(quint64 time);

private:
    std::vector<quint64> m_steps; ///< the last ones, oldest first
    quint64 m_last = 0;
    bool m_isFirst = true;
};

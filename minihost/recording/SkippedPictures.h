#pragma once

#include <QtGlobal>
#include <vector>

/// Finds the pictures that the encoder skips. To hold its bit rate it leaves pictures out and calls that a
/// success; only the bytes tell: a picture that added none to the stream was skipped.
class CxSkippedPictures
{
public:
    /// \param end  bytes in the stream behind the picture that was just saved. \return whether it was skipped
    bool isSkipped(qint64 end);

    qint64 bytes() const; ///< of all coded pictures

    int codedWithin(qint64 bytes) const;  ///< coded pictures that a stream cut to \p bytes still holds whole
    qint64 endWithin(qint64 bytes) const; ///< where the last of these ends; 0 without any

private:
    std::vector<qint64> m_ends; ///< of each coded picture
};

#pragma once

#include <QByteArray>
#include <QHash>
#include <QMap>
#include <QVector>

#include "CodedUnits.h"
#include "StreamDescription.h"

/// The parameter sets of a recording, described, as a container wants them: once, before the pictures.
///
/// OpenH264 writes a pair of sets with each key frame and counts their ids up, the sequence sets' to 31, the
/// picture sets' to 56. They differ in nothing else. One sequence set therefore serves all, once the picture
/// sets name it; slices name the latter alone and so stay as they are.
class CxParameterSets
{
public:
    explicit CxParameterSets(SxStreamDescription const& description)
        : m_description(description)
    {}

    /// Takes those of a key frame, of which the beginning is enough. \return false when they make no sense.
    bool take(QByteArray const& frame);

    /// False when they contradict each other, as where a recording was put together of several: then each
    /// stays with its key frame.
    bool isCommon() const { return m_isCommon; }

    /// With start codes: all of them, or the first key frame's when they are not common. Empty when no key
    /// frame has both a sequence set and a picture set that names it.
    QByteArray beforeStream() const;

    /// The frame with its sets described, and left out when \p withSets is false. What is not a set stays
    /// byte for byte.
    QByteArray described(QByteArray const& frame, bool withSets);

private:
    std::optional<QByteArray> describe(QByteArray const& sps);
    bool takePps(QByteArray const& pps, quint32 spsId);

    SxStreamDescription m_description;
    QHash<QByteArray, std::optional<QByteArray>> m_described; ///< by the set as it came
    QByteArray m_first;              ///< the first key frame's sets, with start codes
    QByteArray m_sps;                ///< with id 0
    QMap<quint32, QByteArray> m_pps; ///< by their ids, naming that one
    bool m_isCommon = true;
};

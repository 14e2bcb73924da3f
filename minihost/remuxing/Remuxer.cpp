#include "Remuxer.h"

#include <QFileInfo>
#include <algorithm>
#include <memory>

#include "ContainerWriter.h"
#include "ParameterSets.h"
#include "RecordingReader.h"

namespace {

/// One recording on its way from its first frame to the whole output.
class CxRemuxing
{
public:
    CxRemuxing(CxRecordingReader& recording, SxRemuxRequest const& request, SxRemuxSummary& summary)
        : m_recording(recording)
        , m_request(request)
        , m_summary(summary)
        , m_sets(request.description)
        , m_raw(request.output)
    {}

    void run(std::function<void(SxRemuxSummary const&)> const& progress);

private:
    bool chooseFrames();
    bool goBackToKeyFrame();
    int frontEnd() const; ///< the first frame behind the one coded anew, or 0
    bool isKey(int frame) const;
    bool isEndCutOff();
    bool gatherSets();
    bool read(int frame, QByteArray& bytes);
    bool begin();
    bool isSound(int frame, QVector<SxCodedUnit> const& units);
    bool add(int frame);
    bool finish();
    bool fail(QString const& sentence, RemuxFailure failure);
    bool isStopped() const { return m_request.stop && m_request.stop->load(); }
    bool isWritten(bool result, QString const& error);

    CxRecordingReader& m_recording;
    SxRemuxRequest const& m_request;
    SxRemuxSummary& m_summary;
    CxParameterSets m_sets;
    std::unique_ptr<CxContainerWriter> m_container; ///< null for a raw stream
    CxOutputFile m_raw;
    std::optional<SxH264Sps> m_sps; ///< the first
    QVector<int> m_withoutSets;     ///< key frames whose sets make no sense
    quint32 m_lastFrameNum = 0;     ///< frame_num of the frame before
};

bool CxRemuxing::fail(QString const& sentence, RemuxFailure failure)
{
    m_summary.error = sentence;
    m_summary.failure = failure;
    return false;
}

/// What a writer returned; its silence is an interruption.
bool CxRemuxing::isWritten(bool result, QString const& error)
{
    if (result)
        return true;
    return error.isEmpty()
               ? fail(m_request.output +
                          QStringLiteral(": interrupted after %1 of %2 pictures; nothing was written.")
                              .arg(m_summary.pictures)
                              .arg(m_summary.last - m_summary.first + 1),
                      RemuxFailure::Interrupted)
               : fail(error, RemuxFailure::Output);
}

int CxRemuxing::frontEnd() const
{
    return m_request.front.size() == 0 ? 0 : m_request.first + m_request.front.size();
}

bool CxRemuxing::isKey(int frame) const
{
    return frame < frontEnd() ? m_request.front.keys.contains(frame - m_request.first)
                              : m_recording.frames()[static_cast<size_t>(frame)].isKey;
}

/// A recording that was killed mostly ends within a picture.
bool CxRemuxing::isEndCutOff()
{
    int const last = m_recording.frameCount() - 1;
    if (m_summary.last != last || last < frontEnd())
        return false;
    // Behind another that does not decode it would fail even if it is whole.
    QString cause;
    bool const isAlone = isKey(last) || m_recording.picture(last - 1, cause);
    return isAlone && !m_recording.picture(last, cause);
}

/// Where decoding begins and what there is to decode.
bool CxRemuxing::chooseFrames()
{
    m_summary.first = m_request.first;
    m_summary.last = m_request.last;
    if (m_request.front.size() == 0 && !goBackToKeyFrame())
        return false;
    m_summary.isEndCutOff = isEndCutOff();
    if (m_summary.isEndCutOff)
        --m_summary.last;
    if (m_summary.last < m_summary.first)
        return fail(QStringLiteral("%1: its only picture is cut off.").arg(m_recording.fileName()),
                    RemuxFailure::Input);
    return true;
}

/// Decoding begins at a key frame: at that before the first frame, or else the first there is.
bool CxRemuxing::goBackToKeyFrame()
{
    QList<int> const& keys = m_recording.keyFrames();
    auto const behind = std::upper_bound(keys.begin(), keys.end(), m_request.first);
    if (keys.isEmpty() || (behind == keys.begin() && keys.first() > m_request.last))
        return fail(QStringLiteral("%1: there is no key frame to begin with; 'minihost verify' says more.")
                        .arg(m_recording.fileName()),
                    RemuxFailure::Input);
    m_summary.first = behind == keys.begin() ? keys.first() : *(behind - 1);
    m_summary.leftOutAtFront = behind == keys.begin() ? keys.first() - m_request.first : 0;
    return true;
}

bool CxRemuxing::read(int frame, QByteArray& bytes)
{
    bytes =
        frame < frontEnd() ? m_request.front.frames[frame - m_request.first] : m_recording.codedFrame(frame);
    if (!bytes.isEmpty())
        return true;
    return fail(m_recording.fileName() + QStringLiteral(": frame %1 cannot be read.").arg(frame),
                RemuxFailure::Input);
}

bool CxRemuxing::gatherSets()
{
    for (int key = m_summary.first; key <= m_summary.last; ++key) {
        if (!isKey(key))
            continue;
        QByteArray bytes;
        if (isStopped())
            return isWritten(false, QString());
        if (!read(key, bytes))
            return false;
        if (!m_sps)
            m_sps = fx_SpsOf(bytes);
        if (!m_sets.take(bytes))
            m_withoutSets.append(key);
    }
    m_summary.hasSetsInStream = !m_sets.isCommon();
    if (m_sps)
        m_summary.size = QSize(m_sps->width, m_sps->height);
    if (m_sets.beforeStream().isEmpty() || !m_sps)
        return fail(QStringLiteral("%1: its parameter sets are damaged; 'minihost verify' says more.")
                        .arg(m_recording.fileName()),
                    RemuxFailure::Input);
    return true;
}

bool CxRemuxing::begin()
{
    std::optional<ContainerKind> const kind = fx_ContainerKindOf(m_request.output);
    if (!kind)
        return true;
    m_container = std::make_unique<CxContainerWriter>(m_request.output, m_request.stop);
    SxTrack const track{*kind, m_summary.size, m_sets.beforeStream(), m_summary.hasSetsInStream,
                        m_request.description};
    QString error;
    bool const result = m_container->begin(track, error);
    return isWritten(result, error);
}

/// Whether the frame is what OpenH264 writes behind the one before: one slice, counted up since the key
/// frame. What the slice shows is not looked at.
bool CxRemuxing::isSound(int frame, QVector<SxCodedUnit> const& units)
{
    int slices = 0;
    bool isSlice = false;
    for (SxCodedUnit const& unit : units) {
        if (!unit.isSlice())
            continue;
        ++slices;
        auto const slice = fx_SliceOf(unit, *m_sps);
        quint32 const expected = isKey(frame) ? 0 : (m_lastFrameNum + 1) % (1U << m_sps->frameNumBits);
        isSlice = slice && slice->first_mb_in_slice == 0 && slice->frame_num == expected &&
                  slice->idr_pic_id.has_value() == isKey(frame);
        m_lastFrameNum = slice ? slice->frame_num : expected;
    }
    return slices == 1 && isSlice && !m_withoutSets.contains(frame);
}

bool CxRemuxing::add(int frame)
{
    QByteArray bytes;
    if (!read(frame, bytes))
        return false;
    QVector<SxCodedUnit> const units = fx_UnitsOf(bytes);
    bool const hasIdr = std::any_of(units.begin(), units.end(), [](SxCodedUnit const& unit) {
        return unit.type() == SxCodedUnit::kIdrSlice;
    });
    if (!isSound(frame, units))
        m_summary.damaged.append(frame);
    QByteArray const picture = m_sets.described(bytes, !m_container || m_summary.hasSetsInStream);
    QString error;
    bool const result = m_container ? m_container->add(picture, hasIdr, error) : m_raw.write(picture, error);
    if (!isWritten(result, error))
        return false;
    ++m_summary.pictures;
    m_summary.keyFrames += hasIdr ? 1 : 0;
    m_summary.bytes += picture.size();
    return true;
}

bool CxRemuxing::finish()
{
    QString error;
    bool const result = m_container ? m_container->finish(error) : m_raw.finish(error);
    if (!isWritten(result, error))
        return false;
    m_summary.hasRotation = m_container ? m_container->hasRotation() : m_request.description.rotation == 0;
    m_summary.bytes = QFileInfo(m_request.output).size();
    return true;
}

void CxRemuxing::run(std::function<void(SxRemuxSummary const&)> const& progress)
{
    if (!chooseFrames() || !gatherSets() || !begin())
        return;
    for (int frame = m_summary.first; frame <= m_summary.last; ++frame) {
        if (isStopped()) {
            isWritten(false, QString());
            return;
        }
        if (!add(frame))
            return;
        if (progress)
            progress(m_summary);
    }
    finish();
}

} // namespace

SxRemuxSummary fx_Remux(CxRecordingReader& recording, SxRemuxRequest const& request,
                        std::function<void(SxRemuxSummary const&)> const& progress)
{
    SxRemuxSummary summary;
    CxRemuxing(recording, request, summary).run(progress);
    return summary;
}

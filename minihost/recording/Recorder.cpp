#include "Recorder.h"

#include <QElapsedTimer>
#include <algorithm>
#include <new>

#include "IxPictureSource.h"
#include "PictureFormat.h"
#include "RecordingWriter.h"
#include "ShortMemory.h"

namespace {

constexpr quint64 kMemoryToRead = 64 * 1024 * 1024; // bytes with which that never fails for want of them

/// One recording from the first picture to the closed file.
class CxRecording
{
public:
    CxRecording(IxPictureSource& source, SxRecordRequest const& request, SxRecordSummary& summary)
        : m_source(source)
        , m_request(request)
        , m_summary(summary)
        , m_writer(request, summary)
    {}

    void run(RecordProgress const& progress);

private:
    void recordAll(RecordProgress const& progress, QElapsedTimer const& timer);
    bool nextPicture();
    bool isMemoryToBlame();
    void noteMissing();
    bool mayContinue() const;
    int expectedPictures() const;
    void noteEnd();

    IxPictureSource& m_source;
    SxRecordRequest const& m_request;
    SxRecordSummary& m_summary;
    CxRecordingWriter m_writer;
    CxOwnedPicture m_picture;
};

bool CxRecording::mayContinue() const
{
    return m_request.maxPictures == 0 || m_summary.given < m_request.maxPictures;
}

int CxRecording::expectedPictures() const
{
    int const expected = m_source.expectedPictures();
    int const limit = m_request.maxPictures;
    return limit > 0 && (expected < 0 || limit < expected) ? limit : expected;
}

/// What the end of the source says, when a stop flag may have been what ended it.
void CxRecording::noteEnd()
{
    m_summary.wasStopped = m_request.stop && m_request.stop->load();
    bool const isLimited = m_source.hasEnd() || m_request.maxPictures > 0;
    bool const hasAll = m_summary.expected > 0 && m_summary.given >= m_summary.expected;
    m_summary.isCutShort = m_summary.wasStopped && isLimited && !hasAll;
}

/// Decoders take missing memory for damage in what they read.
bool CxRecording::isMemoryToBlame()
{
    if (!m_source.isDamaged() || !fx_IsMemoryShort(kMemoryToRead))
        return false;
    m_source.takeWarnings(); // they blame the source
    fx_Fail(m_summary, QStringLiteral("There is not enough memory to read pictures."));
    return true;
}

/// Before the picture that came last, or the end.
void CxRecording::noteMissing()
{
    SxMissingPictures const missing = m_source.missing();
    for (int i = 0; i < missing.lost; ++i)
        m_summary.lost.append(m_summary.given++);
    m_summary.missedByCamera += missing.byCamera;
}

/// Fetches the next picture; false at the end, when stopped and on errors.
bool CxRecording::nextPicture()
{
    if (m_request.stop && m_request.stop->load() && !m_source.isLive()) {
        noteEnd();
        return false;
    }
    IxPictureSource::Result const result = m_source.next(m_picture.get());
    if (isMemoryToBlame())
        return false;
    noteMissing();
    switch (result) {
    case IxPictureSource::Result::Picture:
        break;
    case IxPictureSource::Result::End:
        noteEnd();
        return false;
    case IxPictureSource::Result::Error:
        if (fx_IsMemoryShort(kMemoryToRead))
            fx_Fail(m_summary, QStringLiteral("There is not enough memory to read pictures."));
        fx_Fail(m_summary, m_source.errorText(), RecordFailure::Source);
        return false;
    }

    m_summary.expected = expectedPictures();
    SxPicBuf const& picture = m_picture.get();
    if (m_summary.given > 0 &&
        (picture.width != m_summary.input.width || picture.height != m_summary.input.height)) {
        fx_Fail(m_summary,
                QStringLiteral(
                    "Picture %1 has %2 x %3 pixels, those before it %4 x %5: a recording has one size.")
                    .arg(m_summary.given)
                    .arg(picture.width)
                    .arg(picture.height)
                    .arg(m_summary.input.width)
                    .arg(m_summary.input.height),
                RecordFailure::Source);
        return false;
    }
    if (fx_IsWordFormat(picture) && !m_source.knowsSignificantBits())
        m_summary.highestSample =
            std::max(m_summary.highestSample, static_cast<quint32>(fx_HighestSample(picture)));
    return true;
}

/// From the first picture at hand to the last.
void CxRecording::recordAll(RecordProgress const& progress, QElapsedTimer const& timer)
{
    try {
        bool goesOn = m_writer.begin(m_picture.get(), m_source.expectedPictures());
        bool const isStarted = goesOn;
        if (!isStarted && m_summary.error.isEmpty())
            noteEnd();
        while (goesOn) {
            goesOn = m_writer.save(m_picture.get());
            m_summary.elapsedNs = timer.nsecsElapsed();
            if (goesOn && progress)
                progress(m_summary);
            goesOn = goesOn && mayContinue() && nextPicture();
        }
        if (isStarted && m_summary.coded == 0 && !m_writer.isRefused())
            fx_Fail(m_summary, QStringLiteral("Nothing was recorded: the encoder left out every picture."));
    } catch (std::bad_alloc const&) {
        fx_Fail(m_summary, QStringLiteral("There is not enough memory for pictures of %1 x %2.")
                               .arg(m_picture.get().width)
                               .arg(m_picture.get().height));
    }
}

void CxRecording::run(RecordProgress const& progress)
{
    QElapsedTimer timer;
    timer.start();
    if (!nextPicture()) {
        if (m_summary.error.isEmpty() && !m_summary.wasStopped)
            fx_Fail(m_summary, QStringLiteral("There is no picture to record."), RecordFailure::Source);
        return;
    }
    recordAll(progress, timer);
    m_writer.finish();
    m_summary.elapsedNs = timer.nsecsElapsed();
}

} // namespace

SxRecordSummary fx_Record(IxPictureSource& source, SxRecordRequest const& request,
                          RecordProgress const& progress)
{
    SxRecordSummary summary;
    CxRecording(source, request, summary).run(progress);
    summary.isSourceDamaged = source.isDamaged();
    return summary;
}

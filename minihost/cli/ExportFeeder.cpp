#include "ExportFeeder.h"

#include <algorithm>

#include "Console.h"
#include "ExportArguments.h"
#include "Interrupt.h"
#include "PictureRanges.h"
#include "PicturesAhead.h"
#include "ProgressLine.h"
#include "Readable.h"

static constexpr int kMostRanges = 8; // of frame numbers in a sentence

static ExportOutcome fx_OutcomeOf(IxExportSink::Result result)
{
    switch (result) {
    case IxExportSink::Result::Taken:
        return ExportOutcome::Done;
    case IxExportSink::Result::ReaderGone:
        return ExportOutcome::ReaderGone;
    case IxExportSink::Result::Error:
        break;
    }
    return ExportOutcome::OutputFailed;
}

CxExportFeeder::CxExportFeeder(CxRecordingReader& recording, SxExportArguments const& arguments,
                               IxExportSink& sink)
    : m_recording(recording)
    , m_arguments(arguments)
    , m_sink(sink)
    , m_make(sink.newMaker())
{}

CxExportFeeder::~CxExportFeeder() = default;

ExportOutcome CxExportFeeder::write(int frame, SxMadePicture const& made, QSize size, SxPicBuf const* picture)
{
    if (m_arguments.request.kind == SxExportRequest::Kind::Hashes)
        Console::transient(QString()); // lines, which share a terminal with the progress line
    return fx_OutcomeOf(m_sink.take(frame, made, size, picture, m_error));
}

ExportOutcome CxExportFeeder::decodeOne(int frame)
{
    QString cause;
    std::unique_ptr<CxImageData> next = m_recording.picture(frame, cause);
    if (!next)
        fx_RuleOutShortMemory();
    if (!next && m_arguments.keepsGoing) {
        if (m_leftOut.isEmpty())
            m_firstCause = QStringLiteral("frame %1: %2").arg(frame).arg(cause);
        m_leftOut.append(frame);
        return ExportOutcome::Done;
    }
    if (!next) {
        m_error = m_recording.fileName() +
                  QStringLiteral(": frame %1 cannot be decoded: %2.").arg(frame).arg(cause);
        return ExportOutcome::BadInput;
    }
    m_picture = std::move(next); // the one before lived until now: its memory is reused
    SxPicBuf const& picture = *m_picture->picBuf();
    QSize const size(static_cast<int>(picture.width), static_cast<int>(picture.height));
    return write(frame, m_make(picture), size, &picture);
}

/// Takes the next picture from the threads. Where they have none this goes on alone: how a frame fails may
/// depend on all before it, as on parameter sets of an earlier group, so those are decoded once more.
ExportOutcome CxExportFeeder::feedAhead(QVector<int> const& frames, int place)
{
    std::atomic<bool> const& stop = fx_CatchInterrupts();
    CxPicturesAhead::SxNext next = m_ahead->next(stop);
    if (next.isThere) {
        m_picture = std::move(next.picture);
        return write(frames[place], next.made, next.size, m_picture ? m_picture->picBuf() : nullptr);
    }
    m_ahead.reset();
    QString cause; // is told already
    for (int again = 0; again < place && !stop.load(); ++again)
        m_recording.picture(frames[again], cause);
    return stop.load() ? ExportOutcome::Interrupted : decodeOne(frames[place]);
}

ExportOutcome CxExportFeeder::feedOne(QVector<int> const& frames, int place)
{
    return m_ahead ? feedAhead(frames, place) : decodeOne(frames[place]);
}

void CxExportFeeder::explainStop(int done, int wanted)
{
    SxExportRequest const& request = m_arguments.request;
    bool const isOneFile =
        request.kind == SxExportRequest::Kind::Sheet ||
        (request.kind == SxExportRequest::Kind::Stream && request.output != QLatin1String("-"));
    m_error =
        m_recording.fileName() + QStringLiteral(": stopped after %1 of %2 pictures.").arg(done).arg(wanted);
    if (isOneFile)
        m_error += QStringLiteral(" Nothing was written.");
}

ExportOutcome CxExportFeeder::feed(QVector<int> const& frames)
{
    std::atomic<bool> const& stop = fx_CatchInterrupts();
    CxProgressLine line(static_cast<int>(frames.size()));
    if (m_arguments.jobs > 1 && CxPicturesAhead::groupsIn(frames, m_recording.keyFrames()) > 1)
        m_ahead = std::make_unique<CxPicturesAhead>(m_recording, frames, m_arguments.jobs,
                                                    [this] { return m_sink.newMaker(); });
    for (int place = 0; place < frames.size(); ++place) {
        ExportOutcome const outcome = stop.load() ? ExportOutcome::Interrupted : feedOne(frames, place);
        if (outcome == ExportOutcome::Interrupted)
            explainStop(place, static_cast<int>(frames.size()));
        if (outcome != ExportOutcome::Done)
            return outcome;
        line.update(place + 1, -1, QString());
    }
    bool const isAnyWritten = m_leftOut.size() < frames.size();
    std::sort(m_leftOut.begin(), m_leftOut.end());
    m_leftOut.erase(std::unique(m_leftOut.begin(), m_leftOut.end()), m_leftOut.end());
    if (isAnyWritten)
        return fx_OutcomeOf(m_sink.finish(m_error));
    m_error =
        m_recording.fileName() +
        QStringLiteral(": none of the frames can be decoded, nothing was written (%1).").arg(m_firstCause);
    return ExportOutcome::BadInput;
}

QString CxExportFeeder::leftOutText() const
{
    return QStringLiteral("%1: %2 cannot be decoded and left out: %3 (%4).")
        .arg(m_recording.fileName(), fx_Count(m_leftOut.size(), "frame"),
             fx_ReadableRanges(m_leftOut, kMostRanges), m_firstCause);
}

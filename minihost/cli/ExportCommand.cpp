#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "Commands.h"
#include "Console.h"
#include "ExitCode.h"
#include "ExportArguments.h"
#include "ExportSink.h"
#include "Interrupt.h"
#include "NumberedFileName.h"
#include "PictureRanges.h"
#include "ProgressLine.h"
#include "Readable.h"

namespace {

constexpr int kMostRanges = 8; // of frame numbers in a sentence

enum class Outcome { Done, ReaderGone, Interrupted, BadInput, OutputFailed };

Outcome fx_OutcomeOf(IxExportSink::Result result)
{
    switch (result) {
    case IxExportSink::Result::Taken:
        return Outcome::Done;
    case IxExportSink::Result::ReaderGone:
        return Outcome::ReaderGone;
    case IxExportSink::Result::Error:
        break;
    }
    return Outcome::OutputFailed;
}

/// Decodes frames in the order asked and gives each to the sink.
class CxFeeder
{
public:
    CxFeeder(CxRecordingReader& recording, SxExportArguments const& arguments, IxExportSink& sink)
        : m_recording(recording)
        , m_request(arguments.request)
        , m_keepsGoing(arguments.keepsGoing)
        , m_sink(sink)
    {}

    Outcome feed(QVector<int> const& frames);

    QString const& error() const { return m_error; }          ///< one sentence, unless all went well
    QVector<int> const& leftOut() const { return m_leftOut; } ///< frames that cannot be decoded, ascending
    QString leftOutText() const;                              ///< one sentence about them

private:
    Outcome feedOne(int frame);
    void explainStop(int done, int wanted);

    CxRecordingReader& m_recording;
    SxExportRequest const& m_request;
    bool m_keepsGoing;
    IxExportSink& m_sink;
    std::unique_ptr<CxImageData> m_picture;
    QVector<int> m_leftOut;
    QString m_firstCause; ///< half a sentence, of the first frame left out
    QString m_error;
};

Outcome CxFeeder::feedOne(int frame)
{
    QString cause;
    std::unique_ptr<CxImageData> next = m_recording.picture(frame, cause);
    if (!next)
        fx_RuleOutShortMemory();
    if (!next && m_keepsGoing) {
        if (m_leftOut.isEmpty())
            m_firstCause = QStringLiteral("frame %1: %2").arg(frame).arg(cause);
        m_leftOut.append(frame);
        return Outcome::Done;
    }
    if (!next) {
        m_error = m_recording.fileName() +
                  QStringLiteral(": frame %1 cannot be decoded: %2.").arg(frame).arg(cause);
        return Outcome::BadInput;
    }
    m_picture = std::move(next); // the one before lived until now: its memory is reused
    if (m_request.kind == SxExportRequest::Kind::Hashes)
        Console::transient(QString()); // lines, which share a terminal with the progress line
    return fx_OutcomeOf(m_sink.take(frame, *m_picture->picBuf(), m_error));
}

void CxFeeder::explainStop(int done, int wanted)
{
    bool const isOneFile =
        m_request.kind == SxExportRequest::Kind::Sheet ||
        (m_request.kind == SxExportRequest::Kind::Stream && m_request.output != QLatin1String("-"));
    m_error =
        m_recording.fileName() + QStringLiteral(": stopped after %1 of %2 pictures.").arg(done).arg(wanted);
    if (isOneFile)
        m_error += QStringLiteral(" Nothing was written.");
}

Outcome CxFeeder::feed(QVector<int> const& frames)
{
    std::atomic<bool> const& stop = fx_CatchInterrupts();
    CxProgressLine line(static_cast<int>(frames.size()));
    int done = 0;
    for (int const frame : frames) {
        if (stop.load()) {
            explainStop(done, static_cast<int>(frames.size()));
            return Outcome::Interrupted;
        }
        Outcome const outcome = feedOne(frame);
        if (outcome != Outcome::Done)
            return outcome;
        line.update(++done, -1, QString());
    }
    bool const isAnyWritten = m_leftOut.size() < frames.size();
    std::sort(m_leftOut.begin(), m_leftOut.end());
    m_leftOut.erase(std::unique(m_leftOut.begin(), m_leftOut.end()), m_leftOut.end());
    if (isAnyWritten)
        return fx_OutcomeOf(m_sink.finish(m_error));
    m_error =
        m_recording.fileName() +
        QStringLiteral(": none of the frames can be decoded, nothing was written (%1).").arg(m_firstCause);
    return Outcome::BadInput;
}

QString CxFeeder::leftOutText() const
{
    return QStringLiteral("%1: %2 cannot be decoded and left out: %3 (%4).")
        .arg(m_recording.fileName(), fx_Count(m_leftOut.size(), "frame"),
             fx_ReadableRanges(m_leftOut, kMostRanges), m_firstCause);
}

QString fx_Summary(SxExportRequest::Kind kind, SxExported const& exported)
{
    QString const form = kind == SxExportRequest::Kind::Sheet ? QStringLiteral("%1: a sheet of %2, %3 x %4.")
                                                              : QStringLiteral("%1: %2 of %3 x %4 written.");
    return form.arg(exported.target, fx_Count(exported.pictures, "picture"))
        .arg(exported.size.width())
        .arg(exported.size.height());
}

/// What was exported, with the time at which the recording shows it.
QJsonArray fx_ExportedJson(CxRecordingReader const& recording, IxExportSink const& sink)
{
    QJsonArray timed;
    for (QJsonValue const& exported : sink.exportedJson()) {
        QJsonObject entry = exported.toObject();
        entry[QStringLiteral("seconds")] = entry.value(QStringLiteral("frame")).toInt() / recording.fps();
        timed.append(entry);
    }
    return timed;
}

QString fx_Json(CxRecordingReader const& recording, IxExportSink const& sink, CxFeeder const& feeder)
{
    QJsonArray leftOut;
    for (int const frame : feeder.leftOut())
        leftOut.append(frame);
    QString const& error = feeder.error();
    QJsonObject const json{
        {QStringLiteral("file"), recording.fileName()},
        {QStringLiteral("fps"), recording.fps()},
        {QStringLiteral("fpsIsAssumed"), !recording.rate().isKnown()},
        {QStringLiteral("exported"), fx_ExportedJson(recording, sink)},
        {QStringLiteral("leftOut"), leftOut},
        {QStringLiteral("error"), error.isEmpty() ? QJsonValue() : QJsonValue(error)},
    };
    return QString::fromUtf8(QJsonDocument(json).toJson(QJsonDocument::Indented)).trimmed();
}

int fx_Export(CxRecordingReader& recording, SxExportArguments const& arguments)
{
    QString error;
    std::optional<QVector<int>> const frames =
        arguments.frames->frames(recording.frameCount(), recording.keyFrames(), error);
    if (!frames || frames->isEmpty())
        return fx_Failed(
            QStringLiteral("%1: %2").arg(recording.fileName(),
                                         frames ? QStringLiteral("the recording has no key frames.") : error),
            kNoSuchFrame);
    if (arguments.request.kind == SxExportRequest::Kind::Files &&
        frames->count(frames->first()) != frames->size() && !fx_HasPlaceForNumber(arguments.request.output))
        return fx_WrongUsage(QStringLiteral("export"),
                             QStringLiteral("'%1' needs a place for the frame number, as in frame_%05d.png.")
                                 .arg(arguments.request.output));
    SxExportRequest request = arguments.request;
    request.rate = recording.rate();
    std::unique_ptr<IxExportSink> const sink = fx_MakeExportSink(request, *frames, error);
    if (!sink)
        return fx_Failed(error, kOutputFailed);

    CxFeeder feeder(recording, arguments, *sink);
    Outcome const outcome = feeder.feed(*frames);
    Console::transient(QString());
    if (outcome == Outcome::ReaderGone)
        return kDone; // "| head" has seen enough
    if (arguments.common.run.json)
        Console::data(fx_Json(recording, *sink, feeder));
    if (outcome == Outcome::Interrupted)
        return fx_Interrupted(feeder.error());
    if (outcome != Outcome::Done)
        return fx_Failed(feeder.error(), outcome == Outcome::BadInput ? kBadInput : kOutputFailed);
    if (!sink->exported().target.isEmpty())
        Console::message(fx_Summary(arguments.request.kind, sink->exported()));
    if (feeder.leftOut().isEmpty())
        return kDone;
    Console::warning(feeder.leftOutText());
    return arguments.isStrict ? kNotWhole : kDone;
}

} // namespace

int fx_RunExport(QStringList const& arguments)
{
    SxExportArguments parsed;
    QString error;
    if (!fx_ParseExportArguments(arguments, parsed, error))
        return fx_WrongUsage(QStringLiteral("export"), error);
    if (parsed.common.run.help) {
        Console::data(fx_ExportHelp());
        return kDone;
    }
    return fx_RunOnRecording(parsed.common,
                             [&](CxRecordingReader& recording) { return fx_Export(recording, parsed); });
}

#include "ExactCut.h"

#include <QFile>
#include <algorithm>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>

#include "CodedUnits.h"
#include "Recorder.h"
#include "RecordingReader.h"
#include "RecordingSource.h"

namespace {

constexpr int kIds = 65536; // idr_pic_id (ITU-T H.264, 7.4.3)

/// A file in memory with a name, as long as the object lives.
class CxMemoryFile
{
public:
    ~CxMemoryFile()
    {
        if (m_file >= 0)
            close(m_file);
    }
    QString name() const { return QStringLiteral("/proc/self/fd/%1").arg(m_file); }
    bool isOpen() const { return m_file >= 0; }

private:
    int const m_file = memfd_create("cut", MFD_CLOEXEC);
};

SxEncoderOptions fx_OptionsLike(SxH264Sps const& sps)
{
    SxEncoderOptions options;
    options.quality = SxEncoderOptions::kQualityMax;
    options.keyFrameInterval = SxEncoderOptions::kKeyFrameIntervalMax;
    options.complexity = 2;
    options.profile = sps.profile_idc;
    bool const is1b = sps.level_idc == 11 && (sps.constraints & 0x10) != 0 && sps.profile_idc < 100; // A.3.1
    options.level = is1b ? 9 : sps.level_idc;
    return options;
}

/// The idr_pic_id of a key frame; nothing when it has none.
std::optional<quint32> fx_IdOf(QByteArray const& frame, SxH264Sps const& sps)
{
    for (SxCodedUnit const& unit : fx_UnitsOf(frame)) {
        bool const isIdr = unit.type() == SxCodedUnit::kIdrSlice;
        auto const slice = isIdr ? fx_SliceOf(unit, sps) : std::nullopt;
        if (slice)
            return slice->idr_pic_id;
    }
    return std::nullopt;
}

/// The key frame with another idr_pic_id. Behind the header of our encoder's slices come bits at any place,
/// so that it may become longer: it knows no arithmetic coding.
QByteArray fx_WithId(QByteArray const& frame, SxH264Sps const& sps, quint32 id)
{
    QByteArray out;
    for (SxCodedUnit const& unit : fx_UnitsOf(frame)) {
        if (unit.type() != SxCodedUnit::kIdrSlice) {
            out += frame.mid(unit.begin, unit.end - unit.begin);
            continue;
        }
        QByteArray const bits = fx_PayloadBits(unit.bytes);
        int at = 0;
        bool isRead = fx_TakeNumber(bits, at) && fx_TakeNumber(bits, at) && fx_TakeNumber(bits, at);
        at += sps.frameNumBits;
        int const from = at;
        isRead = isRead && fx_TakeNumber(bits, at);
        out += isRead ? fx_WithStartCode(
                            fx_UnitOf(unit.bytes[0], bits.left(from) + fx_NumberBits(id) + bits.mid(at)))
                      : frame.mid(unit.begin, unit.end - unit.begin);
    }
    return out;
}

/// One recording of the frames into memory. Nothing when pictures are missing in it or were scaled.
SxCodedFrames fx_Code(CxRecordingReader const& recording, int first, int last, SxRecordRequest request,
                      SxRecordSummary& summary)
{
    SxCodedFrames coded;
    CxMemoryFile const file;
    if (!file.isOpen()) {
        summary.error = QStringLiteral("There is no room in memory.");
        return coded;
    }
    request.outputFile = file.name();
    CxRecordingSource source(std::make_unique<CxRecordingReader>(), recording.fileName(), first, last);
    summary = fx_Record(source, request);
    CxRecordingReader reader;
    if (!summary.error.isEmpty() || summary.wasStopped || summary.coded <= last - first ||
        summary.savedWidth != summary.input.width || summary.savedHeight != summary.input.height ||
        !reader.open(request.outputFile, summary.error) || reader.frameCount() != last - first + 1)
        return coded;
    for (int frame = 0; frame < reader.frameCount(); ++frame)
        coded.frames.append(reader.codedFrame(frame));
    coded.keys = reader.keyFrames().toVector();
    return coded;
}

/// Has the ids of the key frames end before \p following, that of the next one.
void fx_CountUpTo(std::optional<quint32> following, SxCodedFrames& coded)
{
    for (int i = 0; following && i < coded.keys.size(); ++i) {
        QByteArray& frame = coded.frames[coded.keys[i]];
        int const id = static_cast<int>(*following) - static_cast<int>(coded.keys.size()) + i;
        if (std::optional<SxH264Sps> const sps = fx_SpsOf(frame))
            frame = fx_WithId(frame, *sps, static_cast<quint32>((id + kIds) % kIds));
    }
}

/// What is told when there are no frames.
SxCodingFailure fx_FailureOf(SxRecordSummary const& summary, QString const& fileName, int first, int last)
{
    SxCodingFailure failure;
    failure.error = summary.error;
    if (summary.error.isEmpty())
        failure.error =
            fileName +
            QStringLiteral(": the encoder leaves out some of the frames %1-%2.").arg(first).arg(last);
    failure.isInput = summary.failure == RecordFailure::Source;
    failure.wasInterrupted = summary.wasStopped;
    return failure;
}

} // namespace

SxCodedFrames fx_CodeFrontAnew(CxRecordingReader& recording, int first, int last,
                               std::atomic<bool> const* stop, SxCodingFailure& failure)
{
    QList<int> const& keys = recording.keyFrames();
    auto const next = std::upper_bound(keys.begin(), keys.end(), first);
    std::optional<SxH264Sps> const sps =
        next == keys.begin() ? std::nullopt : fx_SpsOf(recording.codedFrame(*(next - 1)));
    if (next != keys.begin() && *(next - 1) == first)
        return {};
    if (!sps) {
        failure = {recording.fileName() + QStringLiteral(": frame %1 belongs to no key frame.").arg(first),
                   true, false};
        return {};
    }
    int const end = next == keys.end() ? last : std::min(last, *next - 1);
    SxRecordRequest request;
    request.encoder = fx_OptionsLike(*sps);
    request.stop = stop;
    SxRecordSummary summary;
    SxCodedFrames coded = fx_Code(recording, first, end, request, summary);
    if (coded.size() == 0 && summary.error.isEmpty() && !summary.wasStopped) {
        request.encoder.level = SxEncoderOptions().level; // the highest, which leaves the most bits
        coded = fx_Code(recording, first, end, request, summary);
    }
    if (coded.size() == 0) {
        failure = fx_FailureOf(summary, recording.fileName(), first, end);
        return coded;
    }
    if (next != keys.end())
        fx_CountUpTo(fx_IdOf(recording.codedFrame(*next), *sps), coded);
    return coded;
}

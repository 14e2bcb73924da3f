#include "VerifyWorker.h"

#include <QBuffer>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <new>
#include <sys/prctl.h>
#include <sys/resource.h>

#include "Console.h"
#include "ExitCode.h"
#include "H264Syntax.h"
#include "PlayCommand.h"
#include "RecordingReader.h"
#include "Session.h"
#include "UnitScan.h"
#include "VanishedPictures.h"

namespace {

/// Lives no longer than the program that started it, which alone hears the user; leaves no core file
/// beside recordings.
void fx_DependOnParent()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGHUP, SIG_IGN);
    rlimit const none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

void fx_Say(QString const& line)
{
    std::fputs((line + QLatin1Char('\n')).toUtf8().constData(), stdout);
    std::fflush(stdout); // what is said must be out before the decoder dies
}

int fx_Refuse(ExitCode code, QString const& sentence)
{
    fx_Say(QStringLiteral("refused %1 %2")
               .arg(code)
               .arg(QString(sentence).replace(QLatin1Char('\n'), QLatin1Char(' '))));
    return code;
}

/// What a frame's units say; \p sps is the last parameter set before it, and then that in it.
SxFrameMark fx_MarkOf(QByteArray bytes, SxH264Sps& sps)
{
    QBuffer units(&bytes);
    units.open(QIODevice::ReadOnly);
    SxFrameMark mark;
    int slices = 0;
    int strangers = 0;
    fx_ForEachUnit(units, -1, [&](uchar const* unit, size_t size) {
        int const nal_unit_type = unit[0] & 0x1F;
        if (nal_unit_type == 7)
            sps = fx_ReadH264Sps(unit, size).value_or(sps);
        if (nal_unit_type == 1 || nal_unit_type == 5) {
            if (slices++ == 0 && strangers == 0) {
                auto const slice = fx_ReadH264Slice(unit, size, sps);
                mark.frameNum = slice ? static_cast<int>(slice->frame_num) : -1;
                mark.idrPicId = slice && slice->idr_pic_id ? static_cast<int>(*slice->idr_pic_id) : -1;
            }
        } else if (nal_unit_type < 6 || nal_unit_type > 12) { // those between say something about pictures
            ++strangers;
        }
    });
    // A slice behind another had an opening of its own; without any, one of the strangers was a slice.
    mark.extraUnits = slices > 1 ? slices - 1 : slices == 1 ? strangers : std::max(strangers - 1, 0);
    return mark;
}

void fx_Introduce(CxRecordingReader const& recording)
{
    fx_Say(QStringLiteral("recording %1 %2 %3")
               .arg(recording.frameCount())
               .arg(recording.fileBytes())
               .arg(recording.rate().exact()));
    QStringList keys;
    for (int const key : recording.keyFrames())
        keys += QString::number(key);
    fx_Say(QStringLiteral("keys ") + keys.join(QLatin1Char(',')));
}

void fx_Decode(int first, int end, CxRecordingReader& recording)
{
    std::unique_ptr<CxImageData> picture;
    QString cause;
    SxH264Sps sps;
    fx_MarkOf(recording.codedFrame(recording.keyFrames().value(0)), sps); // for frames before their key
    for (int frame = first; frame < std::min(end, recording.frameCount()); ++frame) {
        SxCodedFrame const& coded = recording.frames()[static_cast<size_t>(frame)];
        SxFrameMark const mark = fx_MarkOf(recording.codedFrame(frame), sps);
        fx_Say(QStringLiteral("at %1 %2 %3 %4 %5 %6 %7")
                   .arg(frame)
                   .arg(coded.offset)
                   .arg(coded.size)
                   .arg(mark.frameNum)
                   .arg(1 << sps.frameNumBits)
                   .arg(mark.extraUnits)
                   .arg(mark.idrPicId));
        std::unique_ptr<CxImageData> next = recording.picture(frame, cause);
        if (!next) {
            fx_RuleOutShortMemory();
            fx_Say(QStringLiteral("bad ") + cause.simplified());
            continue;
        }
        picture = std::move(next); // the one before lived until now: its memory is reused
        fx_Say(QStringLiteral("good"));
    }
}

} // namespace

int fx_RunVerifyWorker(QStringList const& arguments)
{
    fx_DependOnParent();
    SxRunOptions options;
    options.verbose = arguments.value(2) == QLatin1String("1");
    options.pluginPath = arguments.value(3);
    CxSession session(options);
    if (!options.verbose)
        Console::hideLibraryOutput();
    QString error;
    if (!session.load(error))
        return fx_Refuse(kFailed, error);
    CxRecordingReader recording; // its objects go before the plug-in finishes
    if (!recording.open(arguments.value(4), error))
        return fx_Refuse(fx_RefusalCode(arguments.value(4)), error);
    fx_Introduce(recording);
    try {
        fx_Decode(arguments.value(0).toInt(), arguments.value(1).toInt(), recording);
    } catch (std::bad_alloc const&) {
        return fx_Refuse(kFailed,
                         recording.fileName() + QStringLiteral(": there is not enough memory to decode it."));
    }
    return kDone;
}

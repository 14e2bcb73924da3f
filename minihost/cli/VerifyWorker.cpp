#include "VerifyWorker.h"

#include <csignal>
#include <cstdio>
#include <sys/prctl.h>
#include <sys/resource.h>

#include "Console.h"
#include "ExitCode.h"
#include "RecordingReader.h"
#include "Session.h"

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

/// Pictures that begin in these coded bytes: slices (nal_unit_type 1 and 5) with first_mb_in_slice 0,
/// which is coded as a single one bit (ITU-T H.264, 7.3.3).
int fx_PicturesIn(QByteArray const& bytes)
{
    QByteArray const startCode("\0\0\1", 3);
    int pictures = 0;
    for (auto at = bytes.indexOf(startCode); at >= 0 && at + 4 < bytes.size();
         at = bytes.indexOf(startCode, at + 3)) {
        int const nal_unit_type = bytes[at + 3] & 0x1F;
        bool const isSlice = nal_unit_type == 1 || nal_unit_type == 5;
        if (isSlice && (static_cast<uchar>(bytes[at + 4]) & 0x80) != 0)
            ++pictures;
    }
    return pictures;
}

void fx_Introduce(CxRecordingReader const& recording)
{
    fx_Say(QStringLiteral("recording %1 %2 %3")
               .arg(recording.frameCount())
               .arg(recording.fileBytes())
               .arg(recording.assumedFps()));
    QStringList keys;
    for (int const key : recording.keyFrames())
        keys += QString::number(key);
    fx_Say(QStringLiteral("keys ") + keys.join(QLatin1Char(',')));
}

void fx_DecodeFrom(int first, CxRecordingReader& recording)
{
    std::unique_ptr<CxImageData> picture;
    QString cause;
    for (int frame = first; frame < recording.frameCount(); ++frame) {
        SxCodedFrame const& coded = recording.frames()[static_cast<size_t>(frame)];
        fx_Say(QStringLiteral("at %1 %2 %3").arg(frame).arg(coded.offset).arg(coded.size));
        std::unique_ptr<CxImageData> next = recording.picture(frame, cause);
        if (!next) {
            fx_Say(QStringLiteral("bad ") + cause.simplified());
            continue;
        }
        picture = std::move(next); // the one before lived until now: its memory is reused
        fx_Say(QStringLiteral("good %1").arg(fx_PicturesIn(recording.codedFrame(frame))));
    }
}

} // namespace

int fx_RunVerifyWorker(QStringList const& arguments)
{
    fx_DependOnParent();
    SxRunOptions options;
    options.verbose = arguments.value(1) == QLatin1String("1");
    options.pluginPath = arguments.value(2);
    CxSession session(options);
    if (!options.verbose)
        Console::hideLibraryOutput();
    QString error;
    if (!session.load(error))
        return fx_Refuse(kFailed, error);
    CxRecordingReader recording; // its objects go before the plug-in finishes
    if (!recording.open(arguments.value(3), error))
        return fx_Refuse(kBadInput, error);
    fx_Introduce(recording);
    fx_DecodeFrom(arguments.value(0).toInt(), recording);
    return kDone;
}

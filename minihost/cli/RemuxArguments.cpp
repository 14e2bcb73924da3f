#include "RemuxArguments.h"

#include "ContainerWriter.h"
#include "RecordingName.h"

static constexpr double kMostInMatroska = 1000; // pictures a second

namespace {

QVector<SxOption> fx_Options()
{
    QVector<SxOption> const own{
        {"fps", 0, "N",
         QStringLiteral("pictures a second: 25, 12.5, 30000/1001 (IN.json, or %1)").arg(kPicturesASecond)},
        {"frames", 0, "A-B",
         QStringLiteral("only these, counted from 0; 100- goes to the end. Begins at the key\n"
                        "frame at or before A, since nothing is coded again")},
        {"exact", 0, nullptr,
         QStringLiteral("with --frames: begin at A, coding anew the frames up to the next key\n"
                        "frame and no others")},
        {"overwrite", 0, nullptr, QStringLiteral("replace OUT if it exists, once the new one is whole")},
        {"remove-input", 0, nullptr, QStringLiteral("remove IN once OUT is whole and on the disk")},
    };
    return own + fx_RunOptions(QStringLiteral("what was written as JSON on standard output"));
}

QString fx_TakeFiles(SxRemuxArguments& parsed)
{
    QStringList& files = parsed.common.files;
    if (files.size() < 2)
        return QStringLiteral("'%1' alone is not enough: a recording and an output are needed.")
            .arg(files[0]);
    if (files.size() > 2)
        return QStringLiteral("One recording and one output: '%1' is one too many.").arg(files[2]);
    parsed.output = files.takeLast();
    if (!fx_IsRecordingName(parsed.output) && !fx_ContainerKindOf(parsed.output))
        return QStringLiteral("'%1' cannot be the output: its name must end in .mp4, .mov, .mkv or .h264.")
            .arg(parsed.output);
    return QString();
}

} // namespace

bool fx_ParseRemuxArguments(QStringList const& arguments, SxRemuxArguments& parsed, QString& error)
{
    QCommandLineParser parser;
    fx_AddOptions(parser, fx_Options());
    if (!fx_ParseSeveralPlayArguments(parser, arguments, parsed.common, error))
        return false;
    if (parsed.common.run.help)
        return true;
    QString const fps = QStringLiteral("fps");
    parsed.rate = fx_RateFromText(parser.value(fps));
    if (parser.isSet(fps) && !parsed.rate)
        error = QStringLiteral("--fps takes pictures a second up to 100000, as 25, 12.5 (at most three "
                               "decimals) or 30000/1001, not '%1'.")
                    .arg(parser.value(fps));
    QString const frames = QStringLiteral("frames");
    if (error.isEmpty() && parser.isSet(frames)) {
        parsed.frames = CxFrameSelection::parse(parser.value(frames), error);
        if (!parsed.frames)
            error = QStringLiteral("--frames takes one range here, as 100-250 or 100-, not '%1'.")
                        .arg(parser.value(frames));
    }
    if (error.isEmpty())
        error = fx_TakeFiles(parsed);
    if (error.isEmpty() && parsed.rate && parsed.rate->perSecond() > kMostInMatroska &&
        fx_ContainerKindOf(parsed.output) == ContainerKind::Matroska)
        error = QStringLiteral("Matroska counts time in milliseconds: --fps %1 is too many for it.")
                    .arg(parser.value(fps));
    parsed.overwrite = parser.isSet(QStringLiteral("overwrite"));
    parsed.isExact = parser.isSet(QStringLiteral("exact"));
    if (error.isEmpty() && parsed.isExact && !parsed.frames)
        error = QStringLiteral("--exact says where --frames begin, and there are none.");
    parsed.removesInput = parser.isSet(QStringLiteral("remove-input"));
    if (error.isEmpty() && parsed.removesInput && parsed.frames)
        error = QStringLiteral("--remove-input is for whole recordings, so --frames has no place.");
    return error.isEmpty();
}

QString fx_RemuxHelp()
{
    return QStringLiteral(
               "Hands a recording on to other programs: the coded pictures unchanged, in a container\n"
               "with their rate and colours, which a raw stream does not say.\n"
               "\n"
               "  minihost remux test.h264 test.mp4                   for players and browsers\n"
               "  minihost remux --fps 25 test.h264 test.mkv          at the rate of the camera\n"
               "  minihost remux --frames 100-250 test.h264 part.mov  a part of it\n"
               "  minihost remux --frames 103-250 --exact test.h264 part.mp4\n"
               "                                                      from 103 on itself\n"
               "  minihost remux test.h264 described.h264             a raw stream that says it itself\n"
               "\n"
               "Usage: minihost remux [options] IN.h264 OUT.mp4|.mov|.mkv|.h264\n"
               "\n") +
           fx_OptionsHelp(fx_Options()) +
           QStringLiteral(
               "\n"
               "A recording that is damaged is handed on as far as it goes, and the exit code is 4;\n"
               "minihost verify says what is wrong. OUT appears when it is whole.\n") +
           fx_ExitCodesHelp(
               {kDone, kFailed, kWrongUsage, kBadInput, kOutputFailed, kNoSuchFrame, kInterrupted});
}

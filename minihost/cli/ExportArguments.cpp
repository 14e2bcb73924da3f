#include "ExportArguments.h"

#include <QFileInfo>

#include "ContactSheet.h"
#include "ExitCode.h"
#include "NumberedFileName.h"

namespace {

/// Sees that nothing of a file is asked for beside hashes; one sentence when it is.
QString fx_CheckHashes(QCommandLineParser const& parser)
{
    if (parser.value(QStringLiteral("hash")) != QLatin1String("md5"))
        return QStringLiteral("--hash takes md5, not '%1'.").arg(parser.value(QStringLiteral("hash")));
    for (char const* other : {"output", "stream", "sheet", "overwrite"}) {
        if (parser.isSet(QString::fromLatin1(other)))
            return QStringLiteral("--hash prints hashes instead of writing pictures, so --%1 has no place.")
                .arg(QLatin1String(other));
    }
    return QString();
}

/// Sees that the options fit a stream; one sentence when they do not.
QString fx_CheckStream(QCommandLineParser const& parser, SxExportArguments const& parsed)
{
    QString const& output = parsed.request.output;
    bool const isStdout = output == QLatin1String("-");
    QString const suffix = QFileInfo(output).suffix().toLower();
    if (parser.isSet(QStringLiteral("sheet")))
        return isStdout ? QStringLiteral("--sheet needs a file as --output.")
                        : QStringLiteral("--sheet makes one picture, so --stream has no place.");
    if (!isStdout && CxPictureEncoder::suffixes().contains(suffix))
        return QStringLiteral("'%1' is a picture's name; --stream puts all frames behind each other.")
            .arg(output);
    if (suffix == QLatin1String("y4m") && parsed.request.stream != CxPictureStream::Format::Y4m)
        return QStringLiteral("'%1' must hold y4m, not what --stream asks for.").arg(output);
    if (isStdout && parsed.common.run.json)
        return QStringLiteral("--json and the pictures cannot both go to standard output.");
    return QString();
}

/// Sees that the output can be the name of pictures or a sheet; one sentence when it cannot.
QString fx_CheckFileName(SxExportRequest const& request)
{
    if (!CxPictureEncoder::suffixes().contains(QFileInfo(request.output).suffix().toLower()))
        return QStringLiteral("'%1' must end in one of %2.")
            .arg(request.output,
                 QStringLiteral(".") + CxPictureEncoder::suffixes().join(QStringLiteral(", .")));
    if (!fx_FileNameOf(request.output, 0))
        return QStringLiteral("'%1' has a percent sign that is neither a place for the frame number, as in "
                              "frame_%05d.png, nor doubled.")
            .arg(request.output);
    if (request.kind == SxExportRequest::Kind::Sheet && fx_HasPlaceForNumber(request.output))
        return QStringLiteral("A contact sheet is one picture: '%1' has no use for a frame number.")
            .arg(request.output);
    return QString();
}

/// Decides what is written, and sees that the options fit together; one sentence when they do not.
QString fx_ChooseKind(QCommandLineParser const& parser, SxExportArguments& parsed)
{
    SxExportRequest& request = parsed.request;
    request.output = parser.value(QStringLiteral("output"));
    if (parser.isSet(QStringLiteral("hash"))) {
        request.kind = SxExportRequest::Kind::Hashes;
        return fx_CheckHashes(parser);
    }
    if (request.output.isEmpty())
        return QStringLiteral("No --output is given.");
    if (request.output == QLatin1String("-") || parser.isSet(QStringLiteral("stream")) ||
        QFileInfo(request.output).suffix().toLower() == QLatin1String("y4m")) {
        request.kind = SxExportRequest::Kind::Stream;
        return fx_CheckStream(parser, parsed);
    }
    if (parser.isSet(QStringLiteral("sheet")))
        request.kind = SxExportRequest::Kind::Sheet;
    return fx_CheckFileName(request);
}

QString fx_ReadValues(QCommandLineParser const& parser, SxExportArguments& parsed)
{
    if (parser.isSet(QStringLiteral("stream"))) {
        QString const name = parser.value(QStringLiteral("stream"));
        auto const format = CxPictureStream::formatFromName(name);
        if (!format)
            return QStringLiteral("--stream takes one of %1, not '%2'.")
                .arg(CxPictureStream::formatNames().join(QStringLiteral(", ")), name);
        parsed.request.stream = *format;
    }
    if (parser.isSet(QStringLiteral("sheet"))) {
        QString const columns = parser.value(QStringLiteral("sheet"));
        parsed.request.sheetColumns = columns.toInt();
        if (parsed.request.sheetColumns < 1 || parsed.request.sheetColumns > CxContactSheet::kMostColumns)
            return QStringLiteral("--sheet takes the pictures in a row, 1 to %1, not '%2'.")
                .arg(CxContactSheet::kMostColumns)
                .arg(columns);
    }
    QString error;
    if (!parser.isSet(QStringLiteral("frames")))
        return QStringLiteral("No --frames are given; --frames all takes every frame.");
    parsed.frames = CxFrameSelection::parse(parser.value(QStringLiteral("frames")), error);
    return error;
}

QVector<SxOption> fx_Options()
{
    QVector<SxOption> const own{
        {"frames", 0, "SPEC",
         QStringLiteral("4711, 10-20, 20-10, 10- (to the end), 0-300:30 (every 30th), key,\n"
                        "all, or several of them with commas between; frames count from 0")},
        {"output", 'o', "P",
         QStringLiteral("a file name ending in .%1, with %d\n"
                        "or %05d for the frame number; a name ending in .y4m for one\n"
                        "stream; - for standard output")
             .arg(CxPictureEncoder::suffixes().join(QStringLiteral(", .")))},
        {"stream", 0, "F",
         QStringLiteral("all frames behind each other, as standard output gets them:\n%1 (y4m)")
             .arg(CxPictureStream::formatNames().join(QStringLiteral(", ")))},
        {"sheet", 0, "COLUMNS", QStringLiteral("all frames on one picture, COLUMNS in a row, numbers below")},
        {"hash", 0, "md5",
         QStringLiteral("instead of pictures a line for each frame: its number and the MD5\n"
                        "of its rows as blue, green, red, 255, without gaps between rows")},
        {"overwrite", 0, nullptr, QStringLiteral("replace files that exist, each once the new one is whole")},
        {"keep-going", 0, nullptr, QStringLiteral("leave out frames that cannot be decoded, and say which")},
        {"strict", 0, nullptr, QStringLiteral("with --keep-going: exit code 3 when frames were left out")},
        fx_JobsOption(QStringLiteral("threads that decode")),
    };
    return own + fx_RunOptions(QStringLiteral("what was written as JSON on standard output"));
}

} // namespace

bool fx_ParseExportArguments(QStringList const& arguments, SxExportArguments& parsed, QString& error)
{
    QCommandLineParser parser;
    fx_AddOptions(parser, fx_Options());
    if (!fx_ParsePlayArguments(parser, arguments, parsed.common, error))
        return false;
    if (parsed.common.run.help)
        return true;
    parsed.request.recording = parsed.common.file();
    parsed.request.printsHashes = !parsed.common.run.json;
    parsed.keepsGoing = parser.isSet(QStringLiteral("keep-going"));
    parsed.isStrict = parser.isSet(QStringLiteral("strict"));
    parsed.request.overwrite = parser.isSet(QStringLiteral("overwrite"));
    std::optional<int> const jobs = fx_Jobs(parser, error);
    if (!jobs)
        return false;
    parsed.jobs = *jobs;
    error = fx_ReadValues(parser, parsed);
    if (error.isEmpty())
        error = fx_ChooseKind(parser, parsed);
    return error.isEmpty();
}

QString fx_ExportHelp()
{
    return QStringLiteral(
               "Writes frames of a raw H.264 recording as pictures, in the order asked.\n"
               "\n"
               "  minihost export test.h264 --frames 0,150,299 -o frame_%05d.png   three pictures\n"
               "  minihost export test.h264 --frames 0-299:25 --sheet 4 -o sheet.png\n"
               "                                                    a contact sheet, four in a row\n"
               "  minihost export test.h264 --frames all -o - | ffplay -      for another program\n"
               "  minihost export test.h264 --frames 299-0 --hash md5         what is in them\n"
               "\n"
               "Usage: minihost export FILE --frames SPEC --output PATTERN|- [options]\n"
               "\n") +
           fx_OptionsHelp(fx_Options()) + QLatin1Char('\n') +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kNotWhole, kBadInput, kOutputFailed, kNoSuchFrame,
                             kInterrupted});
}

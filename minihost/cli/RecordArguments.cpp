#include "RecordArguments.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <unistd.h>

#include "AmountArguments.h"
#include "ContainerWriter.h"
#include "ExitCode.h"
#include "RecordingName.h"
#include "SameFile.h"
#include "SourceArguments.h"

namespace {

QString const kCamera = QStringLiteral("camera:");

constexpr int kBitsMin = 8;
constexpr int kBitsMax = 16;

/// Reads options out of a parsed command line and keeps the first complaint.
class CxOptionReader
{
public:
    CxOptionReader(QCommandLineParser const& parser, QString& error)
        : m_parser(parser)
        , m_error(error)
    {}

    /// A whole number from \p least to \p most, if the option is given.
    template<class Integer>
    void readNumber(char const* name, Integer& value, Integer least, Integer most)
    {
        QString const option = QString::fromLatin1(name);
        if (!m_parser.isSet(option))
            return;
        bool isNumber = false;
        qlonglong const number = m_parser.value(option).toLongLong(&isNumber);
        if (isNumber && number >= static_cast<qlonglong>(least) && number <= static_cast<qlonglong>(most))
            value = static_cast<Integer>(number);
        else
            complain(option, QStringLiteral("a whole number from %1 to %2").arg(least).arg(most));
    }

    /// One of some names, if the option is given.
    template<class Value, class FromName>
    void readName(char const* name, Value& value, FromName fromName, QStringList const& names)
    {
        QString const option = QString::fromLatin1(name);
        if (!m_parser.isSet(option))
            return;
        auto const found = fromName(m_parser.value(option));
        if (found)
            value = *found;
        else
            complain(option, QStringLiteral("one of ") + names.join(QStringLiteral(", ")));
    }

    void readSize(SxTestCameraOptions& camera)
    {
        static QRegularExpression const kSize(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
        QString const option = QStringLiteral("size");
        if (!m_parser.isSet(option))
            return;
        QRegularExpressionMatch const match = kSize.match(m_parser.value(option));
        camera.width = match.captured(1).toUInt();
        camera.height = match.captured(2).toUInt();
        quint32 const least = SxTestCameraOptions::kSmallestSide;
        quint32 const most = SxTestCameraOptions::kLargestSide;
        if (camera.width < least || camera.width > most || camera.height < least || camera.height > most)
            complain(option, QStringLiteral("WIDTHxHEIGHT, each from %1 to %2").arg(least).arg(most));
    }

    void complain(QString const& option, QString const& expected)
    {
        if (m_error.isEmpty())
            m_error =
                QStringLiteral("--%1 takes %2, not '%3'.").arg(option, expected, m_parser.value(option));
    }

private:
    QCommandLineParser const& m_parser;
    QString& m_error;
};

QVector<SxOption> fx_SourceOptions()
{
    return {
        {"frames", 0, "N", QStringLiteral("end after N pictures; 0 for no limit (camera: 300, else 0)")},
        {"bits", 0, "N",
         QStringLiteral("significant bits of 16-bit pictures that do not say, %1 to %2 (16)")
             .arg(kBitsMin)
             .arg(kBitsMax)},
        {"input-format", 0, "F",
         QStringLiteral("FFmpeg's reader for sources that do not say what they are: rawvideo")},
        {"input-option", 0, "O=V",
         QStringLiteral("an option of that reader or device, again for each:\n"
                        "video_size=1280x720, pixel_format=bgra, framerate=30")},
        {"buffer", 0, "T,SIZE",
         QStringLiteral("webcams and live streams: what may wait for the encoder, a time, a\n"
                        "size or both; what is beyond that is lost and counted (2s,512MB)")},
        {"size", 0, "WxH", QStringLiteral("test camera: picture size (1280x720)")},
        {"format", 0, "F",
         QStringLiteral("test camera (bgr24):\n") + fx_TestCameraFormats().join(QLatin1Char(' '))},
        {"seed", 0, "N", QStringLiteral("test camera: seed of its noise (1)")},
    };
}

QVector<SxOption> fx_EncodingOptions()
{
    SxEncoderOptions const defaults;
    return {
        {"quality", 0, "N",
         QStringLiteral("%1 to %2: more bits, fewer skipped pictures (%3)")
             .arg(SxEncoderOptions::kQualityMin)
             .arg(SxEncoderOptions::kQualityMax)
             .arg(defaults.quality)},
        {"keyframe-rate", 0, "N",
         QStringLiteral("a key frame every N pictures, %1 to %2 (%3)")
             .arg(SxEncoderOptions::kKeyFrameIntervalMin)
             .arg(SxEncoderOptions::kKeyFrameIntervalMax)
             .arg(defaults.keyFrameInterval)},
        {"complexity", 0, "C",
         QStringLiteral("%1 (medium)").arg(fx_ComplexityNames().join(QLatin1Char(' ')))},
        {"profile", 0, "P",
         QStringLiteral("%1 (%2)").arg(fx_ProfileNames().join(QLatin1Char(' ')),
                                       fx_ProfileName(defaults.profile))},
        {"level", 0, "L",
         QStringLiteral("(%1) %2").arg(fx_LevelName(defaults.level), fx_LevelNames().join(QLatin1Char(' ')))},
    };
}

QVector<SxOption> fx_OutputOptions()
{
    QVector<SxOption> const own{
        {"overwrite", 0, nullptr, QStringLiteral("replace OUTPUT if it exists")},
        {"strict", 0, nullptr, QStringLiteral("exit code 3 when the encoder skipped pictures")},
        {"no-sidecar", 0, nullptr,
         QStringLiteral("no OUTPUT.json, which notes rate, rotation and skipped pictures\n"
                        "where they are not as a raw stream's are assumed to be")}};
    return own + fx_RunOptions(QStringLiteral("summary as JSON on standard output"));
}

/// How the sources are to be read; one sentence when that makes no sense.
QString fx_TakeInputOptions(QCommandLineParser const& parser, SxFFmpegOptions& input)
{
    input.format = parser.value(QStringLiteral("input-format"));
    if (!input.format.isEmpty() && !CxFFmpegSource::hasFormat(input.format))
        return QStringLiteral(
                   "--input-format takes the name of a reader that FFmpeg has, as ffmpeg -demuxers "
                   "lists them, not '%1'.")
            .arg(input.format);
    for (QString const& given : parser.values(QStringLiteral("input-option"))) {
        auto const equals = given.indexOf(QLatin1Char('='));
        if (equals < 1)
            return QStringLiteral("--input-option takes NAME=VALUE, such as video_size=1280x720, not '%1'.")
                .arg(given);
        input.options.insert(given.left(equals), given.mid(equals + 1));
    }
    return QString();
}

/// Splits sources and output, and sees that the options fit them; one sentence when they do not.
QString fx_TakePositionals(QCommandLineParser const& parser, SxRecordArguments& parsed)
{
    QStringList names = parser.positionalArguments();
    if (names.size() < 2)
        return names.isEmpty()
                   ? QStringLiteral("Neither a source nor an output is given.")
                   : QStringLiteral("'%1' alone is not enough: a source and an output are needed.")
                         .arg(names.first());
    parsed.request.outputFile = names.takeLast();
    if (parsed.request.outputFile == QLatin1String("-"))
        parsed.request.outputFile = QLatin1String(kStandardOutputName);
    bool const isStandard = parsed.request.outputFile == QLatin1String(kStandardOutputName);
    if (isStandard && isatty(STDOUT_FILENO) != 0)
        return QStringLiteral(
            "Standard output is a terminal: send it to a program (| ffplay -) or name a file.");
    // The last argument is going to be written: a forgotten output must not cost a picture.
    QFileInfo const output(parsed.request.outputFile);
    bool const isDevice = isStandard || (output.exists() && !output.isFile() && !output.isDir());
    if (!isDevice && !fx_IsRecordingName(parsed.request.outputFile) &&
        !fx_ContainerKindOf(parsed.request.outputFile))
        return QStringLiteral("'%1' cannot be the output: its name must end in .h264, .mp4, .mov or .mkv.")
            .arg(parsed.request.outputFile);
    if (isStandard)
        parsed.request.keepsSidecar = false; // nobody would look for one there

    if (parsed.run.json && fx_IsStandardOutput(parsed.request.outputFile))
        return QStringLiteral("--json and the recording cannot both go to standard output.");
    for (QString const& name : names) {
        if (name.isEmpty())
            return QStringLiteral("A source has no name.");
    }
    parsed.isCamera = names.contains(kCamera);
    if (parsed.isCamera && names.size() > 1)
        return QStringLiteral("camera: cannot be mixed with other sources.");
    if (names.count(QStringLiteral("-")) > 1)
        return QStringLiteral("Standard input (-) can be read only once.");
    if (!parsed.isCamera)
        parsed.sources = names;
    parsed.request.sourceName = names.first();
    if (names.size() > 1)
        parsed.request.sourceName += QStringLiteral(" ... ") + names.last();

    for (char const* option : {"size", "seed", "format"}) {
        if (!parsed.isCamera && parser.isSet(QString::fromLatin1(option)))
            return QStringLiteral("--%1 is only for camera:, not for '%2'.")
                .arg(QLatin1String(option), names.first());
    }
    if (parsed.isCamera && parser.isSet(QStringLiteral("buffer")))
        return QStringLiteral("--buffer is not for camera:, which waits for the encoder.");
    if (parsed.isCamera && parser.isSet(QStringLiteral("bits")))
        return QStringLiteral("--bits is not for camera:, whose --format says how many bits there are.");
    for (char const* option : {"input-format", "input-option"}) {
        if (parsed.isCamera && parser.isSet(QString::fromLatin1(option)))
            return QStringLiteral("--%1 is not for camera:, which nothing has to read.")
                .arg(QLatin1String(option));
    }
    return QString();
}

/// Why the test camera, whose size is known, cannot be changed like that, one sentence; empty when it can.
QString fx_CameraObstacle(SxRecordArguments const& parsed)
{
    QSize const size(static_cast<int>(parsed.camera.width), static_cast<int>(parsed.camera.height));
    QString const obstacle = fx_PlanChanges(parsed.changes, size, 0).obstacle;
    return obstacle.isEmpty() ? QString() : QStringLiteral("The picture of camera: %1.").arg(obstacle);
}

/// What does not go together with --split, one sentence.
QString fx_SplitMisfit(SxRecordArguments const& parsed)
{
    QString const& output = parsed.request.outputFile;
    QFileInfo const info(output);
    if (parsed.keepAll.isWanted)
        return QStringLiteral("--split does not go with --keep-all, which makes a whole recording anew.");
    if (fx_ContainerKindOf(output))
        return QStringLiteral(
            "--split writes raw streams, .h264, not containers; remux makes them of these.");
    if (output == QLatin1String(kStandardOutputName) || (info.exists() && !info.isFile() && !info.isDir()))
        return QStringLiteral("--split needs files: '%1' is none.").arg(output);
    return QString();
}

} // namespace

bool fx_ParseRecordArguments(QStringList const& arguments, SxRecordArguments& parsed, QString& error)
{
    QCommandLineParser parser;
    fx_AddOptions(parser, fx_PartOptions() + fx_EndOptions() + fx_SourceOptions() + fx_PictureOptions() +
                              fx_EncodingOptions() + fx_KeepAllOptions() + fx_OutputOptions());
    if (!fx_ParseOptions(parser, arguments, parsed.run, error))
        return false;
    if (parsed.run.help)
        return true;

    CxOptionReader reader(parser, error);
    SxEncoderOptions& encoder = parsed.request.encoder;
    reader.readNumber("quality", encoder.quality, int{SxEncoderOptions::kQualityMin},
                      int{SxEncoderOptions::kQualityMax});
    reader.readNumber("keyframe-rate", encoder.keyFrameInterval, int{SxEncoderOptions::kKeyFrameIntervalMin},
                      int{SxEncoderOptions::kKeyFrameIntervalMax});
    reader.readName("complexity", encoder.complexity, fx_ComplexityFromName, fx_ComplexityNames());
    reader.readName("profile", encoder.profile, fx_ProfileFromName, fx_ProfileNames());
    reader.readName("level", encoder.level, fx_LevelFromName, fx_LevelNames());
    reader.readNumber("frames", parsed.request.maxPictures, 0, 1000000000);
    reader.readNumber("seed", parsed.camera.seed, quint64{0}, quint64{0x7FFFFFFFFFFFFFFF});
    reader.readNumber("bits", parsed.bits, kBitsMin, kBitsMax);
    reader.readName("format", parsed.camera.format, fx_TestCameraFormat, fx_TestCameraFormats());
    reader.readSize(parsed.camera);
    if (!error.isEmpty())
        return false;

    bool const isEnded = parser.isSet(QStringLiteral("duration")) || parser.isSet(QStringLiteral("for"));
    bool const isPart = isEnded || parser.isSet(QStringLiteral("start"));
    if (parser.isSet(QStringLiteral("frames")) || isEnded)
        parsed.camera.frames = isPart ? 0 : parsed.request.maxPictures; // a part ends by itself
    parsed.changes.isEven =
        true; // else the encoder's picture is a blurred one: all of it scaled by one pixel
    parsed.isStrict = parser.isSet(QStringLiteral("strict"));
    parsed.request.keepsSidecar = !parser.isSet(QStringLiteral("no-sidecar"));
    parsed.overwrite = parser.isSet(QStringLiteral("overwrite"));
    error = fx_TakePositionals(parser, parsed);
    if (error.isEmpty())
        error = fx_TakeInputOptions(parser, parsed.input);
    if (error.isEmpty())
        error = fx_TakeBuffer(parser, parsed.buffer);
    if (error.isEmpty())
        error = fx_TakePartOptions(parser, parsed.part);
    if (error.isEmpty())
        error = fx_TakeEndOptions(parser, parsed.part, parsed.split);
    if (error.isEmpty())
        error = fx_TakePictureOptions(parser, parsed.changes);
    if (error.isEmpty() && parsed.isCamera)
        error = fx_CameraObstacle(parsed);
    if (error.isEmpty())
        error = fx_TakeKeepAllOptions(parser, parsed.keepAll);
    if (error.isEmpty() && parsed.isSplit())
        error = fx_SplitMisfit(parsed);
    return error.isEmpty();
}

QString fx_RecordHelp()
{
    return QStringLiteral(
               "Records pictures into a raw H.264 file that every player plays.\n"
               "\n"
               "  minihost record camera: test.h264                     the built-in test camera\n"
               "  minihost record --size 1920x1080 --format mono12 --seed 2 --frames 60 camera: deep.h264\n"
               "  minihost record --quality 8 shots/*.png shots.h264    pictures, in this order\n"
               "  minihost record --bits 12 scan_%03d.png scan.h264     that have 12 bits in 16\n"
               "  minihost record shots/ shots.h264                     those of a folder\n"
               "  minihost record clip.mp4 clip.h264                    any video\n"
               "  minihost record --rotate auto phone.mp4 phone.h264    upright, as it was taken\n"
               "  minihost record --crop 640x480+0+120 --scale 320x240 clip.mp4 part.h264\n"
               "  minihost record --start 1:02.5 --duration 10s clip.mkv part.h264\n"
               "  minihost record --profile high --level 4.1 --complexity high --keyframe-rate 30 \\\n"
               "            clip.mp4 clip.h264                          for a decoder that needs it so\n"
               "  minihost record --keep-all --may-change level clip.mp4 clip.h264\n"
               "                                                        with not one picture skipped\n"
               "  minihost record --overwrite --strict --no-sidecar --json -q clip.mp4 clip.h264\n"
               "                                                        in a script\n"
               "  minihost record clip.mp4 clip.mkv                     into a container\n"
               "  minihost record --for 8h --split 10m v4l2:/dev/video0 day.h264  day_001.h264 ...\n"
               "  minihost record v4l2:/dev/video0 webcam.h264          a webcam, until Ctrl-C\n"
               "  minihost record clip.mp4 - | ffplay -                 - is standard output\n"
               "  ... -f yuv4mpegpipe - | minihost record - piped.h264  what another program makes\n"
               "  ... | minihost record --input-format rawvideo --input-option video_size=1920x1080 \\\n"
               "            --input-option pixel_format=bgra - raw.h264  raw pictures\n"
               "\n"
               "Usage: minihost record [options] SOURCE... OUTPUT.h264|.mp4|.mov|.mkv|-\n"
               "\n"
               "SOURCE is camera:, picture files (PNG, JPEG, BMP, PNM, TIFF with 8 or 16 bits), a\n"
               "folder of them or a pattern for their names (shot_%05d.png), shot_2 before shot_10,\n"
               "a video file, - for standard input, or a URL or DEVICE:NAME that FFmpeg opens.\n"
               "\n"
               "What to record\n") +
           fx_OptionsHelp(fx_PartOptions() + fx_EndOptions() + fx_SourceOptions()) +
           QStringLiteral("What to do to each picture, in this order\n") +
           fx_OptionsHelp(fx_PictureOptions()) + QStringLiteral("How to encode\n") +
           fx_OptionsHelp(fx_EncodingOptions() + fx_KeepAllOptions()) + QStringLiteral("How to run\n") +
           fx_OptionsHelp(fx_OutputOptions()) +
           QStringLiteral(
               "\n"
               "Ctrl-C ends a recording cleanly. With a source that has no end, such as a webcam or\n"
               "camera: without --frames, that is success; any other is interrupted.\n") +
           fx_ExitCodesHelp({kDone, kFailed, kWrongUsage, kNotWhole, kBadInput, kOutputFailed, kInterrupted});
}

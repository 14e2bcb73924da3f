// Writes what the fuzzers start from: seeds FOLDER.
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <cstdio>

#include "support/CodedStream.h"
#include "support/SpsWriter.h"

static QDir s_folder;
static bool s_isWritten = true;

static void fx_Write(QString const& target, QString const& name, QByteArray const& bytes)
{
    s_isWritten = s_isWritten && s_folder.mkpath(target);
    QFile file(s_folder.filePath(target + QLatin1Char('/') + name));
    s_isWritten = s_isWritten && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/// An input of its own for CxFuzzInput::split().
static QByteArray fx_Part(QByteArray const& bytes) { return static_cast<char>(bytes.size()) + bytes; }

static void fx_WriteSets()
{
    SxSps sps;
    auto const write = [&sps](char const* name) {
        std::vector<uchar> const bytes = fx_WriteSps(sps);
        fx_Write(QStringLiteral("sps"), QLatin1String(name),
                 QByteArray(reinterpret_cast<char const*>(bytes.data()), static_cast<int>(bytes.size())));
    };
    write("baseline");
    sps.frame_mbs_only_flag = false;
    sps.frame_cropping_flag = true;
    sps.bottom = 4;
    write("field");
    sps.pic_order_cnt_type = 1;
    sps.num_ref_frames_in_pic_order_cnt_cycle = sps.offsets = 20;
    write("cycle");
    sps = SxSps();
    sps.profile_idc = 100;
    sps.seq_scaling_matrix_present_flag = true;
    write("high");
}

static void fx_WriteStreams()
{
    for (int const profile : {66, 77, 100}) {
        QString const name = QStringLiteral("profile%1").arg(profile);
        QByteArray const stream =
            fx_CodeStream(8, 48, 32, {{"h264_profile_idc", profile}, {"h264_keyframerate", 4}}).bytes();
        fx_Write(QStringLiteral("annexb"), name, stream);
        fx_Write(QStringLiteral("remuxing"), name, stream.left(stream.size() / 3));
        QByteArray const none(1, '\0');
        fx_Write(QStringLiteral("decoder"), name, none + none + stream);
        // Pictures of the caller's and back and forth; an accessor that lies now and then.
        QByteArray const choices = QByteArray::fromHex("0004040404050706030005000202060105040300");
        fx_Write(QStringLiteral("decoder"), name + QStringLiteral("-lies"),
                 fx_Part(choices) +
                     fx_Part(QByteArray(40, '\0') + QByteArray::fromHex("03020001000400050006")) + stream);
        fx_Write(QStringLiteral("loader"), name, none + stream);
        // Opened, played, cut, appended to, closed and opened again.
        QByteArray const session = QByteArray::fromHex("02000c000c010c030500ff0f06010700400c000c0108000400000"
                                                       "001090020ff0c010100000003000c020a0101000a000200");
        fx_Write(QStringLiteral("loader"), name + QStringLiteral("-session"), fx_Part(session) + stream);
    }
}

/// Streams whose size changes: from one key frame to the next, and by a set of another stream.
static void fx_WriteSizeChanges()
{
    SxCodedStream const small = fx_CodeStream(6, 48, 32, {{"h264_keyframerate", 3}});
    SxCodedStream const large = fx_CodeStream(6, 96, 64, {{"h264_keyframerate", 3}});
    QByteArray const& key = large.frames.first();
    QByteArray const startCode = QByteArray::fromHex("00000001");
    QByteArray const set = key.left(key.indexOf(startCode, 4)); // without its picture
    QByteArray const none(2, '\0');
    fx_Write(QStringLiteral("decoder"), QStringLiteral("sizes"), none + small.bytes() + large.bytes());
    fx_Write(QStringLiteral("decoder"), QStringLiteral("sizes-back"), none + large.bytes() + small.bytes());
    fx_Write(QStringLiteral("decoder"), QStringLiteral("set-alone"),
             none + small.frames.at(0) + set + small.frames.at(1) + small.frames.at(2) + large.frames.at(1) +
                 small.frames.at(4));
    fx_Write(QStringLiteral("loader"), QStringLiteral("sizes"), none.left(1) + small.bytes() + large.bytes());
}

static void fx_WriteRecords()
{
    for (char packing = 0; packing < 6; ++packing) {
        QByteArray const odd =
            QByteArray::fromHex("01") + packing + QByteArray::fromHex("072107130700050505070707");
        QByteArray const even =
            QByteArray::fromHex("01") + packing + QByteArray::fromHex("072007100700050505070707");
        fx_Write(QStringLiteral("conversions"), QStringLiteral("odd%1").arg(int(packing)),
                 odd + QByteArray(60, '\x5C'));
        fx_Write(QStringLiteral("conversions"), QStringLiteral("even%1").arg(int(packing)),
                 even + QByteArray(60, '\x5C'));
    }
    fx_Write(QStringLiteral("conversions"), QStringLiteral("rgb32"),
             QByteArray::fromHex("0000231103020100") + QByteArray(90, '\xB7'));
    fx_Write(QStringLiteral("conversions"), QStringLiteral("rgb32-large"),
             QByteArray::fromHex("0001402041") + QByteArray(90, '\x36'));

    fx_Write(QStringLiteral("options"), QStringLiteral("none"), QByteArray(32, '\0'));
    fx_Write(QStringLiteral("options"), QStringLiteral("usual"),
             QByteArray::fromHex("1f0107010301010100010b3f2f") + QByteArray(24, '\1'));
    fx_Write(QStringLiteral("options"), QStringLiteral("other"),
             QByteArray::fromHex("7f0001ffffff7f000700060400050008001f1f") + QByteArray(24, '\3'));
    fx_Write(QStringLiteral("saver"), QStringLiteral("camera"),
             QByteArray::fromHex("00") + QByteArray(8 * 75, '\x0B'));
    fx_Write(QStringLiteral("saver"), QStringLiteral("level"),
             QByteArray::fromHex("100101") + QByteArray(8 * 75, '\x10'));
    fx_Write(QStringLiteral("saver"), QStringLiteral("sizes"),
             QByteArray::fromHex("0901050103") + QByteArray(8 * 75, '\x44'));
}

static void fx_WriteLines()
{
    auto const write = [](char const* name, char kind, char const* line) {
        fx_Write(QStringLiteral("arguments"), QLatin1String(name), QByteArray(1, kind) + '\x1E' + line);
    };
    write("frames", 0, "0,10-20,20-10,10-,0-300:30,key,all");
    write("name", 1, "frame_%05d of 100%%.png");
    write("record", 2,
          "--quality\n8\n--keyframe-rate=5\n--level\n3.1\n--profile\nhigh\n--size\n64x48\n--"
          "frames\n9\ncamera:\nout.h264");
    write("record-files", 2, "--bits\n12\n--input-option\nvideo_size=64x48\n--json\na.png\n-\nout.h264");
    write("export", 4, "in.h264\n--frames\n0-9:3\n-o\nframe_%05d.png\n--overwrite");
    write("export-sheet", 4, "in.h264\n--frames=all\n--sheet\n4\n--output\nsheet.png");
    write("export-hash", 4, "in.h264\n--frames\nkey\n--hash\nmd5\n--json");
    write("remux", 3, "--fps\n30000/1001\n--frames\n100-250\n--exact\nin.h264\nout.mkv");
    write("export-stream", 4, "in.h264\n--frames\n9-0\n--stream\nbgr24\n-o\n-");
}

static void fx_WriteNotes()
{
    fx_Write(QStringLiteral("sidecar"), QStringLiteral("all"),
             R"(, "rate": "30000/1001", "rateIsAverage": true, "rotation": 90, "source": "clip.mp4", )"
             R"("options": {"quality": 5}, "pictures": 20, "skippedCount": 4, "skipped": "3-5, 7", )"
             R"("program": "minihost 1"})");
    fx_Write(QStringLiteral("sidecar"), QStringLiteral("foreign"), R"({"format": "none", "recording": []})");
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    s_folder = QDir(QString::fromLocal8Bit(argv[1]));
    fx_WriteSets();
    fx_WriteStreams();
    fx_WriteSizeChanges();
    fx_WriteRecords();
    fx_WriteLines();
    fx_WriteNotes();
    if (!s_isWritten)
        std::printf("The seeds cannot be written to '%s'.\n", argv[1]); // standard error is OpenH264's
    return s_isWritten ? 0 : 1;
}

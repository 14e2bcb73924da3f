#include <QTemporaryDir>
#include <QtTest>
#include <random>

#include "StreamKind.h"
#include "support/BitWriter.h"
#include "support/FileBytes.h"

/// What files are by their units: a recording, and streams of other encoders (tests/data/foreign).
class tst_StreamKind : public QObject
{
    Q_OBJECT

private slots:
    void recordingIsNotForeign_data();
    void recordingIsNotForeign();
    void damageMakesNoRecordingForeign_data();
    void damageMakesNoRecordingForeign();
    void foreignStreamIsRecognised_data();
    void foreignStreamIsRecognised();
    void sizeOfH265IsThatInsideItsWindow_data();
    void sizeOfH265IsThatInsideItsWindow();
    void rateIsThatOfTheStream();
    void rateBeyondEveryCountIsNone();
    void picturesBeyondTheFirstPieceAreCounted();
    void unitsAreFoundAcrossTheEdgesOfPieces();
    void anythingElseIsUnknown_data();
    void anythingElseIsUnknown();
    void randomUnitsAreJudgedInPeace();
    void commandIsQuotedForTheShell_data();
    void commandIsQuotedForTheShell();

private:
    QString write(QByteArray const& bytes)
    {
        QString const fileName = m_folder.filePath("stream");
        return fx_WriteFile(fileName, bytes) ? fileName : QString();
    }

    QTemporaryDir m_folder;
};

static QString fx_Data(QString const& name) { return QStringLiteral(TEST_DATA "/") + name; }

static constexpr int kPictures = 12; // in each stream

void tst_StreamKind::recordingIsNotForeign_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("ours") << "camera.h264";
    QTest::newRow("another encoder's, of the same shape") << "foreign/x264-keys-alone.264";
}

void tst_StreamKind::recordingIsNotForeign()
{
    QFETCH(QString, file);
    SxStreamKind const kind = fx_StreamKindOf(fx_Data(file));
    QVERIFY(kind.codec == SxStreamKind::Codec::H264);
    QVERIFY(!kind.isForeign);
    QCOMPARE(kind.profile, QString("baseline"));
    QCOMPARE(kind.features, QStringList());
}

void tst_StreamKind::damageMakesNoRecordingForeign_data()
{
    QTest::addColumn<int>("picture"); // whose slice becomes another unit's
    for (int picture = 1; picture < kPictures; ++picture)
        QTest::addRow("%d", picture) << picture;
}

void tst_StreamKind::damageMakesNoRecordingForeign()
{
    QFETCH(int, picture);
    QByteArray bytes = fx_FileBytes(fx_Data("camera.h264"));
    auto at = bytes.indexOf(QByteArray::fromHex("0000000165"));
    for (int i = 0; i < picture; ++i) {
        auto const slice = bytes.indexOf(QByteArray::fromHex("0000000161"), at + 5);
        auto const key = bytes.indexOf(QByteArray::fromHex("0000000165"), at + 5);
        at = key < 0 ? slice : slice < 0 ? key : std::min(slice, key);
    }
    bytes[at + 4] = '\x41';
    QVERIFY(!fx_StreamKindOf(write(bytes)).isForeign);
    if (picture > 1) // with one picture before it nobody could tell
        QVERIFY(!fx_StreamKindOf(write(bytes.left(at + 20))).isForeign);
}

void tst_StreamKind::foreignStreamIsRecognised_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("text");
    auto const h264 = [](char const* features) {
        return QStringLiteral("H.264 of another encoder (%1)").arg(QLatin1String(features));
    };
    QTest::newRow("B pictures") << "x264-b-pictures.264" << h264("B pictures");
    QTest::newRow("slices") << "x264-slices.264" << h264("3 slices a picture");
    QTest::newRow("delimiters") << "x264-delimiters.264" << h264("access unit delimiters");
    QTest::newRow("other unit headers")
        << "x264-baseline.264" << h264("pictures that begin with other units than a recording's");
    QTest::newRow("10 bits") << "x264-10-bits.264" << h264("10 bits");
    QTest::newRow("4:4:4") << "x264-444.264" << h264("4:4:4");
    QTest::newRow("interlaced") << "x264-interlaced.264" << h264("interlaced");
    QTest::newRow("H.265") << "x265.265"
                           << "H.265 video";
    QTest::newRow("H.265, 10 bits") << "x265-10-bits.265"
                                    << "H.265 video (10 bits)";
    QTest::newRow("MPEG-2") << "mpeg2.m2v"
                            << "MPEG-2 video";
    QTest::newRow("MPEG-1") << "mpeg1.m1v"
                            << "MPEG-1 video";
}

void tst_StreamKind::foreignStreamIsRecognised()
{
    QFETCH(QString, file);
    QFETCH(QString, text);
    QString const fileName = fx_Data("foreign/" + file);
    SxStreamKind const kind = fx_StreamKindOf(fileName);
    QVERIFY(kind.isForeign);
    QCOMPARE(fx_ForeignStreamText(kind), text);
    QCOMPARE(QSize(kind.width, kind.height), QSize(64, 48));
    QCOMPARE(fx_CountPictures(fileName, kind.codec), qint64{kPictures});
    // Start codes of three bytes where there were four.
    QByteArray const bytes = fx_FileBytes(fileName);
    QString const shortened =
        write(QByteArray(bytes).replace(QByteArray("\0\0\0\1", 4), QByteArray("\0\0\1", 3)));
    QCOMPARE(fx_ForeignStreamText(fx_StreamKindOf(shortened)), text);
    QCOMPARE(fx_CountPictures(shortened, kind.codec), qint64{kPictures});
}

/// What a sequence parameter set of H.265 says up to its depth (ITU-T H.265, 7.3.2.2.1).
struct SxH265Sps
{
    quint32 sps_max_sub_layers_minus1 = 0;
    quint32 layersThatTell = 0; ///< of these, how many have a profile and a level of their own
    quint32 chroma_format_idc = 1;
    quint32 width = 64;
    quint32 height = 48;
    QVector<quint32> window = {}; ///< left, right, top, bottom; empty: no conformance_window_flag
    quint32 bit_depth_luma_minus8 = 0;
};
Q_DECLARE_METATYPE(SxH265Sps)

/// A stream that has only this set. What is not looked at is full of ones, which no start code is.
static QByteArray fx_H265Stream(SxH265Sps const& sps)
{
    CxBitWriter writer;
    auto const ones = [&writer](int count) {
        for (int i = 0; i < count; ++i)
            writer.bit(true);
    };
    ones(4);
    writer.bits(sps.sps_max_sub_layers_minus1, 3);
    ones(1 + 88 + 8);
    for (quint32 layer = 0; sps.sps_max_sub_layers_minus1 > 0 && layer < 8; ++layer)
        writer.bits(layer < sps.layersThatTell ? 3 : 0, 2);
    for (quint32 layer = 0; layer < sps.layersThatTell; ++layer)
        ones(88 + 8);
    writer.ue(0); // sps_seq_parameter_set_id
    writer.ue(sps.chroma_format_idc);
    if (sps.chroma_format_idc == 3)
        writer.bit(false); // separate_colour_plane_flag
    writer.ue(sps.width);
    writer.ue(sps.height);
    writer.bit(!sps.window.isEmpty());
    for (quint32 const side : sps.window)
        writer.ue(side);
    writer.ue(sps.bit_depth_luma_minus8);
    writer.ue(sps.bit_depth_luma_minus8);
    writer.trailingBits();
    QByteArray stream("\0\0\0\1\x42\x01", 6);
    for (uchar const byte : writer.bytes())
        stream += static_cast<char>(byte);
    return stream;
}

void tst_StreamKind::sizeOfH265IsThatInsideItsWindow_data()
{
    QTest::addColumn<SxH265Sps>("sps");
    QTest::addColumn<QSize>("size"); // 0 x 0: not known
    QTest::addColumn<QString>("text");
    QString const plain("H.265 video");
    QTest::newRow("no window") << SxH265Sps{} << QSize(64, 48) << plain;
    QTest::newRow("4:2:0") << SxH265Sps{0, 0, 1, 64, 48, {1, 2, 3, 4}} << QSize(58, 34) << plain;
    QTest::newRow("4:2:2") << SxH265Sps{0, 0, 2, 64, 48, {1, 2, 3, 4}} << QSize(58, 41) << plain;
    QTest::newRow("4:4:4") << SxH265Sps{0, 0, 3, 64, 48, {1, 2, 3, 4}} << QSize(61, 41) << plain;
    QTest::newRow("grey") << SxH265Sps{0, 0, 0, 64, 48, {1, 2, 3, 4}, 4} << QSize(61, 41)
                          << plain + " (12 bits)";
    QTest::newRow("layers that tell nothing") << SxH265Sps{6, 0} << QSize(64, 48) << plain;
    QTest::newRow("layers that tell")
        << SxH265Sps{2, 2, 1, 64, 48, {0, 0, 0, 4}, 2} << QSize(64, 40) << plain + " (10 bits)";
    QTest::newRow("a layer that tells and one that does not") << SxH265Sps{2, 1} << QSize(64, 48) << plain;
    QTest::newRow("window wider than the picture")
        << SxH265Sps{0, 0, 1, 64, 48, {16, 16, 0, 0}, 2} << QSize(0, 0) << plain;
    QTest::newRow("window of numbers that overflow")
        << SxH265Sps{0, 0, 1, 64, 48, {4294967294, 4294967294, 0, 0}} << QSize(0, 0) << plain;
    QTest::newRow("wider than any") << SxH265Sps{0, 0, 1, 16385, 48} << QSize(0, 0) << plain;
    QTest::newRow("depth that no sample has") << SxH265Sps{0, 0, 1, 64, 48, {}, 9} << QSize(64, 48) << plain;
}

void tst_StreamKind::sizeOfH265IsThatInsideItsWindow()
{
    QFETCH(SxH265Sps, sps);
    QFETCH(QSize, size);
    QFETCH(QString, text);
    SxStreamKind const kind = fx_StreamKindOf(write(fx_H265Stream(sps)));
    QVERIFY(kind.codec == SxStreamKind::Codec::H265);
    QCOMPARE(QSize(kind.width, kind.height), size);
    QCOMPARE(fx_ForeignStreamText(kind), text);
}

void tst_StreamKind::rateBeyondEveryCountIsNone()
{
    CxBitWriter writer; // a sequence parameter set of 64 x 48 pictures (ITU-T H.264, 7.3.2.1.1)
    writer.bits(0x42C01F, 24);
    for (quint32 const number : {0U, 4U, 2U, 1U}) // its id, frame_num's bits, the order, reference pictures
        writer.ue(number);
    writer.bit(false);
    writer.ue(3);
    writer.ue(2);
    writer.bits(0xD, 4); // frame_mbs_only_flag, direct_8x8_inference_flag, no cropping, a VUI
    writer.bits(0, 4);
    writer.bit(true); // timing_info_present_flag
    writer.bits(0x7FFFFFFD, 32);
    writer.bits(0xFFFFFFFB, 32);
    writer.bits(0, 6);
    writer.trailingBits();
    QByteArray stream("\0\0\0\1\x67", 5);
    for (uchar const byte : writer.bytes())
        stream += static_cast<char>(byte);
    SxStreamKind const kind = fx_StreamKindOf(write(stream));
    QCOMPARE(QSize(kind.width, kind.height), QSize(64, 48));
    QVERIFY(!kind.rate.isKnown());
}

void tst_StreamKind::rateIsThatOfTheStream()
{
    SxStreamKind const ours = fx_StreamKindOf(fx_Data("camera.h264"));
    QVERIFY(!ours.rate.isKnown());
    QVERIFY(!ours.saysColours);
    SxStreamKind const foreign = fx_StreamKindOf(fx_Data("foreign/x264-baseline.264"));
    QCOMPARE(foreign.rate.text(), QString("25"));
    QVERIFY(!foreign.saysColours);
}

void tst_StreamKind::picturesBeyondTheFirstPieceAreCounted()
{
    QByteArray const bytes = fx_FileBytes(fx_Data("foreign/x264-slices.264"));
    QString const fileName = write(bytes.repeated(3000)); // 6.6 MB
    QVERIFY(fx_StreamKindOf(fileName).isForeign);
    QCOMPARE(fx_CountPictures(fileName, SxStreamKind::Codec::H264), qint64{3000 * kPictures});
}

void tst_StreamKind::unitsAreFoundAcrossTheEdgesOfPieces()
{
    // A file is read in pieces of 2^20 bytes; units begin at each place around an edge.
    QByteArray const bytes = fx_FileBytes(fx_Data("camera.h264"));
    for (int shift = 0; shift < 1200; shift += shift < 20 || shift > 500 ? 1 : 40) {
        QByteArray const padding((1 << 20) - 600 + shift, '\xff');
        QString const fileName = write(bytes + padding + bytes);
        QCOMPARE(fx_CountPictures(fileName, SxStreamKind::Codec::H264), qint64{2 * kPictures});
        if (shift > 620)
            break;
    }
}

void tst_StreamKind::anythingElseIsUnknown_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("no video at all");
    QTest::newRow("zeros") << QByteArray(100000, '\0');
    QTest::newRow("a start code") << QByteArray("\0\0\1", 3);
    QTest::newRow("start codes") << QByteArray("\0\0\1", 3).repeated(33333);
}

void tst_StreamKind::anythingElseIsUnknown()
{
    QFETCH(QByteArray, bytes);
    SxStreamKind const kind = fx_StreamKindOf(write(bytes));
    QVERIFY(!kind.isForeign);
    QCOMPARE(kind.width, 0);
    QCOMPARE(kind.codecName(), QString());
    QVERIFY(!fx_StreamKindOf(m_folder.filePath("missing")).isForeign);
    QCOMPARE(fx_CountPictures(m_folder.filePath("missing"), SxStreamKind::Codec::H264), qint64{-1});
}

void tst_StreamKind::randomUnitsAreJudgedInPeace()
{
    std::mt19937 random(11);
    for (char const header : QByteArray("\x67\x65\x61\x01\x09\x42\x40\xB3\xB5")) {
        QByteArray bytes;
        while (bytes.size() < 20000) {
            bytes += QByteArray("\0\0\1", 3) + header;
            for (auto i = random() % 40; i > 0; --i)
                bytes += static_cast<char>(random() & random()); // many zeros: long codes
        }
        QString const fileName = write(bytes);
        SxStreamKind const kind = fx_StreamKindOf(fileName);
        QVERIFY(fx_CountPictures(fileName, kind.codec) <= bytes.size());
    }
}

void tst_StreamKind::commandIsQuotedForTheShell_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("command");
    QTest::newRow("plain") << "a/b-1.264"
                           << "minihost record a/b-1.264 out.h264";
    QTest::newRow("blank") << "a b.264"
                           << "minihost record 'a b.264' out.h264";
    QTest::newRow("quote") << "a'b.264"
                           << "minihost record 'a'\\''b.264' out.h264";
    QTest::newRow("dash") << "-b.264"
                          << "minihost record ./-b.264 out.h264";
    QTest::newRow("colon") << "a:b.264"
                           << "minihost record ./a:b.264 out.h264";
    QTest::newRow("colon in a folder") << "a/c:b.264"
                                       << "minihost record a/c:b.264 out.h264";
}

void tst_StreamKind::commandIsQuotedForTheShell()
{
    QFETCH(QString, file);
    QFETCH(QString, command);
    QCOMPARE(fx_CommandToRecord(file), command);
}

QTEST_GUILESS_MAIN(tst_StreamKind)
#include "tst_StreamKind.moc"

#include <QtTest>

#include "EncoderOptions.h"
#include "PluginMessages.h"
#include "RateAdvice.h"
#include "Readable.h"

/// What people read about a recording: advice, numbers, and the plug-in's messages as sentences.
class tst_recordingAdvice : public QObject
{
    Q_OBJECT

private slots:
    void targetBitRate_data();
    void targetBitRate();
    void qualityThatKeepsAll();
    void optionNames();
    void readableSizes_data();
    void readableSizes();
    void readableTimesAndRanges();
    void criticalMessagesBecomeSentences();
    void otherMessagesPass();
};

void tst_recordingAdvice::targetBitRate_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("quality");
    QTest::addColumn<qint64>("bits");
    QTest::newRow("1080p, 5.2, 5") << 1920U << 1080U << 52 << 5 << qint64{41904000};
    QTest::newRow("1080p, 4, 5") << 1920U << 1080U << 40 << 5 << qint64{11098664};
    QTest::newRow("1080p, 4, 1") << 1920U << 1080U << 40 << 1 << qint64{777600};
    QTest::newRow("VGA, 5.2, 5") << 640U << 480U << 52 << 5 << qint64{6208000};
    QTest::newRow("the level's limit is below the least") << 1920U << 1080U << 10 << 5 << qint64{76800};
}

void tst_recordingAdvice::targetBitRate()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(int, level);
    QFETCH(int, quality);
    QFETCH(qint64, bits);
    QCOMPARE(fx_TargetBitRate(width, height, level, quality), bits);
}

void tst_recordingAdvice::qualityThatKeepsAll()
{
    // VGA at level 5.2: quality 5 stands for 6208000 bits a second, 25866.7 bytes a picture.
    SxEncoderOptions used;
    used.quality = 1;
    QVERIFY(fx_QualityThatKeepsAll(640, 480, used, 100 * 25866 * 10 / 14, 100, 19) == 5); // a sixth: less
    QVERIFY(fx_QualityThatKeepsAll(640, 480, used, 100 * 25868 * 10 / 14 + 100, 100, 19) == 6);
    QVERIFY(fx_QualityThatKeepsAll(640, 480, used, 100 * 25866 * 10 / 21, 100, 20) == 5); // a sixth: more
    QVERIFY(!fx_QualityThatKeepsAll(640, 480, used, 100 * 460800, 100, 50));
    used.quality = 7; // the advice is always above what was used
    QVERIFY(fx_QualityThatKeepsAll(640, 480, used, 1000, 100, 1) == 8);
    used.quality = 10;
    QVERIFY(!fx_QualityThatKeepsAll(640, 480, used, 1000, 100, 1));
}

void tst_recordingAdvice::optionNames()
{
    QVERIFY(fx_LevelFromName("1b") == 9);
    QVERIFY(fx_LevelFromName("1B") == 9);
    QVERIFY(fx_LevelFromName("4") == 40);
    QVERIFY(fx_LevelFromName("4.0") == 40);
    QVERIFY(fx_LevelFromName("5.2") == 52);
    QVERIFY(!fx_LevelFromName(".0"));
    QVERIFY(!fx_LevelFromName(""));
    QCOMPARE(fx_LevelNames().size(), 17);
    for (QString const& name : fx_LevelNames())
        QCOMPARE(fx_LevelName(*fx_LevelFromName(name)), name);
    QVERIFY(fx_ProfileFromName("High") == 100);
    QVERIFY(fx_ComplexityFromName("low") == 0);
    QCOMPARE(SxEncoderOptions().toMap().value("h264_level_idc").toInt(), 52);
    QCOMPARE(SxEncoderOptions().toMap().size(), 5);
}

void tst_recordingAdvice::readableSizes_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("0 bytes") << qint64{0};
    QTest::newRow("999 bytes") << qint64{999};
    QTest::newRow("1.00 kB") << qint64{1000};
    QTest::newRow("9.99 kB") << qint64{9994};
    QTest::newRow("10.0 kB") << qint64{9995};
    QTest::newRow("100 kB") << qint64{99950};
    QTest::newRow("1.00 MB") << qint64{999500};
    QTest::newRow("4.61 MB") << qint64{4605156};
    QTest::newRow("1.50 TB") << qint64{1500000000000};
}

void tst_recordingAdvice::readableSizes()
{
    QFETCH(qint64, bytes);
    QCOMPARE(fx_ReadableSize(bytes), QString::fromLatin1(QTest::currentDataTag()));
}

void tst_recordingAdvice::readableTimesAndRanges()
{
    QCOMPARE(fx_ReadableTime(0), QString("0:00"));
    QCOMPARE(fx_ReadableTime(59.6), QString("1:00"));
    QCOMPARE(fx_ReadableTime(3725), QString("1:02:05"));
    QCOMPARE(fx_ReadableBitRate(3684125), QString("3.68 Mbit/s"));
    QCOMPARE(fx_ReadableRanges({}, 3), QString());
    QCOMPARE(fx_ReadableRanges({4}, 3), QString("4"));
    QCOMPARE(fx_ReadableRanges({1, 2, 3, 7, 9, 10}, 3), QString("1-3, 7, 9-10"));
    QCOMPARE(fx_ReadableRanges({1, 2, 3, 7, 9, 10}, 2), QString("1-3, 7, ..."));
    QCOMPARE(fx_Count(1, "picture"), QString("1 picture"));
    QCOMPARE(fx_Count(0, "picture"), QString("0 pictures"));
}

/// Logs as plug-ins do.
static void fx_LogAsPluginsDo(QString const& text)
{
    qCritical() << QThread::currentThreadId() << "/src/H264VideoSaver.cpp"
                << "L" << 31 << ":"
                << "" << text;
}

void tst_recordingAdvice::criticalMessagesBecomeSentences()
{
    CxPluginMessages const messages;
    fx_LogAsPluginsDo("CxH264VideoSaver::save(): Filename is empty.");
    fx_LogAsPluginsDo("CxH264VideoSaver::save(): Filename is empty.");
    fx_LogAsPluginsDo("CxH264VideoSaver::save(): Cannot open the '/a \"b\"\\c: d.h264'.");
    qCritical() << "=== Encoder Params ===\nSize=1x1\n"; // a dump is not for people
    qCritical() << "something else";
    QCOMPARE(CxPluginMessages::take(),
             (QStringList{"Filename is empty.", "Cannot open the '/a \"b\"\\c: d.h264'.", "something else"}));
    QCOMPARE(CxPluginMessages::take(), QStringList());
}

static QStringList s_passed;

void tst_recordingAdvice::otherMessagesPass()
{
    QtMessageHandler const before = qInstallMessageHandler(
        [](QtMsgType, QMessageLogContext const&, QString const& text) { s_passed += text; });
    {
        CxPluginMessages const quiet;
        qWarning("a warning");
        fx_LogAsPluginsDo("CxSaver::save(): No.");
    }
    {
        CxPluginMessages const raw(true);
        qCritical("raw");
    }
    qInstallMessageHandler(before);
    QCOMPARE(s_passed, (QStringList{"a warning", "raw"}));
    QCOMPARE(CxPluginMessages::take(), (QStringList{"No.", "raw"}));
}

QTEST_GUILESS_MAIN(tst_recordingAdvice)
#include "tst_recordingAdvice.moc"

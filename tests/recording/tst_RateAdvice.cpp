#include <QtTest>

#include "RateAdvice.h"

class tst_RateAdvice : public QObject
{
    Q_OBJECT

private slots:
    void targetBitRateFollowsSizeLevelAndQuality_data();
    void targetBitRateFollowsSizeLevelAndQuality();
    void targetOfHugePicturesIsTheLevelsLimit_data();
    void targetOfHugePicturesIsTheLevelsLimit();
    void advisedQualityHasRoomForEveryPicture();
};

void tst_RateAdvice::targetBitRateFollowsSizeLevelAndQuality_data()
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

void tst_RateAdvice::targetBitRateFollowsSizeLevelAndQuality()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(int, level);
    QFETCH(int, quality);
    QFETCH(qint64, bits);
    QCOMPARE(fx_TargetBitRate(width, height, level, quality), bits);
}

void tst_RateAdvice::targetOfHugePicturesIsTheLevelsLimit_data()
{
    // MaxBR of ITU-T H.264, Table A-1, in units of 1200 bits a second.
    QTest::addColumn<int>("level");
    QTest::addColumn<qint64>("maxBr");
    QTest::newRow("1b") << 9 << qint64{128};
    QTest::newRow("1") << 10 << qint64{64};
    QTest::newRow("1.1") << 11 << qint64{192};
    QTest::newRow("1.2") << 12 << qint64{384};
    QTest::newRow("1.3") << 13 << qint64{768};
    QTest::newRow("2") << 20 << qint64{2000};
    QTest::newRow("2.1") << 21 << qint64{4000};
    QTest::newRow("2.2") << 22 << qint64{4000};
    QTest::newRow("3") << 30 << qint64{10000};
    QTest::newRow("3.1") << 31 << qint64{14000};
    QTest::newRow("3.2") << 32 << qint64{20000};
    QTest::newRow("4") << 40 << qint64{20000};
    QTest::newRow("4.1") << 41 << qint64{50000};
    QTest::newRow("4.2") << 42 << qint64{50000};
    QTest::newRow("5") << 50 << qint64{135000};
    QTest::newRow("5.1") << 51 << qint64{240000};
    QTest::newRow("5.2") << 52 << qint64{240000};
}

void tst_RateAdvice::targetOfHugePicturesIsTheLevelsLimit()
{
    QFETCH(int, level);
    QFETCH(qint64, maxBr);
    for (int const quality : {1, 5, 10}) // even the least of such pictures is more than any level allows
        QCOMPARE(fx_TargetBitRate(32768, 32768, level, quality), maxBr * 1200);
}

void tst_RateAdvice::advisedQualityHasRoomForEveryPicture()
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

QTEST_GUILESS_MAIN(tst_RateAdvice)
#include "tst_RateAdvice.moc"

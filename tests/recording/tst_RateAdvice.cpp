#include <QtTest>

#include "RateAdvice.h"

class tst_RateAdvice : public QObject
{
    Q_OBJECT

private slots:
    void targetBitRateFollowsSizeLevelAndQuality_data();
    void targetBitRateFollowsSizeLevelAndQuality();
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

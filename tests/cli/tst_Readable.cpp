#include <QtTest>

#include "Readable.h"

class tst_Readable : public QObject
{
    Q_OBJECT

private slots:
    void sizesHaveThreeDigits_data();
    void sizesHaveThreeDigits();
    void timesRatesAndCountsReadWell();
};

void tst_Readable::sizesHaveThreeDigits_data()
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

void tst_Readable::sizesHaveThreeDigits()
{
    QFETCH(qint64, bytes);
    QCOMPARE(fx_ReadableSize(bytes), QString::fromLatin1(QTest::currentDataTag()));
}

void tst_Readable::timesRatesAndCountsReadWell()
{
    QCOMPARE(fx_ReadableTime(0), QString("0:00"));
    QCOMPARE(fx_ReadableTime(59.6), QString("1:00"));
    QCOMPARE(fx_ReadableTime(3725), QString("1:02:05"));
    QCOMPARE(fx_ReadableBitRate(3684125), QString("3.68 Mbit/s"));
    QCOMPARE(fx_Count(1, "picture"), QString("1 picture"));
    QCOMPARE(fx_Count(0, "picture"), QString("0 pictures"));
}

QTEST_GUILESS_MAIN(tst_Readable)
#include "tst_Readable.moc"

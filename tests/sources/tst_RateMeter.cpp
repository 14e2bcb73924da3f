#include <QtTest>

#include "RateMeter.h"

class tst_RateMeter : public QObject
{
    Q_OBJECT

private slots:
    void nominalRateStays_data();
    void nominalRateStays();
    void unsteadyPicturesHaveAnAverage();
    void meanThatIsCalledTheRateIsAnAverage();
    void clockWithoutNominalRateIsMeasured();
    void withoutClockTheRateIsAsSaid();
    void inputsOfDifferentRatesHaveAnAverage();
    void inputsOfOneRateKeepIt();
};

/// \p count pictures at the times that \p step microseconds apart are, rounded to milliseconds.
static void fx_Add(CxRateMeter& meter, int count, double step)
{
    for (int i = 0; i < count; ++i)
        meter.add(static_cast<quint64>(i * step / 1000 + 0.5) * 1000);
}

void tst_RateMeter::nominalRateStays_data()
{
    QTest::addColumn<int>("count");
    for (int const count : {0, 1, 2, 3, 1000})
        QTest::newRow(qPrintable(QString::number(count))) << count;
}

void tst_RateMeter::nominalRateStays()
{
    QFETCH(int, count);
    CxRateMeter meter;
    meter.beginInput({60000, 1001}, true);
    fx_Add(meter, count, 1e6 * 1001 / 60000);
    QCOMPARE(meter.rate().exact(), QStringLiteral("60000/1001"));
    QVERIFY(!meter.rate().isAverage);
}

void tst_RateMeter::unsteadyPicturesHaveAnAverage()
{
    CxRateMeter meter;
    meter.beginInput({30}, true);
    fx_Add(meter, 100, 1e6 / 12.5); // a webcam in the dark
    QCOMPARE(meter.rate().text(), QStringLiteral("12.5"));
    QVERIFY(meter.rate().isAverage);
}

void tst_RateMeter::meanThatIsCalledTheRateIsAnAverage()
{
    CxRateMeter meter;
    meter.beginInput({10}, true);
    for (quint64 i = 0; i < 20; ++i)
        meter.add(i / 2 * 200000 + i % 2 * 40000); // by turns 40 and 160 ms
    QCOMPARE(meter.rate().text(), QStringLiteral("10"));
    QVERIFY(meter.rate().isAverage);
}

void tst_RateMeter::clockWithoutNominalRateIsMeasured()
{
    CxRateMeter meter;
    meter.beginInput({}, true);
    meter.add(0);
    QVERIFY(!meter.rate().isKnown());
    meter.add(40000);
    QCOMPARE(meter.rate().text(), QStringLiteral("25"));
    QVERIFY(meter.rate().isAverage);
}

void tst_RateMeter::withoutClockTheRateIsAsSaid()
{
    CxRateMeter meter;
    meter.beginInput({}, false);
    fx_Add(meter, 10, 1e6 / 30);
    QVERIFY(!meter.rate().isKnown());
    CxRateMeter told;
    told.beginInput({25}, false);
    fx_Add(told, 10, 1e6 / 30);
    QCOMPARE(told.rate().exact(), QStringLiteral("25"));
}

void tst_RateMeter::inputsOfDifferentRatesHaveAnAverage()
{
    CxRateMeter meter;
    meter.beginInput({25}, true);
    meter.beginInput({50}, true);
    for (int i = 0; i <= 10; ++i)
        meter.add(static_cast<quint64>(i) * 30000);
    QVERIFY(meter.rate().isAverage);
    QCOMPARE(meter.rate().text(), QStringLiteral("33.333"));
}

void tst_RateMeter::inputsOfOneRateKeepIt()
{
    CxRateMeter meter;
    meter.beginInput({25}, true);
    meter.beginInput({25}, true);
    fx_Add(meter, 10, 40000);
    QCOMPARE(meter.rate().exact(), QStringLiteral("25"));
}

QTEST_APPLESS_MAIN(tst_RateMeter)
#include "tst_RateMeter.moc"

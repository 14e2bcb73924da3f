#include <QtTest>

#include "PictureRate.h"

class tst_PictureRate : public QObject
{
    Q_OBJECT

private slots:
    void descriptionsTellWhereARateIsFrom();
    void textsAreRead_data();
    void textsAreRead();
    void whatIsNoRateIsRefused_data();
    void whatIsNoRateIsRefused();
};

void tst_PictureRate::descriptionsTellWhereARateIsFrom()
{
    QCOMPARE(SxPictureRate().described(), QString("30 pictures a second (assumed)"));
    QCOMPARE((SxPictureRate{30000, 1001}).described(), QString("29.97 pictures a second"));
    QCOMPARE((SxPictureRate{12500, 1000, true}).described(), QString("12.5 pictures a second (average)"));
}

void tst_PictureRate::textsAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("exact");
    QTest::addColumn<QString>("shown");
    QTest::newRow("whole") << "25"
                           << "25"
                           << "25";
    QTest::newRow("fraction") << "30000/1001"
                              << "30000/1001"
                              << "29.97";
    QTest::newRow("decimals") << "29.97"
                              << "29970/1000"
                              << "29.97";
    QTest::newRow("one decimal") << "7.5"
                                 << "7500/1000"
                                 << "7.5";
    QTest::newRow("slow") << "1/60"
                          << "1/60"
                          << "0.017";
    QTest::newRow("fast") << "100000"
                          << "100000"
                          << "100000";
}

void tst_PictureRate::textsAreRead()
{
    QFETCH(QString, text);
    std::optional<SxPictureRate> const rate = fx_RateFromText(text);
    QVERIFY(rate);
    QVERIFY(rate->isKnown());
    QTEST(rate->exact(), "exact");
    QTEST(rate->text(), "shown");
}

void tst_PictureRate::whatIsNoRateIsRefused_data()
{
    QTest::addColumn<QString>("text");
    for (char const* text : {"", "0", "-25", "25/0", "0/1", "1/901", "100001", "1e3", "25 ", "25.", ".5",
                             "nan", "99999999999", "30000/1001/1"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void tst_PictureRate::whatIsNoRateIsRefused()
{
    QFETCH(QString, text);
    QVERIFY(!fx_RateFromText(text));
}

QTEST_APPLESS_MAIN(tst_PictureRate)
#include "tst_PictureRate.moc"

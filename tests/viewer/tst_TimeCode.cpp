#include <QTest>

#include "TimeCode.h"

class tst_TimeCode : public QObject
{
    Q_OBJECT

private slots:
    void timesAreReadAsPeopleWriteThem_data();
    void timesAreReadAsPeopleWriteThem();
    void timeShownLeadsBackToItsPicture_data();
    void timeShownLeadsBackToItsPicture();
    void timesBetweenPicturesBelongToTheOneBefore();
};

void tst_TimeCode::timesAreReadAsPeopleWriteThem_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("milliseconds"); // -1: no time
    QTest::newRow("whole") << "1:02:03.004" << 3723004;
    QTest::newRow("minutes") << "2:03" << 123000;
    QTest::newRow("long minutes") << "90:00" << 5400000;
    QTest::newRow("seconds") << "62.5 s" << 62500;
    QTest::newRow("seconds alone") << "5s" << 5000;
    QTest::newRow("comma") << " 0,25 " << 250;
    QTest::newRow("beyond milliseconds") << "0.0019" << 1;
    QTest::newRow("number") << "62" << -1;
    QTest::newRow("60 seconds") << "0:60" << -1;
    QTest::newRow("60 minutes") << "0:60:00" << -1;
    QTest::newRow("negative") << "-1:00" << -1;
    QTest::newRow("words") << "noon" << -1;
    QTest::newRow("empty") << "" << -1;
    QTest::newRow("huge") << "99999999999 s" << -1;
}

void tst_TimeCode::timesAreReadAsPeopleWriteThem()
{
    QFETCH(QString, text);
    QFETCH(int, milliseconds);
    QCOMPARE(fx_TimeFromText(text).value_or(-1), qint64{milliseconds});
}

void tst_TimeCode::timeShownLeadsBackToItsPicture_data()
{
    QTest::addColumn<double>("fps");
    for (double const fps : {0.5, 24000.0 / 1001.0, 25.0, 29.97, 30.0, 50.0, 60000.0 / 1001.0, 240.0, 999.0})
        QTest::addRow("%g", fps) << fps;
}

void tst_TimeCode::timeShownLeadsBackToItsPicture()
{
    QFETCH(double, fps);
    for (int number = 0; number < 5000; ++number)
        QCOMPARE(fx_PictureAt(*fx_TimeFromText(fx_TimeCode(number, fps)), fps), number);
}

void tst_TimeCode::timesBetweenPicturesBelongToTheOneBefore()
{
    QCOMPARE(fx_PictureAt(0, 30.0), 0);
    QCOMPARE(fx_PictureAt(32, 30.0), 0);
    QCOMPARE(fx_PictureAt(33, 30.0), 1);
    QCOMPARE(fx_PictureAt(99, 30.0), 2);
    QCOMPARE(fx_PictureAt(100, 30.0), 3);
    QCOMPARE(fx_PictureAt(1, 2500.0), 4); // begins at 1.6 ms
    QVERIFY(fx_PictureAt(40000000000, 1000.0) >= 1000000000);
}

QTEST_GUILESS_MAIN(tst_TimeCode)
#include "tst_TimeCode.moc"

#include <QtTest>
#include <climits>

#include "PictureRanges.h"

class tst_PictureRanges : public QObject
{
    Q_OBJECT

private slots:
    void numbersReadAsRanges();
    void textsAreReadBack();
    void textsThatAreNoRangesAreRefused_data();
    void textsThatAreNoRangesAreRefused();
};

void tst_PictureRanges::numbersReadAsRanges()
{
    QCOMPARE(fx_ReadableRanges({}, 3), QString());
    QCOMPARE(fx_ReadableRanges({4}, 3), QString("4"));
    QCOMPARE(fx_ReadableRanges({1, 2, 3, 7, 9, 10}, 3), QString("1-3, 7, 9-10"));
    QCOMPARE(fx_ReadableRanges({1, 2, 3, 7, 9, 10}, 2), QString("1-3, 7, ..."));
    QCOMPARE(fx_RangesText({{0, INT_MAX}}, 1), QString("0-2147483647"));
}

void tst_PictureRanges::textsAreReadBack()
{
    QString const text("0, 2-3, 5-99, 101");
    auto const ranges = fx_RangesFromText(text, 102);
    QVERIFY(ranges);
    QCOMPARE(fx_RangesText(*ranges, 0), text);
    QCOMPARE(fx_CountOf(*ranges), qint64{99});
    QVERIFY(fx_RangesFromText(QString(), 0)->isEmpty());
    QCOMPARE(fx_CountOf(*fx_RangesFromText("0-2147483645", INT_MAX)), qint64{2147483646});
}

void tst_PictureRanges::textsThatAreNoRangesAreRefused_data()
{
    QTest::addColumn<QString>("text");
    for (char const* text : {"3-2", "-1", "1-", "1-2-3", "1,2", "1, ", "5, 4", "1-4, 4", "1-4, 5", "a", "100",
                             "90-100", "99999999999", "1, 2-99999999999"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void tst_PictureRanges::textsThatAreNoRangesAreRefused()
{
    QFETCH(QString, text);
    QVERIFY(!fx_RangesFromText(text, 100));
}

QTEST_APPLESS_MAIN(tst_PictureRanges)
#include "tst_PictureRanges.moc"

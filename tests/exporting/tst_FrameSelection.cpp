#include <QtTest>

#include "FrameSelection.h"

/// The frames that a user asks for on a command line.
class tst_FrameSelection : public QObject
{
    Q_OBJECT

private slots:
    void framesAreThoseAskedForInTheirOrder_data();
    void framesAreThoseAskedForInTheirOrder();
    void wrongSelectionIsNamed_data();
    void wrongSelectionIsNamed();
    void missingFrameIsNamed_data();
    void missingFrameIsNamed();
};

void tst_FrameSelection::framesAreThoseAskedForInTheirOrder_data()
{
    QTest::addColumn<QString>("spec");
    QTest::addColumn<QVector<int>>("expected");

    QTest::newRow("one") << "0" << QVector<int>{0};
    QTest::newRow("leading zeros") << "0007" << QVector<int>{7};
    QTest::newRow("the last") << "11" << QVector<int>{11};
    QTest::newRow("range") << "3-6" << QVector<int>{3, 4, 5, 6};
    QTest::newRow("range of one") << "4-4" << QVector<int>{4};
    QTest::newRow("backwards") << "6-3" << QVector<int>{6, 5, 4, 3};
    QTest::newRow("step") << "0-11:5" << QVector<int>{0, 5, 10};
    QTest::newRow("step that meets the end") << "1-11:5" << QVector<int>{1, 6, 11};
    QTest::newRow("step longer than the range") << "2-4:100" << QVector<int>{2};
    QTest::newRow("step over an end that is not there") << "0-14:5" << QVector<int>{0, 5, 10};
    QTest::newRow("step backwards") << "11-0:5" << QVector<int>{11, 6, 1};
    QTest::newRow("to the end") << "9-" << QVector<int>{9, 10, 11};
    QTest::newRow("to the end with a step") << "2-:4" << QVector<int>{2, 6, 10};
    QTest::newRow("the last to the end") << "11-" << QVector<int>{11};
    QTest::newRow("key") << "key" << QVector<int>{0, 5, 10};
    QTest::newRow("all") << "all" << QVector<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    QTest::newRow("list, its order kept") << "7,0,3-2,key" << QVector<int>{7, 0, 3, 2, 0, 5, 10};
    QTest::newRow("twice") << "5,5,4-6" << QVector<int>{5, 5, 4, 5, 6};
    QTest::newRow("blanks") << "1, 2 ,3" << QVector<int>{1, 2, 3};
    QTest::newRow("largest step") << "0-11:999999999999" << QVector<int>{0};
}

void tst_FrameSelection::framesAreThoseAskedForInTheirOrder()
{
    QFETCH(QString, spec);
    QFETCH(QVector<int>, expected);
    QString error;
    std::optional<CxFrameSelection> const parsed = CxFrameSelection::parse(spec, error);
    QVERIFY2(parsed, qPrintable(error));
    std::optional<QVector<int>> const frames = parsed->frames(12, {0, 5, 10}, error);
    QVERIFY2(frames, qPrintable(error));
    QCOMPARE(*frames, expected);
    QCOMPARE(error, QString());
}

void tst_FrameSelection::wrongSelectionIsNamed_data()
{
    QTest::addColumn<QString>("spec");
    QTest::addColumn<QString>("named"); // what the sentence quotes

    for (char const* spec : {"", "x", "-", "-3", "-3-5", "1.5", "1:2", "1-2:", "1-2:0", "1--2", "1-2-3",
                             "Key", "0x10", "1234567890123", "+1"})
        QTest::newRow(spec) << spec << spec;
    QTest::newRow("empty item") << "1,,2"
                                << "";
    QTest::newRow("ends with a comma") << "1,"
                                       << "";
    QTest::newRow("one wrong of three") << "1,two,3"
                                        << "two";
}

void tst_FrameSelection::wrongSelectionIsNamed()
{
    QFETCH(QString, spec);
    QFETCH(QString, named);
    QString error;
    QVERIFY(!CxFrameSelection::parse(spec, error));
    QVERIFY2(error.startsWith("--frames takes ") && error.endsWith("not '" + named + "'."),
             qPrintable(error));
}

void tst_FrameSelection::missingFrameIsNamed_data()
{
    QTest::addColumn<QString>("spec");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("sentence");

    QString const of300("the recording has 300 frames, 0 to 299.");
    QTest::newRow("number") << "4711" << 300 << "frame 4711: " + of300;
    QTest::newRow("just behind the last") << "300" << 300 << "frame 300: " + of300;
    QTest::newRow("range") << "290-310" << 300 << "frame 300: " + of300;
    QTest::newRow("range with a step") << "0-310:155" << 300 << "frame 310: " + of300;
    QTest::newRow("backwards") << "310-0" << 300 << "frame 310: " + of300;
    QTest::newRow("to the end from behind it") << "300-" << 300 << "frame 300: " + of300;
    QTest::newRow("range without end") << "0-999999999999" << 300 << "frame 300: " + of300;
    QTest::newRow("huge") << "999999999999" << 300 << "frame 999999999999: " + of300;
    QTest::newRow("among others") << "0,300,1" << 300 << "frame 300: " + of300;
    QTest::newRow("of one") << "1" << 1 << "frame 1: the recording has one frame, number 0.";
}

void tst_FrameSelection::missingFrameIsNamed()
{
    QFETCH(QString, spec);
    QFETCH(int, count);
    QFETCH(QString, sentence);
    QString error;
    std::optional<CxFrameSelection> const parsed = CxFrameSelection::parse(spec, error);
    QVERIFY2(parsed, qPrintable(error));
    QVERIFY(!parsed->frames(count, {0}, error));
    QCOMPARE(error, sentence);
}

QTEST_GUILESS_MAIN(tst_FrameSelection)
#include "tst_FrameSelection.moc"

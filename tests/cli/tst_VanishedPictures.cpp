#include <QtTest>

#include "VanishedPictures.h"

/// Pictures that a recording lost, found by what is left of it. A recording here is a word: a digit is a
/// frame with that frame_num, K a key frame, ? one whose slice is unreadable, + one with a unit behind it.
class tst_VanishedPictures : public QObject
{
    Q_OBJECT

private slots:
    void vanishedPicturesAreFound_data();
    void vanishedPicturesAreFound();
    void frameNumBeginsAnewWithoutLoss();
    void encoderThatOftenBeginsGroupsIsNotSuspected();
};

static QVector<SxFrameMark> fx_Marks(QByteArray const& word)
{
    QVector<SxFrameMark> marks;
    for (char const c : word) {
        if (c == '+') {
            ++marks.last().extraUnits;
            continue;
        }
        SxFrameMark mark;
        mark.frame = static_cast<int>(marks.size());
        mark.isKey = c == 'K';
        mark.frameNum = mark.isKey ? 0 : c == '?' ? -1 : c - '0';
        marks.append(mark);
    }
    return marks;
}

/// "1 before 7", "perhaps 1 before 7", with commas between
static QString fx_Text(QVector<SxVanishedPictures> const& found)
{
    QStringList words;
    for (SxVanishedPictures const& place : found)
        words += QStringLiteral("%1%2 before %3")
                     .arg(QLatin1String(place.isCertain ? "" : "perhaps "))
                     .arg(place.pictures)
                     .arg(place.beforeFrame);
    return words.join(QStringLiteral(", "));
}

void tst_VanishedPictures::vanishedPicturesAreFound_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QString>("found");
    QTest::newRow("whole") << QByteArray("K123K123K123") << "";
    QTest::newRow("whole, breaks off") << QByteArray("K123K123K1") << "";
    QTest::newRow("keys alone") << QByteArray("KKKK") << "";
    QTest::newRow("one group") << QByteArray("K1234567") << "";
    QTest::newRow("empty") << QByteArray() << "";
    QTest::newRow("one in a group") << QByteArray("K123K13K123K123") << "1 before 6";
    QTest::newRow("two in a group") << QByteArray("K123K3K123K123") << "2 before 5";
    QTest::newRow("a key") << QByteArray("K123123K123K123") << "1 before 4";
    QTest::newRow("a key and one more") << QByteArray("K12323K123K123") << "2 before 4";
    QTest::newRow("the last of a group") << QByteArray("K123K12K123K123") << "perhaps 1 before 7";
    QTest::newRow("the last of a group, a unit left") << QByteArray("K123K12+K123K123") << "1 before 7";
    QTest::newRow("one in a group, a unit left") << QByteArray("K123K1+3K123K123") << "1 before 6";
    QTest::newRow("in the last group") << QByteArray("K123K123K123K13") << "1 before 14";
    QTest::newRow("in a lone group") << QByteArray("K124567") << "1 before 3";
    QTest::newRow("two places") << QByteArray("K13K123K123K23") << "1 before 2, 1 before 12";
    // Damage in a header is no loss.
    QTest::newRow("unreadable slice") << QByteArray("K1?3K123K123") << "";
    QTest::newRow("wrong number") << QByteArray("K193K123K123") << "";
    QTest::newRow("wrong number at the end") << QByteArray("K129K123K123") << "";
    QTest::newRow("wrong number, too small") << QByteArray("K113K123K123") << "";
}

void tst_VanishedPictures::vanishedPicturesAreFound()
{
    QFETCH(QByteArray, word);
    QFETCH(QString, found);
    QCOMPARE(fx_Text(fx_VanishedPictures(fx_Marks(word), 256)), found);
}

void tst_VanishedPictures::frameNumBeginsAnewWithoutLoss()
{
    QCOMPARE(fx_Text(fx_VanishedPictures(fx_Marks("K1234567012345670"), 8)), QString());
    QCOMPARE(fx_Text(fx_VanishedPictures(fx_Marks("K123456712345670"), 8)), QString("1 before 8"));
}

void tst_VanishedPictures::encoderThatOftenBeginsGroupsIsNotSuspected()
{
    QCOMPARE(fx_Text(fx_VanishedPictures(fx_Marks("K123K1K123K12K123K123"), 256)), QString());
    QCOMPARE(fx_Text(fx_VanishedPictures(fx_Marks("K123K1K123K12K13K123K123"), 256)), QString("1 before 15"));
}

QTEST_GUILESS_MAIN(tst_VanishedPictures)
#include "tst_VanishedPictures.moc"

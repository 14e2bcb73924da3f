#include <QtTest>

#include "VanishedPictures.h"

/// Pictures that a recording lost, found by what is left of it. A recording here is a word: a digit is a
/// frame with that frame_num, K a key frame with the next
/// idr_pic_id, a to z one with the 1st to the 26th, * one whose id is damaged, ? one whose slice is
/// unreadable, + one with a unit behind it.
class tst_VanishedPictures : public QObject
{
    Q_OBJECT

private slots:
    void vanishedPicturesAreFound_data();
    void vanishedPicturesAreFound();
    void frameNumBeginsAnewWithoutLoss();
    void encoderThatOftenBeginsGroupsIsNotSuspected();
    void keysThatVanishedAreCounted_data();
    void keysThatVanishedAreCounted();
    void keysAreCountedAcrossTheHighestId();
};

static QVector<SxFrameMark> fx_Marks(QByteArray const& word)
{
    QVector<SxFrameMark> marks;
    int id = 0;
    for (char const c : word) {
        if (c == '+') {
            ++marks.last().extraUnits;
            continue;
        }
        SxFrameMark mark;
        mark.frame = static_cast<int>(marks.size());
        mark.isKey = c == 'K' || c == '*' || (c >= 'a' && c <= 'z');
        mark.frameNum = mark.isKey ? 0 : c == '?' ? -1 : c - '0';
        if (mark.isKey)
            mark.idrPicId = c == '*' ? 4711 : (id = c == 'K' ? id + 1 : c - 'a' + 1);
        marks.append(mark);
    }
    return marks;
}

/// "1 before 7", "perhaps 1 before 7", "about 4 with 1 key before 7", with commas between
static QString fx_Text(QVector<SxVanishedPictures> const& found)
{
    QStringList words;
    for (SxVanishedPictures const& place : found)
        words +=
            QStringLiteral("%1%2%3 before %4")
                .arg(QLatin1String(!place.isCertain      ? "perhaps "
                                   : place.keyFrames > 0 ? "about "
                                                         : ""))
                .arg(place.pictures)
                .arg(place.keyFrames > 0 ? QStringLiteral(" with %1 key").arg(place.keyFrames) : QString())
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

void tst_VanishedPictures::keysThatVanishedAreCounted_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QString>("found");
    QTest::newRow("a group") << QByteArray("a123b123d123e123") << "about 4 with 1 key before 8";
    QTest::newRow("three groups") << QByteArray("a123b123f123g123") << "about 12 with 3 key before 8";
    QTest::newRow("before the last key") << QByteArray("a123b123f123") << "about 12 with 3 key before 8";
    QTest::newRow("in two places") << QByteArray("a123b123d123e123g123")
                                   << "about 4 with 1 key before 8, about 4 with 1 key before 16";
    QTest::newRow("one behind the other") << QByteArray("a123b123d123f123g123h123")
                                          << "about 4 with 1 key before 8, about 4 with 1 key before 12";
    QTest::newRow("uneven groups") << QByteArray("a1b12c123e1234f12") << "about 4 with 1 key before 9";
    QTest::newRow("behind a longer group")
        << QByteArray("a12b1234d12e12f12") << "about 3 with 1 key before 8";
    QTest::newRow("keys alone") << QByteArray("abcfgh") << "about 2 with 2 key before 3";
    // Together with what the numbers within the groups say.
    QTest::newRow("ragged") << QByteArray("a12b12323f123g123h123")
                            << "perhaps 1 before 3, about 10 with 3 key before 7";
    QTest::newRow("a key whose pictures are left") << QByteArray("a123123c123d123e123") << "1 before 4";
    QTest::newRow("a key and one more") << QByteArray("a12323c123d123e123") << "2 before 4";
    QTest::newRow("a group and one elsewhere")
        << QByteArray("a123b123d13e123f123") << "about 4 with 1 key before 8, 1 before 10";
    // No loss:
    QTest::newRow("another recording behind") << QByteArray("a123b123c123a123b123c123") << "";
    QTest::newRow("another recording of one group behind") << QByteArray("a123b123c123a123") << "";
    QTest::newRow("the end of another behind") << QByteArray("e123f123g123c123d123e123") << "";
    QTest::newRow("a cut off beginning") << QByteArray("e123f123g123") << "";
    QTest::newRow("one id") << QByteArray("a123a123a123c123") << "";
    QTest::newRow("two ids that alternate") << QByteArray("a123b123a123b123b123a123") << "";
    QTest::newRow("two ids that alternate, two apart") << QByteArray("a123c123a123c123a123") << "";
    QTest::newRow("no count") << QByteArray("a123h123c123x123p123") << "";
    QTest::newRow("two keys") << QByteArray("a123h123") << "";
    QTest::newRow("damaged id") << QByteArray("a123b123*123d123e123f123g123") << "";
    QTest::newRow("damaged id, too small") << QByteArray("c123d123b123f123g123h123i123") << "";
    QTest::newRow("damaged id beside a loss")
        << QByteArray("a123b123c123*123g123h123i123j123") << "about 8 with 2 key before 16";
}

void tst_VanishedPictures::keysThatVanishedAreCounted()
{
    QFETCH(QByteArray, word);
    QFETCH(QString, found);
    QCOMPARE(fx_Text(fx_VanishedPictures(fx_Marks(word), 256)), found);
}

void tst_VanishedPictures::keysAreCountedAcrossTheHighestId()
{
    QVector<SxFrameMark> marks = fx_Marks("KKKKKK");
    for (int i = 0; i < marks.size(); ++i)
        marks[i].idrPicId = (65533 + i) % 65536;
    QCOMPARE(fx_Text(fx_VanishedPictures(marks, 256)), QString());
    marks.removeAt(1);
    QCOMPARE(fx_Text(fx_VanishedPictures(marks, 256)), QString("about 1 with 1 key before 2"));
}

QTEST_GUILESS_MAIN(tst_VanishedPictures)
#include "tst_VanishedPictures.moc"

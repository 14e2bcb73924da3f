#include <QtTest>

#include "SkippedPictures.h"

/// Which pictures were skipped, and which a broken-off stream still holds, from the stream's size alone.
class tst_SkippedPictures : public QObject
{
    Q_OBJECT

private slots:
    void pictureThatAddsNoByteIsSkipped();
    void onlyWholePicturesCount();
    void streamWithoutAPictureHoldsNone();
};

void tst_SkippedPictures::pictureThatAddsNoByteIsSkipped()
{
    CxSkippedPictures pictures;
    QVERIFY(pictures.isSkipped(0)); // the very first, too
    QVERIFY(!pictures.isSkipped(100));
    QVERIFY(pictures.isSkipped(100));
    QVERIFY(pictures.isSkipped(100));
    QVERIFY(!pictures.isSkipped(101));
    QCOMPARE(pictures.bytes(), qint64{101});
}

void tst_SkippedPictures::onlyWholePicturesCount()
{
    CxSkippedPictures pictures;
    for (qint64 const end : {100, 100, 130, 200})
        pictures.isSkipped(end);
    struct
    {
        qint64 bytes;
        int coded;
        qint64 end;
    } const cuts[] = {{0, 0, 0},     {99, 0, 0},    {100, 1, 100}, {129, 1, 100},
                      {130, 2, 130}, {199, 2, 130}, {200, 3, 200}, {9999, 3, 200}};
    for (auto const& cut : cuts) {
        QCOMPARE(pictures.codedWithin(cut.bytes), cut.coded);
        QCOMPARE(pictures.endWithin(cut.bytes), cut.end);
    }
}

void tst_SkippedPictures::streamWithoutAPictureHoldsNone()
{
    CxSkippedPictures const pictures;
    QCOMPARE(pictures.bytes(), qint64{0});
    QCOMPARE(pictures.codedWithin(1000), 0);
    QCOMPARE(pictures.endWithin(1000), qint64{0});
}

QTEST_APPLESS_MAIN(tst_SkippedPictures)
#include "tst_SkippedPictures.moc"

#include <QtTest>

#include "PictureWriter.h"
#include "support/Rgb32Picture.h"

/// Pictures as bytes of files and streams. That other programs read the same from them, the export command's
/// test shows.
class tst_PictureWriter : public QObject
{
    Q_OBJECT

private slots:
    void fileHoldsEachPictureWhateverItsSize();
    void suffixCountsInAnyCase();
    void pictureThatCannotBeMadeIsRefusedWithTheCause_data();
    void pictureThatCannotBeMadeIsRefusedWithTheCause();
    void streamHasItsHeaderApart_data();
    void streamHasItsHeaderApart();
    void streamOfAPictureWithoutPixelsFails();
    void formatsHaveNamesInAnyCase();
};

void tst_PictureWriter::fileHoldsEachPictureWhateverItsSize()
{
    CxPictureEncoder encoder("ppm");
    QString error;
    CxOwnedPicture picture;
    QVERIFY(fx_FillRgb32(picture, 4, 2, 'b', 'g', 'r'));
    QCOMPARE(encoder.encode(picture.get(), error).value_or(""),
             "P6\n4 2\n255\n" + QByteArray("rgb").repeated(8));
    QVERIFY(fx_FillRgb32(picture, 2, 6, 'B', 'G', 'R'));
    QCOMPARE(encoder.encode(picture.get(), error).value_or(""),
             "P6\n2 6\n255\n" + QByteArray("RGB").repeated(12));
    QCOMPARE(error, QString());
}

void tst_PictureWriter::suffixCountsInAnyCase()
{
    CxOwnedPicture picture;
    QVERIFY(fx_FillRgb32(picture, 16, 16, 10, 20, 30));
    QString error;
    for (QString const& suffix : CxPictureEncoder::suffixes()) {
        auto const small = CxPictureEncoder(suffix).encode(picture.get(), error);
        auto const large = CxPictureEncoder(suffix.toUpper()).encode(picture.get(), error);
        QVERIFY2(small && small == large, qPrintable(suffix));
    }
}

void tst_PictureWriter::pictureThatCannotBeMadeIsRefusedWithTheCause_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<quint32>("width");
    QTest::addColumn<QString>("cause");
    QTest::newRow("no file of ours") << "txt" << 16U << "Encoder not found";
    QTest::newRow("no pixels in PNG") << "png" << 0U << "Invalid argument";
    QTest::newRow("no pixels in JPEG") << "jpg" << 0U << "Invalid argument";
}

void tst_PictureWriter::pictureThatCannotBeMadeIsRefusedWithTheCause()
{
    QFETCH(QString, suffix);
    QFETCH(quint32, width);
    CxOwnedPicture picture;
    QVERIFY(fx_FillRgb32(picture, 16, 16, 0, 0, 0));
    picture.get().width = width;
    CxPictureEncoder encoder(suffix);
    QString error;
    QVERIFY(!encoder.encode(picture.get(), error));
    QTEST(error, "cause");
}

void tst_PictureWriter::streamHasItsHeaderApart_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("beginning");
    QTest::addColumn<QByteArray>("each"); // picture of black
    QByteArray const black = QByteArray(8, 16) + QByteArray(4, char(128));
    QTest::newRow("y4m") << "y4m"
                         << QByteArray("YUV4MPEG2 W4 H2 F30:1 Ip A1:1 C420jpeg XCOLORRANGE=LIMITED\n")
                         << "FRAME\n" + black;
    QTest::newRow("bgra") << "bgra" << QByteArray() << QByteArray("\0\0\0\xFF", 4).repeated(8);
    QTest::newRow("rgb24") << "rgb24" << QByteArray() << QByteArray(24, 0);
}

void tst_PictureWriter::streamHasItsHeaderApart()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, beginning);
    QFETCH(QByteArray, each);
    CxPictureStream stream(*CxPictureStream::formatFromName(name));
    CxOwnedPicture picture;
    QVERIFY(fx_FillRgb32(picture, 4, 2, 0, 0, 0));
    QCOMPARE(stream.header({4, 2}, {}), beginning);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(stream.next(picture.get()).value_or("none"), each);
}

void tst_PictureWriter::streamOfAPictureWithoutPixelsFails()
{
    for (auto const format : {CxPictureStream::Format::Y4m, CxPictureStream::Format::Rgb24}) {
        SxPicBuf nothing;
        nothing.setPicFormat(fx_PackedFormat(0, 0, 4, 8));
        QVERIFY(!CxPictureStream(format).next(nothing));
    }
}

void tst_PictureWriter::formatsHaveNamesInAnyCase()
{
    QCOMPARE(CxPictureStream::formatNames(), (QStringList{"y4m", "bgra", "rgb24"}));
    QVERIFY(CxPictureStream::formatFromName("Y4M") == CxPictureStream::Format::Y4m);
    QVERIFY(!CxPictureStream::formatFromName("avi"));
}

QTEST_GUILESS_MAIN(tst_PictureWriter)
#include "tst_PictureWriter.moc"

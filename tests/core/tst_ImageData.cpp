#include <QtTest>

#include "CxImageData.h"
#include "support/AllocatedPicture.h"
#include "support/MemoryInUse.h"

class tst_ImageData : public QObject
{
    Q_OBJECT

private slots:
    void holdsThePictureSet();
    void releasesWhatItReplaces();
};

void tst_ImageData::holdsThePictureSet()
{
    CxImageData image;
    QVERIFY(image.picBuf());
    QVERIFY(!image.picBuf()->data);

    SxPicBuf picture = fx_Allocated(fx_Format(8, 8));
    picture.timestamp = 33333;
    image.setPicBuf(picture);
    QCOMPARE(image.picBuf()->data, picture.data);
    QCOMPARE(image.picBuf()->width, 8U);
    QCOMPARE(image.picBuf()->timestamp, quint64(33333));

    // Its own picture again, restamped: the pixels stay.
    SxPicBuf restamped = *image.picBuf();
    restamped.timestamp = 66666;
    image.setPicBuf(restamped);
    image.setPicBuf(*image.picBuf());
    QCOMPARE(image.picBuf()->timestamp, quint64(66666));
    image.picBuf()->data[0] = 1; // the address sanitizer would report a freed picture
}

void tst_ImageData::releasesWhatItReplaces()
{
    std::size_t const before = fx_MemoryBytes();
    {
        CxImageData image;
        for (quint32 i = 0; i < 8; ++i)
            image.setPicBuf(fx_Allocated(fx_Format(1024, 1024 + i)));
        // The one held and the three kept for later, in pages of 2 MiB.
        QVERIFY(fx_MemoryBytes() - before < 26 * kMiB);
        image.setPicBuf(SxPicBuf());
        QVERIFY(fx_MemoryBytes() < before + kMiB);
        image.setPicBuf(fx_Allocated(fx_Format(1024, 1024)));
        QVERIFY(fx_MemoryBytes() - before >= 4 * kMiB);
    }
    QVERIFY(fx_MemoryBytes() < before + kMiB);
}

QTEST_APPLESS_MAIN(tst_ImageData)
#include "tst_ImageData.moc"

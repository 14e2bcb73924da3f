#include <QtTest>

#include "ContactSheet.h"
#include "support/Rgb32Picture.h"

class tst_ContactSheet : public QObject
{
    Q_OBJECT

private slots:
    void tilesLieInRowsWithTheirNumbersBelow();
    void sheetLargerThanPictureFilesCanBeIsRefused();
    void pictureThatCannotBeScaledIsRefused();
    void sheetWithoutAPictureIsNone();
};

/// Blue, green and red of a pixel.
static QVector<int> fx_Pixel(SxPicBuf const& picture, quint32 x, quint32 y)
{
    uchar const* const pixel = picture.data + y * picture.pitch + x * 4;
    return {pixel[0], pixel[1], pixel[2]};
}

static bool fx_IsOneColour(SxPicBuf const& picture, quint32 left, quint32 top, quint32 width, quint32 height)
{
    for (quint32 y = top; y < top + height; ++y) {
        for (quint32 x = left; x < left + width; ++x) {
            if (fx_Pixel(picture, x, y) != fx_Pixel(picture, left, top))
                return false;
        }
    }
    return true;
}

void tst_ContactSheet::tilesLieInRowsWithTheirNumbersBelow()
{
    CxContactSheet sheet(2, 3);
    CxOwnedPicture picture;
    for (int i = 0; i < 3; ++i) {
        QVERIFY(fx_FillRgb32(picture, 32, 16, uchar(50 * i), 100, 200));
        QVERIFY(sheet.add(i, picture.get()));
    }
    CxOwnedPicture whole;
    QVERIFY(sheet.finish(whole.get()));
    SxPicBuf const& pixels = whole.get();
    QCOMPARE(pixels.width, 8U + 2 * (32 + 8));
    QCOMPARE(pixels.height, 8U + 2 * (16 + 14 + 16));
    QVector<int> const background = fx_Pixel(pixels, 0, 0);
    for (quint32 i = 0; i < 3; ++i) {
        quint32 const x = 8 + i % 2 * 40;
        quint32 const y = 8 + i / 2 * 46;
        QCOMPARE(fx_Pixel(pixels, x, y), (QVector<int>{int(50 * i), 100, 200}));
        QVERIFY(fx_IsOneColour(pixels, x, y, 32, 16));
        QVERIFY(!fx_IsOneColour(pixels, x, y + 16, 32, 22)); // the number
    }
    QVERIFY(fx_IsOneColour(pixels, 48, 54, 40, 46)); // nothing where the fourth would be
    QCOMPARE(fx_Pixel(pixels, 48, 54), background);
}

void tst_ContactSheet::sheetLargerThanPictureFilesCanBeIsRefused()
{
    CxOwnedPicture picture;
    QVERIFY(fx_FillRgb32(picture, 320, 240, 0, 0, 0));
    CxContactSheet tooHigh(1, 1000);
    QVERIFY(!tooHigh.add(0, picture.get()));
    CxContactSheet tooMany(50, 5000);
    QVERIFY(!tooMany.add(0, picture.get()));
    CxContactSheet fits(10, 100);
    QVERIFY(fits.add(0, picture.get()));
}

void tst_ContactSheet::pictureThatCannotBeScaledIsRefused()
{
    CxOwnedPicture picture;
    QVERIFY(fx_FillRgb32(picture, 32, 16, 0, 0, 0));
    CxContactSheet sheet(2, 2);
    QVERIFY(sheet.add(0, picture.get()));
    SxPicBuf twoComponents = picture.get(); // borrows the pixels
    twoComponents.components = 2;
    QVERIFY(!sheet.add(1, twoComponents));
}

void tst_ContactSheet::sheetWithoutAPictureIsNone()
{
    CxContactSheet sheet(2, 2);
    SxPicBuf whole;
    QVERIFY(!sheet.finish(whole));
    QVERIFY(!whole.data);
}

QTEST_GUILESS_MAIN(tst_ContactSheet)
#include "tst_ContactSheet.moc"

#include <QTest>

#include "support/PatternPicture.h"

class tst_ShownPicture : public QObject
{
    Q_OBJECT

private slots:
    void keepsSamplesAndPaintsTheirHighBits_data();
    void keepsSamplesAndPaintsTheirHighBits();
    void unknownFormatHasNoImage();
};

void tst_ShownPicture::keepsSamplesAndPaintsTheirHighBits_data()
{
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("bits");
    QTest::addColumn<bool>("isShared");
    QTest::newRow("grey") << 1u << 8u << true;
    QTest::newRow("grey, 10 bits") << 1u << 10u << false;
    QTest::newRow("grey, 16 bits") << 1u << 16u << false;
    QTest::newRow("colour") << 3u << 8u << true;
    QTest::newRow("colour, 12 bits") << 3u << 12u << false;
    QTest::newRow("RGB32") << 4u << 8u << true;
    QTest::newRow("four words") << 4u << 16u << false;
}

void tst_ShownPicture::keepsSamplesAndPaintsTheirHighBits()
{
    QFETCH(quint32, components);
    QFETCH(quint32, bits);
    QFETCH(bool, isShared);
    SxShownPicture const shown = fx_PatternPicture(fx_PackedFormat(13, 7, components, bits));
    QCOMPARE(shown.image.size(), QSize(13, 7));
    SxPicBuf const& picture = *shown.data->picBuf();
    QCOMPARE(shown.image.constBits() == picture.data, isShared);
    for (int y = 0; y < 7; ++y) {
        for (int x = 0; x < 13; ++x) {
            SxPixel const pixel = fx_Pixel(shown, {x, y});
            auto const sample = [&](quint32 i) {
                quint32 const at = static_cast<quint32>(x) * components + i;
                return static_cast<int>((at * 37 + static_cast<quint32>(y) * 101) & ((1u << bits) - 1));
            };
            int const shift = static_cast<int>(bits) - 8;
            QRgb const painted = shown.image.pixel(x, y);
            if (components == 1) {
                QCOMPARE(pixel.components, 1);
                QCOMPARE(pixel.samples[0], sample(0));
                QCOMPARE(qRed(painted), sample(0) >> shift);
            } else {
                QCOMPARE(pixel.components, 3);
                QCOMPARE(pixel.samples, (std::array<int, 3>{sample(2), sample(1), sample(0)}));
                QCOMPARE(painted, qRgb(sample(2) >> shift, sample(1) >> shift, sample(0) >> shift));
            }
        }
    }
    for (QPoint const outside : {QPoint(-1, 0), QPoint(0, -1), QPoint(13, 0), QPoint(0, 7)})
        QCOMPARE(fx_Pixel(shown, outside).components, 0);
    QCOMPARE(fx_Pixel({}, {0, 0}).components, 0);
}

void tst_ShownPicture::unknownFormatHasNoImage()
{
    QVERIFY(fx_PatternPicture(fx_PackedFormat(13, 7, 2, 8)).image.isNull());
    QVERIFY(fx_ShownPicture(0, std::make_unique<CxImageData>()).image.isNull());
}

QTEST_MAIN(tst_ShownPicture)
#include "tst_ShownPicture.moc"

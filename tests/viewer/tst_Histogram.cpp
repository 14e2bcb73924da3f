#include <QTest>
#include <cmath>

#include "Levels.h"
#include "PictureLook.h"
#include "support/PatternPicture.h"

class tst_Histogram : public QObject
{
    Q_OBJECT

private slots:
    void countsEverySample_data();
    void countsEverySample();
    void countsInTheScaleOfTheSource();
    void autoLevelsLeaveOutAThousandth();
    void autoLevelsOfOneValueAreUsable();
    void levelsSpreadSamplesOverTheScreen();
    void neutralLevelsShowThePictureAsItIs();
    void marksClippedPixelsOnly();
};

/// A grey picture of a row of words.
static SxShownPicture fx_Words(std::vector<quint16> const& words, quint32 bits, int sourceBits = 0)
{
    SxPicBuf picture;
    if (!CxPicBufAPI::AllocPicBufFromHeap(picture, fx_PackedFormat(quint32(words.size()), 1, 1, bits), false,
                                          0))
        return {};
    std::copy(words.begin(), words.end(), reinterpret_cast<quint16*>(picture.data));
    auto data = std::make_unique<CxImageData>();
    data->setPicBuf(picture);
    return fx_ShownPicture(0, std::move(data), sourceBits);
}

void tst_Histogram::countsEverySample_data()
{
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("bits");
    for (quint32 const bits : {8u, 10u, 16u}) {
        for (quint32 const components : {1u, 3u, 4u})
            QTest::addRow("%u x %u bits", components, bits) << components << bits;
    }
}

void tst_Histogram::countsEverySample()
{
    QFETCH(quint32, components);
    QFETCH(quint32, bits);
    SxShownPicture const picture = fx_PatternPicture(fx_PackedFormat(57, 23, components, bits));
    SxHistogram const histogram = fx_Histogram(picture);
    QCOMPARE(histogram.bits, bits);
    QCOMPARE(histogram.components, components == 1 ? 1 : 3);
    std::array<std::vector<quint32>, 3> expected;
    for (int c = 0; c < histogram.components; ++c)
        expected[size_t(c)].resize(size_t{1} << bits);
    for (int y = 0; y < 23; ++y) {
        for (int x = 0; x < 57; ++x) {
            SxPixel const pixel = fx_Pixel(picture, {x, y});
            for (int c = 0; c < histogram.components; ++c)
                ++expected[size_t(c)][size_t(pixel.samples[size_t(c)])];
        }
    }
    QVERIFY(histogram.counts == expected);
    QCOMPARE(fx_Histogram({}).components, 0);
}

void tst_Histogram::countsInTheScaleOfTheSource()
{
    SxHistogram const histogram =
        fx_Histogram(fx_Words({0, 0, 16, 1910 << 4, 0xFFF0, 0xFFFF, 32, 48}, 16, 12));
    QCOMPARE(histogram.bits, 12u);
    QCOMPARE(histogram.counts[0].size(), size_t{4096});
    QCOMPARE(histogram.counts[0][1910], 1u);
    QCOMPARE(histogram.counts[0][4095], 2u);
    QCOMPARE(fx_ShareAtBlack(histogram), 0.25);
    QCOMPARE(fx_ShareAtFullScale(histogram), 0.25);
    // What has more bits than it claims is as bright as can be.
    QCOMPARE(fx_Histogram(fx_Words({5000}, 12)).counts[0][4095], 1u);
}

void tst_Histogram::autoLevelsLeaveOutAThousandth()
{
    std::vector<quint16> words(2000, 1000);
    words[0] = 3;    // a dead pixel
    words[1] = 4095; // a light
    std::fill(words.begin() + 2, words.begin() + 102, quint16{200});
    std::fill(words.begin() + 102, words.begin() + 302, quint16{1500});
    SxLevels const levels = fx_AutoLevels(fx_Histogram(fx_Words(words, 12)));
    QCOMPARE(levels.black, 200);
    QCOMPARE(levels.white, 1500);
    QCOMPARE(levels.gamma, 1.0);
}

void tst_Histogram::autoLevelsOfOneValueAreUsable()
{
    for (quint16 const value : {quint16{0}, quint16{77}, quint16{4095}}) {
        SxLevels const levels = fx_AutoLevels(fx_Histogram(fx_Words(std::vector<quint16>(50, value), 12)));
        QVERIFY(levels.black < levels.white);
        QVERIFY(levels.black <= value && value <= levels.white);
    }
}

void tst_Histogram::levelsSpreadSamplesOverTheScreen()
{
    std::vector<uchar> const table = fx_LevelTable({100, 300, 1.0}, 12);
    QCOMPARE(table.size(), size_t{4096});
    for (auto const& at :
         {std::pair(0, 0), std::pair(100, 0), std::pair(200, 128), std::pair(300, 255), std::pair(4095, 255)})
        QCOMPARE(int(table[size_t(at.first)]), at.second);
    QCOMPARE(int(fx_LevelTable({0, 200, 2.0}, 8)[50]), 128); // the root of a quarter

    SxPictureLook look;
    look.levels = SxLevels{100, 300, 1.0};
    QImage const grey = fx_LookedAt(fx_Words({50, 200, 400}, 12), look, 1);
    QCOMPARE(qGray(grey.pixel(0, 0)), 0);
    QCOMPARE(qGray(grey.pixel(1, 0)), 128);
    QCOMPARE(qGray(grey.pixel(2, 0)), 255);

    SxShownPicture const colour = fx_PatternPicture(fx_PackedFormat(19, 11, 4, 8));
    look.levels = SxLevels{0, 128, 1.0};
    QImage const bright = fx_LookedAt(colour, look, 1);
    for (int x = 0; x < 19; ++x) {
        QColor const before(colour.image.pixel(x, 7)), after(bright.pixel(x, 7));
        QCOMPARE(after.red(), std::min(255, int(std::lround(before.red() * 255.0 / 128))));
        QCOMPARE(after.blue(), std::min(255, int(std::lround(before.blue() * 255.0 / 128))));
    }
}

void tst_Histogram::neutralLevelsShowThePictureAsItIs()
{
    SxShownPicture const picture = fx_PatternPicture(fx_PackedFormat(19, 11, 4, 8));
    QCOMPARE(fx_LookedAt(picture, {}, 1).constBits(), picture.image.constBits());
    SxPictureLook look;
    look.levels = fx_NeutralLevels(8);
    QCOMPARE(fx_LookedAt(picture, look, 1), picture.image);
}

void tst_Histogram::marksClippedPixelsOnly()
{
    SxPictureLook look;
    look.marksClipping = true;
    // Of a 12-bit source in 16 bits: two each of black, nearly so, nearly white, white.
    SxShownPicture const picture =
        fx_Words({0, 0, 16, 16, 4094 << 4, 4094 << 4, 4095 << 4, 4095 << 4}, 16, 12);
    QImage const marked = fx_LookedAt(picture, look, 1);
    QImage const plain = picture.image.convertToFormat(QImage::Format_RGB32);
    auto const isMarked = [&](int x) { return marked.pixel(x, 0) != plain.pixel(x, 0); };
    QVERIFY(isMarked(0) != isMarked(1)); // every second stripe shows the picture
    QVERIFY(isMarked(6) != isMarked(7));
    for (int const x : {2, 3, 4, 5})
        QVERIFY(!isMarked(x));
    QVERIFY(QColor(marked.pixel(0, 0)).blue() > QColor(marked.pixel(0, 0)).red());
    QVERIFY(QColor(marked.pixel(6, 0)).red() > QColor(marked.pixel(6, 0)).blue());
    QCOMPARE(qGray(picture.image.pixel(0, 0)), 0); // the picture itself stays
}

QTEST_MAIN(tst_Histogram)
#include "tst_Histogram.moc"

#include <QTest>
#include <cmath>

#include "RegionStatistics.h"
#include "support/PatternPicture.h"

class tst_RegionStatistics : public QObject
{
    Q_OBJECT

private slots:
    void ofPlainNumbers();
    void ofEveryFormat_data();
    void ofEveryFormat();
    void nothingOutsideThePicture();
    void profileTakesAPixelAStep();
    void profileLeavesOutWhatIsOutside();
};

/// Words of a 12-bit source held in 16 bits: 1 2 3 / 4 5 6.
static SxShownPicture fx_SixPixels()
{
    SxPicBuf picture;
    if (!CxPicBufAPI::AllocPicBufFromHeap(picture, fx_PackedFormat(3, 2, 1, 16), false, 0))
        return {};
    for (quint32 i = 0; i < 6; ++i)
        reinterpret_cast<quint16*>(picture.data + i / 3 * picture.pitch)[i % 3] =
            static_cast<quint16>((i + 1) << 4);
    auto data = std::make_unique<CxImageData>();
    data->setPicBuf(picture);
    return fx_ShownPicture(0, std::move(data), 12);
}

void tst_RegionStatistics::ofPlainNumbers()
{
    auto const all = fx_RegionStatistics(fx_SixPixels(), {0, 0, 3, 2});
    QCOMPARE(all.size(), size_t{1});
    QCOMPARE(all[0].lowest, 1);
    QCOMPARE(all[0].highest, 6);
    QCOMPARE(all[0].mean, 3.5);
    QCOMPARE(all[0].deviation, std::sqrt(17.5 / 6));                     // 2.5, 1.5, 0.5 squared, each twice
    auto const part = fx_RegionStatistics(fx_SixPixels(), {1, 0, 2, 2}); // 2 3 5 6
    QCOMPARE(part[0].mean, 4.0);
    QCOMPARE(part[0].deviation, std::sqrt(2.5));
    auto const one = fx_RegionStatistics(fx_SixPixels(), {2, 1, 1, 1});
    QCOMPARE(one[0].lowest, 6);
    QCOMPARE(one[0].mean, 6.0);
    QCOMPARE(one[0].deviation, 0.0);
}

void tst_RegionStatistics::ofEveryFormat_data()
{
    QTest::addColumn<quint32>("components");
    QTest::addColumn<quint32>("bits");
    for (quint32 const bits : {8u, 12u, 16u}) {
        for (quint32 const components : {1u, 3u, 4u})
            QTest::addRow("%u x %u bits", components, bits) << components << bits;
    }
}

void tst_RegionStatistics::ofEveryFormat()
{
    QFETCH(quint32, components);
    QFETCH(quint32, bits);
    SxShownPicture const picture = fx_PatternPicture(fx_PackedFormat(31, 17, components, bits));
    QRect const region(5, 3, 20, 11);
    auto const statistics = fx_RegionStatistics(picture, region);
    QCOMPARE(statistics.size(), size_t{components == 1 ? 1u : 3u});
    for (size_t c = 0; c < statistics.size(); ++c) {
        std::vector<double> samples;
        for (int y = region.top(); y <= region.bottom(); ++y) {
            for (int x = region.left(); x <= region.right(); ++x)
                samples.push_back(fx_Pixel(picture, {x, y}).samples[c]);
        }
        double sum = 0.0, squares = 0.0;
        for (double const sample : samples)
            sum += sample;
        double const mean = sum / double(samples.size());
        for (double const sample : samples)
            squares += (sample - mean) * (sample - mean);
        QCOMPARE(statistics[c].lowest, int(*std::min_element(samples.begin(), samples.end())));
        QCOMPARE(statistics[c].highest, int(*std::max_element(samples.begin(), samples.end())));
        QCOMPARE(statistics[c].mean, mean);
        QCOMPARE(statistics[c].deviation, std::sqrt(squares / double(samples.size())));
    }
}

void tst_RegionStatistics::nothingOutsideThePicture()
{
    QVERIFY(fx_RegionStatistics(fx_SixPixels(), {3, 0, 5, 5}).empty());
    QVERIFY(fx_RegionStatistics(fx_SixPixels(), {}).empty());
    QVERIFY(fx_RegionStatistics({}, {0, 0, 3, 2}).empty());
    QCOMPARE(fx_RegionStatistics(fx_SixPixels(), {-5, -5, 50, 50})[0].mean, 3.5); // what is there counts
}

static QVector<int> fx_Grey(std::vector<SxPixel> const& profile)
{
    QVector<int> samples;
    for (SxPixel const& pixel : profile)
        samples.append(pixel.samples[0]);
    return samples;
}

void tst_RegionStatistics::profileTakesAPixelAStep()
{
    SxShownPicture const picture = fx_SixPixels();
    QCOMPARE(fx_Grey(fx_Profile(picture, {0, 0, 2, 0})), (QVector<int>{1, 2, 3}));
    QCOMPARE(fx_Grey(fx_Profile(picture, {2, 1, 0, 1})), (QVector<int>{6, 5, 4}));
    QCOMPARE(fx_Grey(fx_Profile(picture, {1, 0, 1, 1})), (QVector<int>{2, 5}));
    QCOMPARE(fx_Grey(fx_Profile(picture, {0, 0, 1, 1})), (QVector<int>{1, 5}));
    QCOMPARE(fx_Grey(fx_Profile(picture, {1, 1, 1, 1})), (QVector<int>{5}));
}

void tst_RegionStatistics::profileLeavesOutWhatIsOutside()
{
    QCOMPARE(fx_Grey(fx_Profile(fx_SixPixels(), {-2, 1, 9, 1})), (QVector<int>{4, 5, 6}));
    QVERIFY(fx_Profile({}, {0, 0, 2, 0}).empty());
}

QTEST_MAIN(tst_RegionStatistics)
#include "tst_RegionStatistics.moc"

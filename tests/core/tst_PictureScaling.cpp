#include <QtTest>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "CxPicBufAPI.h"

// Expected values come from the plain definition in double: a sample's value is its share of white, grey is
// 0.299 red + 0.587 green + 0.114 blue, scaling reads the source at the centre of each target pixel.

/// A packed format; bits is 8 for bytes.
struct SxPacked
{
    char const* name;
    quint32 sampleType;
    quint32 components;
    quint32 bits;
};

static SxPacked const kPacked[] = {
    {"mono8", 2, 1, 8},   {"bgr24", 2, 3, 8},  {"bgr32", 2, 4, 8},
    {"mono16", 4, 1, 16}, {"bgr48", 4, 3, 16}, {"bgr64", 4, 4, 16},
};

static unsigned char const kGuard = 0xAA;

/// A picture in memory of exactly pitch * height bytes, which starts at an odd address and has an odd
/// number of guard bytes behind each row.
class CxGuardedPicture
{
public:
    CxGuardedPicture(SxPacked const& packed, quint32 width, quint32 height)
    {
        quint32 const rowBytes = width * packed.components * (packed.sampleType == 2 ? 1 : 2);
        m_picture.width = width;
        m_picture.height = height;
        m_picture.pitch = rowBytes + 3 + rowBytes % 2; // odd
        m_picture.components = packed.components;
        m_picture.bitsPerSample = packed.bits;
        m_picture.sampleType = packed.sampleType;
        m_memory.assign(1 + std::size_t(m_picture.pitch) * height, kGuard);
        m_memory.shrink_to_fit();
        m_picture.data = m_memory.data() + 1;
    }

    CxGuardedPicture(CxGuardedPicture const&) = delete;
    CxGuardedPicture& operator=(CxGuardedPicture const&) = delete;

    SxPicBuf& picture() { return m_picture; }
    unsigned white() const { return (1U << m_picture.bitsPerSample) - 1; }

    unsigned value(quint32 x, quint32 y, quint32 component) const
    {
        unsigned char const* const at = m_picture.data + offset(x, y, component);
        return m_picture.sampleType == 2 ? *at : qFromUnaligned<quint16>(at);
    }

    void setValue(quint32 x, quint32 y, quint32 component, unsigned value)
    {
        unsigned char* const at = m_picture.data + offset(x, y, component);
        if (m_picture.sampleType == 2)
            *at = static_cast<unsigned char>(value);
        else
            qToUnaligned(static_cast<quint16>(value), at);
    }

    /// share(x, y, component) from 0 to 1 for every sample.
    template<typename Share>
    void fill(Share const& share)
    {
        for (quint32 y = 0; y < m_picture.height; ++y)
            for (quint32 x = 0; x < m_picture.width; ++x)
                for (quint32 component = 0; component < m_picture.components; ++component)
                    setValue(x, y, component,
                             static_cast<unsigned>(std::lround(share(x, y, component) * double(white()))));
    }

    bool areGuardsWhole() const
    {
        quint32 const rowBytes = m_picture.width * m_picture.components * (m_picture.sampleType == 2 ? 1 : 2);
        bool isWhole = m_memory[0] == kGuard;
        for (quint32 y = 0; y < m_picture.height; ++y)
            for (quint32 at = rowBytes; at < m_picture.pitch; ++at)
                isWhole = isWhole && m_picture.data[std::size_t(y) * m_picture.pitch + at] == kGuard;
        return isWhole;
    }

private:
    std::size_t offset(quint32 x, quint32 y, quint32 component) const
    {
        std::size_t const sampleBytes = m_picture.sampleType == 2 ? 1 : 2;
        return std::size_t(y) * m_picture.pitch +
               (std::size_t(x) * m_picture.components + component) * sampleBytes;
    }

    std::vector<unsigned char> m_memory;
    SxPicBuf m_picture;
};

/// The share of white that \p component of \p target gets from a pixel with the shares \p pixel.
static double fx_ExpectedShare(SxPacked const& source, SxPacked const& target, double const* pixel,
                               quint32 component)
{
    if (component == 3 && source.components != 4)
        return 1;
    if (source.components == 1)
        return pixel[0];
    if (target.components == 1)
        return 0.114 * pixel[0] + 0.587 * pixel[1] + 0.299 * pixel[2];
    return pixel[component];
}

class tst_PictureScaling : public QObject
{
    Q_OBJECT

private slots:
    void constantPictureStaysConstant_data() { addPairs(); }
    void constantPictureStaysConstant();
    void everyGreyLevelStaysItself_data() { addPairs(); }
    void everyGreyLevelStaysItself();
    void gradientsStaySmooth_data() { addPairs(); }
    void gradientsStaySmooth();
    void sameSizeCopies_data() { addPairs(); }
    void sameSizeCopies();
    void everySizeIsFilled_data();
    void everySizeIsFilled();
    void shrinkingAverages();
    void whiteOfEveryDepth();
    void overshootEndsAtWhite();
    void insignificantBitsDoNotCount();
    void timestampGoesAlong();
    void sameBytesEveryTime();
    void unusablePictureIsRefused_data();
    void unusablePictureIsRefused();
    void picturesOfTheHostAreScaled();

private:
    static void addPairs();
};

void tst_PictureScaling::addPairs()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    for (int from = 0; from < 6; ++from)
        for (int to = 0; to < 6; ++to)
            QTest::addRow("%s to %s", kPacked[from].name, kPacked[to].name) << from << to;
}

/// Every sample of \p picture within \p tolerance of expected(x, y, component), given as share of white.
template<typename Expected>
static bool fx_IsNear(CxGuardedPicture& guarded, double tolerance, quint32 margin, Expected const& expected)
{
    SxPicBuf const& picture = guarded.picture();
    for (quint32 y = margin; y + margin < picture.height; ++y) {
        for (quint32 x = margin; x + margin < picture.width; ++x) {
            for (quint32 component = 0; component < picture.components; ++component) {
                double const wanted = double(expected(x, y, component)) * guarded.white();
                if (std::abs(guarded.value(x, y, component) - wanted) > tolerance) {
                    qWarning("x %u, y %u, component %u: %u instead of %.2f", x, y, component,
                             guarded.value(x, y, component), wanted);
                    return false;
                }
            }
        }
    }
    return guarded.areGuardsWhole();
}

void tst_PictureScaling::constantPictureStaysConstant()
{
    QFETCH(int, from);
    QFETCH(int, to);
    double const shares[3][4] = {{0, 0, 0, 0}, {1, 1, 1, 1}, {51 / 255., 102 / 255., 204 / 255., 17 / 255.}};
    quint32 const sizes[4][2] = {{17, 13}, {17, 13}, {40, 30}, {5, 3}};
    for (double const* pixel : shares) {
        CxGuardedPicture source(kPacked[from], 17, 13);
        source.fill([pixel](quint32, quint32, quint32 component) { return pixel[component]; });
        for (quint32 const* size : sizes) {
            CxGuardedPicture target(kPacked[to], size[0], size[1]);
            QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
            // 0.5001: the nearest value, which is the exact one where there is an exact one.
            QVERIFY(fx_IsNear(target, 0.5001, 0, [&](quint32, quint32, quint32 component) {
                return fx_ExpectedShare(kPacked[from], kPacked[to], pixel, component);
            }));
        }
    }
}

void tst_PictureScaling::everyGreyLevelStaysItself()
{
    QFETCH(int, from);
    QFETCH(int, to);
    // All 256 levels in all components: none may drift, whichever way it takes.
    CxGuardedPicture target(kPacked[to], 7, 5);
    for (unsigned level = 0; level < 256; ++level) {
        CxGuardedPicture source(kPacked[from], 9, 11);
        source.fill([level](quint32, quint32, quint32) { return level / 255.; });
        QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
        QVERIFY(fx_IsNear(target, 0.01, 0, [&](quint32, quint32, quint32 component) {
            return component == 3 && kPacked[from].components != 4 ? 1 : level / 255.;
        }));
    }
}

/// A slope in its own direction for every component, 0.1 to 0.9 over the whole picture.
static double fx_Slope(double x, double y, quint32 component)
{
    switch (component) {
    case 0:
        return 0.1 + 0.8 * x;
    case 1:
        return 0.1 + 0.8 * y;
    case 2:
        return 0.9 - 0.4 * x - 0.4 * y;
    default:
        return 0.9 - 0.8 * x;
    }
}

static void fx_FillSlopes(CxGuardedPicture& guarded)
{
    SxPicBuf const& picture = guarded.picture();
    guarded.fill([&picture](quint32 x, quint32 y, quint32 component) {
        return fx_Slope((x + 0.5) / picture.width, (y + 0.5) / picture.height, component);
    });
}

void tst_PictureScaling::gradientsStaySmooth()
{
    QFETCH(int, from);
    QFETCH(int, to);
    CxGuardedPicture source(kPacked[from], 160, 120);
    fx_FillSlopes(source);
    quint32 const sizes[5][2] = {{80, 60}, {320, 240}, {101, 77}, {241, 55}, {63, 301}};
    for (quint32 const* size : sizes) {
        CxGuardedPicture target(kPacked[to], size[0], size[1]);
        QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
        // The picture's edge, where the slope breaks off, reaches some pixels into it.
        QVERIFY(
            fx_IsNear(target, 1 + 0.004 * target.white(), 8, [&](quint32 x, quint32 y, quint32 component) {
                double pixel[4];
                for (quint32 i = 0; i < 4; ++i)
                    pixel[i] = fx_Slope((x + 0.5) / size[0], (y + 0.5) / size[1], i);
                return fx_ExpectedShare(kPacked[from], kPacked[to], pixel, component);
            }));
    }
}

void tst_PictureScaling::sameSizeCopies()
{
    QFETCH(int, from);
    QFETCH(int, to);
    CxGuardedPicture source(kPacked[from], 37, 23);
    std::mt19937 random(5);
    source.fill([&random](quint32, quint32, quint32) { return static_cast<int>(random() & 255) / 255.; });
    CxGuardedPicture target(kPacked[to], 37, 23);
    QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
    QVERIFY(fx_IsNear(target, 0.51, 0, [&](quint32 x, quint32 y, quint32 component) {
        double pixel[4];
        for (quint32 i = 0; i < kPacked[from].components; ++i)
            pixel[i] = double(source.value(x, y, i)) / source.white();
        return fx_ExpectedShare(kPacked[from], kPacked[to], pixel, component);
    }));
}

void tst_PictureScaling::everySizeIsFilled_data()
{
    QTest::addColumn<QSize>("from");
    QTest::addColumn<QSize>("to");
    QSize const sizes[] = {{1, 1},   {2, 1},   {1, 2},  {2, 2},  {3, 3},  {5, 7},
                           {16, 16}, {33, 65}, {64, 1}, {1, 64}, {127, 3}};
    for (QSize const& from : sizes)
        for (QSize const& to : sizes)
            QTest::addRow("%dx%d to %dx%d", from.width(), from.height(), to.width(), to.height())
                << from << to;
    QTest::newRow("far down") << QSize(20001, 3) << QSize(1, 1);
    QTest::newRow("far down in the height") << QSize(3, 20001) << QSize(1, 1);
    QTest::newRow("far up") << QSize(1, 1) << QSize(20001, 3);
    QTest::newRow("far up in the height") << QSize(1, 1) << QSize(3, 20001);
    QTest::newRow("from wide to high") << QSize(20001, 2) << QSize(2, 20001);
    QTest::newRow("from high to wide") << QSize(2, 20001) << QSize(20001, 2);
}

void tst_PictureScaling::everySizeIsFilled()
{
    QFETCH(QSize, from);
    QFETCH(QSize, to);
    for (SxPacked const& packed : {kPacked[1], kPacked[3]}) {
        CxGuardedPicture source(packed, quint32(from.width()), quint32(from.height()));
        CxGuardedPicture target(packed, quint32(to.width()), quint32(to.height()));
        source.fill([](quint32, quint32, quint32 component) { return (component + 1) * 51 / 255.; });
        QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
        QVERIFY(fx_IsNear(target, 0.01, 0,
                          [](quint32, quint32, quint32 component) { return (component + 1) * 51 / 255.; }));
        QVERIFY(source.areGuardsWhole());
    }
}

void tst_PictureScaling::shrinkingAverages()
{
    // Stripes of one pixel become their mean, not a pick of them.
    CxGuardedPicture source(kPacked[0], 512, 64);
    source.fill([](quint32 x, quint32, quint32) { return x % 2; });
    quint32 const sizes[3][2] = {{128, 16}, {100, 10}, {10, 2}};
    for (quint32 const* size : sizes) {
        CxGuardedPicture target(kPacked[0], size[0], size[1]);
        QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
        QVERIFY(fx_IsNear(target, 8, 1, [](quint32, quint32, quint32) { return 0.5; }));
    }
}

void tst_PictureScaling::whiteOfEveryDepth()
{
    for (quint32 fromBits = 1; fromBits <= 16; ++fromBits) {
        for (quint32 toBits = 1; toBits <= 16; ++toBits) {
            SxPacked const from{"", 4, 3, fromBits};
            SxPacked const to{"", 4, 4, toBits};
            for (double share : {0., 1.}) {
                CxGuardedPicture source(from, 8, 8);
                source.fill([share](quint32, quint32, quint32) { return share; });
                CxGuardedPicture target(to, 12, 5);
                QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
                QVERIFY(fx_IsNear(target, 0, 0, [share](quint32, quint32, quint32 component) {
                    return component == 3 ? 1. : share;
                }));
            }
        }
    }
}

void tst_PictureScaling::overshootEndsAtWhite()
{
    // A sharp edge makes the filter overshoot on both of its sides.
    for (quint32 bits = 8; bits <= 16; ++bits) {
        SxPacked const packed{"", 4, 1, bits};
        CxGuardedPicture source(packed, 32, 32);
        source.fill([](quint32 x, quint32 y, quint32) { return (x / 8 + y / 8) % 2; });
        CxGuardedPicture target(packed, 111, 97);
        QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
        unsigned most = 0;
        unsigned least = 65535;
        for (quint32 y = 0; y < 97; ++y) {
            for (quint32 x = 0; x < 111; ++x) {
                most = std::max(most, target.value(x, y, 0));
                least = std::min(least, target.value(x, y, 0));
            }
        }
        QCOMPARE(most, source.white());
        QCOMPARE(least, 0U);
        // No wrapped value either: the middle of a square keeps its colour.
        QCOMPARE(target.value(13, 12, 0), 0U);
        QCOMPARE(target.value(13 + 28, 12, 0), source.white());
    }
}

void tst_PictureScaling::insignificantBitsDoNotCount()
{
    SxPacked const packed{"", 4, 3, 12};
    CxGuardedPicture clean(packed, 20, 10);
    CxGuardedPicture dirty(packed, 20, 10);
    std::mt19937 random(9);
    for (quint32 y = 0; y < 10; ++y) {
        for (quint32 x = 0; x < 20; ++x) {
            for (quint32 component = 0; component < 3; ++component) {
                unsigned const value = random() & 0xFFFF;
                clean.setValue(x, y, component, value & 0xFFF);
                dirty.setValue(x, y, component, value);
            }
        }
    }
    CxGuardedPicture fromClean(packed, 31, 17);
    CxGuardedPicture fromDirty(packed, 31, 17);
    QVERIFY(CxPicBufAPI::Resize(clean.picture(), fromClean.picture()));
    QVERIFY(CxPicBufAPI::Resize(dirty.picture(), fromDirty.picture()));
    QVERIFY(fx_IsNear(fromDirty, 0, 0, [&](quint32 x, quint32 y, quint32 component) {
        return fromClean.value(x, y, component) / 4095.;
    }));
}

void tst_PictureScaling::timestampGoesAlong()
{
    CxGuardedPicture source(kPacked[2], 4, 4);
    CxGuardedPicture target(kPacked[2], 8, 8);
    source.picture().timestamp = 123456789012345;
    target.picture().auxField = 7;
    QVERIFY(CxPicBufAPI::Resize(source.picture(), target.picture()));
    QCOMPARE(target.picture().timestamp, quint64(123456789012345));
    QCOMPARE(target.picture().auxField, 7U); // the format is the target's own
}

void tst_PictureScaling::sameBytesEveryTime()
{
    CxGuardedPicture source(kPacked[2], 161, 97);
    std::mt19937 random(3);
    source.fill([&random](quint32, quint32, quint32) { return static_cast<int>(random() & 255) / 255.; });
    CxGuardedPicture first(kPacked[2], 99, 201);
    CxGuardedPicture second(kPacked[2], 99, 201);
    QVERIFY(CxPicBufAPI::Resize(source.picture(), first.picture()));
    QVERIFY(CxPicBufAPI::Resize(source.picture(), second.picture()));
    QVERIFY(fx_IsNear(second, 0.01, 0, [&](quint32 x, quint32 y, quint32 component) {
        return first.value(x, y, component) / 255.;
    }));
}

void tst_PictureScaling::unusablePictureIsRefused_data()
{
    QTest::addColumn<QByteArray>("what");
    for (char const* what :
         {"no memory", "no width", "no height", "layout", "sample type", "two components", "five components",
          "no bits", "17 bits", "short pitch", "huge width", "small memory"})
        QTest::newRow(what) << QByteArray(what);
}

static void fx_Spoil(SxPicBuf& picture, QByteArray const& what)
{
    if (what == "no memory")
        picture.data = nullptr;
    else if (what == "no width")
        picture.width = 0;
    else if (what == "no height")
        picture.height = 0;
    else if (what == "layout")
        picture.layout = 2;
    else if (what == "sample type")
        picture.sampleType = 3;
    else if (what == "two components")
        picture.components = 2;
    else if (what == "five components")
        picture.components = 5;
    else if (what == "no bits")
        picture.bitsPerSample = 0;
    else if (what == "17 bits")
        picture.bitsPerSample = 17;
    else if (what == "short pitch")
        picture.pitch = picture.width * picture.components * 2 - 1;
    else if (what == "huge width")
        picture.width = 0xFFFFFFF0;
    else if (what == "small memory")
        picture.allocatedSize = quint64(picture.pitch) * picture.height - 1;
}

void tst_PictureScaling::unusablePictureIsRefused()
{
    QFETCH(QByteArray, what);
    for (bool isSource : {true, false}) {
        CxGuardedPicture source(kPacked[4], 8, 8);
        CxGuardedPicture target(kPacked[4], 4, 4);
        source.picture().timestamp = 5;
        fx_Spoil(isSource ? source.picture() : target.picture(), what);
        QVERIFY(!CxPicBufAPI::Resize(source.picture(), target.picture()));
        QCOMPARE(target.picture().timestamp, quint64(0));
    }
}

void tst_PictureScaling::picturesOfTheHostAreScaled()
{
    SxPicBufInfo format;
    format.width = 64;
    format.height = 48;
    format.components = 4;
    format.bitsPerSample = 8;
    format.sampleType = 2;
    SxPicBuf source;
    SxPicBuf target;
    QVERIFY(CxPicBufAPI::AllocPicBufFromHeap(source, format, true, 0));
    format.width = 32;
    format.height = 24;
    QVERIFY(CxPicBufAPI::AllocPicBufFromHeap(target, format, false, 0));
    QVERIFY(CxPicBufAPI::Resize(source, target));
    QCOMPARE(target.data[0], static_cast<unsigned char>(0));

    // Onto itself, wholly or in part: the result would depend on what was overwritten first.
    QVERIFY(!CxPicBufAPI::Resize(source, source));
    SxPicBuf lowerHalf = source;
    lowerHalf.height = 24;
    lowerHalf.data += 24 * std::size_t(source.pitch);
    lowerHalf.allocatedSize = 0;
    QVERIFY(!CxPicBufAPI::Resize(source, lowerHalf));
    SxPicBuf upperHalf = source;
    upperHalf.height = 24;
    QVERIFY(CxPicBufAPI::Resize(upperHalf, lowerHalf));

    CxPicBufAPI::FreePicBuf(source, true);
    CxPicBufAPI::FreePicBuf(target, true);
}

QTEST_APPLESS_MAIN(tst_PictureScaling)
#include "tst_PictureScaling.moc"

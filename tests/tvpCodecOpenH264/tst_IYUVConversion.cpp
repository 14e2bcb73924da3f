#include "IYUVConversion.h"

#include <algorithm>
#include <random>

#include <QtTest>

#include "IYUVRows.h"
#include "support/ConversionOracle.h"
#include "support/PackedFormats.h"

namespace {

using Converter = bool (*)(SxPicBuf const&, unsigned char*, unsigned long);

constexpr uchar kUntouched = 0xA5;
constexpr size_t kGuard = 64;

std::vector<uchar> fx_RandomBytes(size_t size, unsigned seed)
{
    std::vector<uchar> bytes(size);
    std::minstd_rand random(seed);
    std::generate(bytes.begin(), bytes.end(), [&random] { return uchar(random() >> 7); });
    return bytes;
}

/// A picture of random samples, word samples with random bits above the significant ones, whose
/// memory ends with its last row and may start at any address.
class CxSourcePicture
{
public:
    CxSourcePicture(SxPackedFormat const& format, quint32 width, quint32 height, quint32 padding = 0,
                    quint32 bits = 8, size_t misalignment = 0)
        : m_bytes(fx_RandomBytes(misalignment + size_t(width * format.pixelBytes() + padding) * height,
                                 width * 131 + height * 7 + padding + bits))
    {
        picture.width = width;
        picture.height = height;
        picture.pitch = width * format.pixelBytes() + padding;
        picture.components = format.components;
        picture.bitsPerSample = bits;
        picture.sampleType = format.sampleType;
        picture.data = m_bytes.data() + misalignment;
    }

    SxPicBuf picture;

private:
    std::vector<uchar> m_bytes;
};

/// Converts into a block of exactly \p capacity bytes, where the address sanitizer sees a stray access,
/// and into one between guards; both must hold what the oracle gives.
void fx_CompareWithOracle(Converter convert, SxPicBuf const& source, size_t capacity)
{
    std::vector<uchar> expected(capacity, kUntouched);
    bool const isConverted = fx_OracleToIYUV(source, expected);

    std::vector<uchar> exact(capacity, kUntouched);
    QCOMPARE(convert(source, exact.data(), capacity), isConverted);
    QVERIFY(exact == expected);

    std::vector<uchar> guarded(kGuard + capacity + kGuard, kUntouched);
    QCOMPARE(convert(source, guarded.data() + kGuard, capacity), isConverted);
    QVERIFY(std::equal(expected.begin(), expected.end(), guarded.begin() + kGuard));
    auto const isUntouched = [](uchar byte) { return byte == kUntouched; };
    QVERIFY(std::all_of(guarded.begin(), guarded.begin() + kGuard, isUntouched));
    QVERIFY(std::all_of(guarded.end() - kGuard, guarded.end(), isUntouched));
}

SxPicBuf fx_Picture(SxPackedFormat const& format, quint32 width, quint32 height, uchar* data)
{
    SxPicBuf picture;
    picture.width = width;
    picture.height = height;
    picture.pitch = width * format.pixelBytes();
    picture.components = format.components;
    picture.bitsPerSample = format.sampleType == 4 ? 16 : 8;
    picture.sampleType = format.sampleType;
    picture.data = data;
    return picture;
}

void fx_AddFormats()
{
    QTest::addColumn<int>("format");
    int index = 0;
    for (SxPackedFormat const& format : kPackedFormats)
        QTest::newRow(format.name) << index++;
}

SxPackedFormat const& fx_Format(int index) { return kPackedFormats[index]; }

constexpr Converter kConverters[] = {
    ConvertMono8toIYUV,  ConvertRGB24toIYUV, ConvertRGB32toIYUV,
    ConvertMono16toIYUV, ConvertRGB48toIYUV, ConvertRGB64toIYUV,
};

} // namespace

Q_DECLARE_METATYPE(SxColour)

class tst_IYUVConversion : public QObject
{
    Q_OBJECT

private slots:
    void sizeIsThatOfThePlanes_data();
    void sizeIsThatOfThePlanes();
    void sizeWrapsAtThirtyTwoBits_data();
    void sizeWrapsAtThirtyTwoBits();
    void knownColoursGiveTheirPlanes_data();
    void knownColoursGiveTheirPlanes();
    void everyByteColourIsTheOracles_data();
    void everyByteColourIsTheOracles();
    void everyWordIsTheOracles_data();
    void everyWordIsTheOracles();
    void shiftCountIsTakenModulo32_data();
    void shiftCountIsTakenModulo32();
    void fourthSampleIsIgnored();
    void chromaIsPickedFromTheLeftPixelOfEvenRows();
    void evenSizesAreTheOracles_data() { fx_AddFormats(); }
    void evenSizesAreTheOracles();
    void smallSizesAreTheOracles_data() { fx_AddFormats(); }
    void smallSizesAreTheOracles();
    void oddWidthRunsOnePixelPastTheRow();
    void oddHeightWritesOneChromaRowMore();
    void pitchBelowTheRowReadsOnlyThePicture();
    void greyFillsNeutralChroma();
    void shortCapacityIsRefused_data() { fx_AddFormats(); }
    void shortCapacityIsRefused();
    void nullTargetIsRefused_data() { fx_AddFormats(); }
    void nullTargetIsRefused();
    void pictureWithoutPixelsIsRefused_data() { fx_AddFormats(); }
    void pictureWithoutPixelsIsRefused();
    void emptyPictureWritesNothing_data() { fx_AddFormats(); }
    void emptyPictureWritesNothing();
    void sizeThatWrapsIsRefused_data() { fx_AddFormats(); }
    void sizeThatWrapsIsRefused();
    void dispatcherPicksTheConverter_data() { fx_AddFormats(); }
    void dispatcherPicksTheConverter();
    void otherFormatsAreRefused_data();
    void otherFormatsAreRefused();

    void knownPlanesGiveTheirPixel_data();
    void knownPlanesGiveTheirPixel();
    void everySampleTripleGivesTheOraclesPixel();
    void picturesBackAreTheOracles_data();
    void picturesBackAreTheOracles();
    void oddWidthBackWritesIntoThePadding();
    void oddWidthBackStaysInsideTightMemory();
    void emptyPictureBackIsNoFailure();
};

void tst_IYUVConversion::sizeIsThatOfThePlanes_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<qulonglong>("size");
    QTest::newRow("empty") << 0u << 0u << 0ull;
    QTest::newRow("one pixel") << 1u << 1u << 1ull;
    QTest::newRow("odd width rounds its half down") << 7u << 4u << 40ull;
    QTest::newRow("odd height") << 6u << 3u << 27ull;
    QTest::newRow("1920x1080") << 1920u << 1080u << 3110400ull;
    QTest::newRow("widened, not sign-extended") << 65536u << 32768u << 3221225472ull;
}

void tst_IYUVConversion::sizeIsThatOfThePlanes()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    SxPicBuf picture; // the size is asked of a picture as well as of a bare format
    picture.width = width;
    picture.height = height;
    QTEST(qulonglong(GetIYUVSize(picture)), "size");
}

void tst_IYUVConversion::sizeWrapsAtThirtyTwoBits_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<qulonglong>("size");
    QTest::newRow("wraps at 32 bits") << 65536u << 65536u << 2147483648ull;
    QTest::newRow("wraps to nothing") << 65536u << 131072u << 0ull;
    QTest::newRow("sum wraps too") << 0xFFFFFFFFu << 1u << 0x7FFFFFFEull;
}

void tst_IYUVConversion::sizeWrapsAtThirtyTwoBits() { sizeIsThatOfThePlanes(); }

void tst_IYUVConversion::knownColoursGiveTheirPlanes_data()
{
    QTest::addColumn<SxColour>("colour");
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("u");
    QTest::addColumn<int>("v");
    QTest::newRow("white") << SxColour{255, 255, 255} << 255 << 128 << 128;
    QTest::newRow("blue") << SxColour{255, 0, 0} << 29 << 255 << 108;
    QTest::newRow("red") << SxColour{0, 0, 255} << 76 << 85 << 255;
    QTest::newRow("black") << SxColour{0, 0, 0} << 0 << 128 << 128;
    // 500 - 331 - 2 * 169 = -169 and 1000 - 419 - 81 = 500: toward zero, both ways.
    QTest::newRow("quotients truncate toward zero") << SxColour{1, 1, 2} << 1 << 128 << 128;
}

void tst_IYUVConversion::knownColoursGiveTheirPlanes()
{
    QFETCH(SxColour, colour);
    uchar const blue = uchar(colour.blue), green = uchar(colour.green), red = uchar(colour.red);
    uchar pixels[] = {blue, green, red, blue, green, red, blue, green, red, blue, green, red};
    SxPicBuf const source = fx_Picture({"RGB24", 2, 3}, 2, 2, pixels);
    uchar planes[6] = {};
    QVERIFY(ConvertPicBuftoIYUV(source, planes, sizeof planes));
    for (int i = 0; i < 4; ++i)
        QTEST(int(planes[i]), "y");
    QTEST(int(planes[4]), "u");
    QTEST(int(planes[5]), "v");
}

void tst_IYUVConversion::everyByteColourIsTheOracles_data()
{
    QTest::addColumn<int>("components");
    QTest::newRow("RGB24") << 3;
    QTest::newRow("RGB32") << 4;
}

void tst_IYUVConversion::everyByteColourIsTheOracles()
{
    QFETCH(int, components);
    // For each blue, every green and red as a block of two by two pixels, so that each colour is also
    // a left pixel of an even row.
    constexpr quint32 kSize = 512;
    SxPackedFormat const format = {"", 2, quint32(components)};
    std::vector<uchar> pixels(size_t(kSize) * kSize * format.components);
    SxPicBuf const source = fx_Picture(format, kSize, kSize, pixels.data());
    std::vector<uchar> actual(GetIYUVSize(source)), expected(actual.size());
    for (int blue = 0; blue < 256; ++blue) {
        uchar* pixel = pixels.data();
        for (unsigned y = 0; y < kSize; ++y) {
            for (unsigned x = 0; x < kSize; ++x, pixel += format.components) {
                pixel[0] = uchar(blue);
                pixel[1] = uchar(y / 2);
                pixel[2] = uchar(x / 2);
            }
        }
        uchar* const u = expected.data() + kSize * kSize;
        uchar* const v = u + kSize * kSize / 4;
        for (unsigned green = 0; green < 256; ++green) {
            uchar* const row = expected.data() + size_t(green) * 2 * kSize;
            for (unsigned red = 0; red < 256; ++red) {
                SxColour const colour = {blue, int(green), int(red)};
                row[2 * red] = row[2 * red + 1] = fx_OracleY(colour);
                u[green * 256 + red] = fx_OracleU(colour);
                v[green * 256 + red] = fx_OracleV(colour);
            }
            std::copy_n(row, kSize, row + kSize);
        }
        QVERIFY(ConvertPicBuftoIYUV(source, actual.data(), actual.size()));
        QVERIFY2(actual == expected, qPrintable(QStringLiteral("blue %1").arg(blue)));
    }
}

void tst_IYUVConversion::everyWordIsTheOracles_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<quint32>("bits");
    for (int format = 3; format < 6; ++format)
        for (quint32 bits = 8; bits <= 16; ++bits)
            QTest::addRow("%s of %u bits", fx_Format(format).name, bits) << format << bits;
}

void tst_IYUVConversion::everyWordIsTheOracles()
{
    QFETCH(int, format);
    QFETCH(quint32, bits);
    // All 65536 words in every component, in a different order in each; above the significant bits
    // they hold what a camera may leave there.
    std::vector<quint16> words(65536 * fx_Format(format).components);
    for (size_t i = 0; i < words.size(); ++i)
        words[i] = quint16(i / fx_Format(format).components * (i % 3 * 4242 + 1));
    SxPicBuf source = fx_Picture(fx_Format(format), 256, 256, reinterpret_cast<uchar*>(words.data()));
    source.bitsPerSample = bits;
    fx_CompareWithOracle(ConvertPicBuftoIYUV, source, GetIYUVSize(source));

    // One value by hand, so that definition and oracle can't share a slip: of 10 bits, bits 9 to 2 count.
    std::fill(words.begin(), words.end(), quint16((0xB7u << (bits - 8)) | (0xFFFFu << bits)));
    std::vector<uchar> planes(GetIYUVSize(source));
    QVERIFY(ConvertPicBuftoIYUV(source, planes.data(), planes.size()));
    QCOMPARE(int(planes[0]), 0xB7);
    QCOMPARE(int(planes[65536]), 128);
}

void tst_IYUVConversion::shiftCountIsTakenModulo32_data()
{
    QTest::addColumn<quint32>("bits");
    for (quint32 const bits : {0u, 1u, 7u, 17u, 20u, 23u, 24u, 31u, 39u, 40u, 44u, 0xFFFFFFFFu})
        QTest::addRow("%u bits", bits) << bits;
}

void tst_IYUVConversion::shiftCountIsTakenModulo32()
{
    QFETCH(quint32, bits);
    for (int format = 3; format < 6; ++format) {
        CxSourcePicture const source(fx_Format(format), 150, 2, 0, bits);
        fx_CompareWithOracle(kConverters[format], source.picture, GetIYUVSize(source.picture));
    }
}

void tst_IYUVConversion::fourthSampleIsIgnored()
{
    for (int const format : {2, 5}) {
        size_t const sampleBytes = format == 2 ? 1 : 2;
        CxSourcePicture const source(fx_Format(format), 64, 2, 0, sampleBytes == 1 ? 8 : 16);
        std::vector<uchar> before(GetIYUVSize(source.picture)), after(before.size());
        QVERIFY(ConvertPicBuftoIYUV(source.picture, before.data(), before.size()));
        for (size_t pixel = 0; pixel < 64 * 2; ++pixel)
            for (size_t i = 0; i < sampleBytes; ++i)
                source.picture.data[pixel * 4 * sampleBytes + 3 * sampleBytes + i] ^= 0xFF;
        QVERIFY(ConvertPicBuftoIYUV(source.picture, after.data(), after.size()));
        QVERIFY(after == before);
    }
}

void tst_IYUVConversion::chromaIsPickedFromTheLeftPixelOfEvenRows()
{
    uchar pixels[2][6] = {{255, 0, 0, 0, 255, 0}, {0, 0, 255, 12, 34, 56}};
    SxPicBuf const source = fx_Picture({"RGB24", 2, 3}, 2, 2, pixels[0]);
    uchar planes[6] = {};
    QVERIFY(ConvertPicBuftoIYUV(source, planes, sizeof planes));
    QCOMPARE(int(planes[4]), 255);
    QCOMPARE(int(planes[5]), 108);
}

void tst_IYUVConversion::evenSizesAreTheOracles()
{
    QFETCH(int, format);
    quint32 const widths[] = {2,   14,  16,  30,  32,  34,  62,  64,   66,
                              126, 128, 130, 190, 192, 194, 640, 1000, 1002};
    for (quint32 const width : widths) {
        for (quint32 const padding : {0u, 1u, 37u}) {
            for (size_t const misalignment : {0u, 1u}) {
                CxSourcePicture const source(fx_Format(format), width, 4, padding, 12, misalignment);
                fx_CompareWithOracle(kConverters[format], source.picture, GetIYUVSize(source.picture));
                if (QTest::currentTestFailed())
                    QFAIL(qPrintable(QStringLiteral("width %1 padding %2").arg(width).arg(padding)));
            }
        }
    }
}

void tst_IYUVConversion::smallSizesAreTheOracles()
{
    QFETCH(int, format);
    for (quint32 width = 1; width <= 9; ++width) {
        for (quint32 height = 1; height <= 9; ++height) {
            for (quint32 padding = 0; padding <= 9; ++padding) {
                CxSourcePicture const source(fx_Format(format), width, height, padding, 10, padding % 2);
                size_t const size = GetIYUVSize(source.picture);
                for (size_t const more : {0u, 1u, 2u, 3u, 5u, 100u}) {
                    fx_CompareWithOracle(kConverters[format], source.picture, size + more);
                    if (QTest::currentTestFailed())
                        QFAIL(qPrintable(QStringLiteral("%1x%2, padding %3, %4 bytes more")
                                             .arg(width)
                                             .arg(height)
                                             .arg(padding)
                                             .arg(more)));
                }
            }
        }
    }
    for (quint32 const width : {63u, 65u, 129u, 641u, 1001u}) {
        for (quint32 const height : {1u, 2u, 5u}) {
            CxSourcePicture const source(fx_Format(format), width, height, 3, 10);
            fx_CompareWithOracle(kConverters[format], source.picture, GetIYUVSize(source.picture));
            fx_CompareWithOracle(kConverters[format], source.picture, 2 * GetIYUVSize(source.picture));
        }
    }
}

void tst_IYUVConversion::oddWidthRunsOnePixelPastTheRow()
{
    // Three grey pixels a row and a fourth in the padding. Y of row 0 runs into row 1, which overwrites
    // it; Y of row 2 runs into U. Chroma rows are one byte apart and two bytes long.
    uchar pixels[3][12];
    for (int row = 0; row < 3; ++row)
        for (int i = 0; i < 12; ++i)
            pixels[row][i] = uchar(10 * row + i / 3 + 1);
    SxPicBuf source = fx_Picture({"RGB24", 2, 3}, 3, 3, pixels[0]);
    source.pitch = 12;
    std::vector<uchar> planes(20, kUntouched);
    QVERIFY(ConvertRGB24toIYUV(source, planes.data(), planes.size()));
    std::vector<uchar> const expected = {
        1,  2,   3,   11,  12,  13,         21,         22,         23, // Y; U from 9, V from 11
        24, 128, 128, 128, 128, kUntouched, kUntouched, kUntouched, kUntouched, kUntouched, kUntouched};
    QCOMPARE(planes, expected);
}

void tst_IYUVConversion::oddHeightWritesOneChromaRowMore()
{
    // Blue, red, blue rows: U of row 2 is one row behind the plane's single row, where V starts.
    uchar pixels[3][6] = {{255, 0, 0, 255, 0, 0}, {0, 0, 255, 0, 0, 255}, {0, 0, 0, 0, 0, 0}};
    SxPicBuf const source = fx_Picture({"RGB24", 2, 3}, 2, 3, pixels[0]);
    std::vector<uchar> planes(10, kUntouched);
    QVERIFY(ConvertRGB24toIYUV(source, planes.data(), planes.size()));
    std::vector<uchar> const expected = {29, 29, 76, 76, 0, 0, 255, 128, 128, kUntouched};
    QCOMPARE(planes, expected);
    planes.assign(9, kUntouched); // exactly the size: the second row of V has one byte left
    QVERIFY(ConvertRGB24toIYUV(source, planes.data(), planes.size()));
    QVERIFY(std::equal(planes.begin(), planes.end(), expected.begin()));
}

void tst_IYUVConversion::pitchBelowTheRowReadsOnlyThePicture()
{
    for (int format = 0; format < 6; ++format) {
        for (quint32 const pixels : {1u, 3u, 60u}) {
            CxSourcePicture source(fx_Format(format), pixels, 6, 0, 8);
            source.picture.width = 130; // of which every row has only so many
            fx_CompareWithOracle(kConverters[format], source.picture, GetIYUVSize(source.picture));
        }
    }
}

void tst_IYUVConversion::greyFillsNeutralChroma()
{
    for (int const format : {0, 3}) {
        CxSourcePicture const source(fx_Format(format), 6, 4, 0, format == 0 ? 8 : 16);
        std::vector<uchar> planes(GetIYUVSize(source.picture), kUntouched);
        QVERIFY(ConvertPicBuftoIYUV(source.picture, planes.data(), planes.size()));
        QCOMPARE(int(planes[0]), int(source.picture.data[format == 0 ? 0 : 1]));
        QCOMPARE(std::count(planes.begin() + 24, planes.end(), uchar(128)), std::ptrdiff_t(12));
    }
}

void tst_IYUVConversion::shortCapacityIsRefused()
{
    QFETCH(int, format);
    for (quint32 const width : {2u, 3u, 64u, 65u}) {
        CxSourcePicture const source(fx_Format(format), width, 3, 0, 8);
        fx_CompareWithOracle(kConverters[format], source.picture, GetIYUVSize(source.picture) - 1);
        std::vector<uchar> planes(GetIYUVSize(source.picture), kUntouched);
        QVERIFY(!kConverters[format](source.picture, planes.data(), 0));
        QVERIFY(!kConverters[format](source.picture, planes.data(), planes.size() - 1));
        QCOMPARE(std::count(planes.begin(), planes.end(), kUntouched), std::ptrdiff_t(planes.size()));
        QVERIFY(kConverters[format](source.picture, planes.data(), planes.size()));
    }
}

void tst_IYUVConversion::nullTargetIsRefused()
{
    QFETCH(int, format);
    CxSourcePicture const source(fx_Format(format), 4, 4);
    QVERIFY(!kConverters[format](source.picture, nullptr, 1000));
    QVERIFY(!ConvertPicBuftoIYUV(source.picture, nullptr, 1000));
    CxSourcePicture const empty(fx_Format(format), 0, 0);
    QVERIFY(!kConverters[format](empty.picture, nullptr, 1000));
}

void tst_IYUVConversion::pictureWithoutPixelsIsRefused()
{
    QFETCH(int, format);
    CxSourcePicture source(fx_Format(format), 4, 4);
    uchar planes[24];
    std::fill_n(planes, sizeof planes, kUntouched);
    source.picture.pitch = fx_Format(format).pixelBytes() - 1;
    QVERIFY(!kConverters[format](source.picture, planes, sizeof planes));
    source.picture.pitch = 64;
    source.picture.data = nullptr;
    QVERIFY(!kConverters[format](source.picture, planes, sizeof planes));
    QCOMPARE(std::count(planes, planes + sizeof planes, kUntouched), std::ptrdiff_t(sizeof planes));
}

void tst_IYUVConversion::emptyPictureWritesNothing()
{
    QFETCH(int, format);
    uchar planes[16];
    std::fill_n(planes, sizeof planes, kUntouched);
    QVERIFY(kConverters[format](fx_Picture(fx_Format(format), 10, 0, nullptr), planes, 0));
    QVERIFY(kConverters[format](fx_Picture(fx_Format(format), 0, 10, nullptr), planes, 0));
    QVERIFY(kConverters[format](fx_Picture(fx_Format(format), 10, 0, nullptr), planes, sizeof planes));
    QCOMPARE(std::count(planes, planes + sizeof planes, kUntouched), std::ptrdiff_t(sizeof planes));
}

void tst_IYUVConversion::sizeThatWrapsIsRefused()
{
    QFETCH(int, format);
    // The planes' real size is over 6 GB. The capacity is a claim that nobody may rely on.
    for (quint32 const height : {65536u, 65537u, 131072u}) {
        CxSourcePicture source(fx_Format(format), 64, 64);
        source.picture.width = 65536;
        source.picture.height = height;
        std::vector<uchar> planes(1000, kUntouched);
        unsigned long const capacity = GetIYUVSize(source.picture);
        QVERIFY(!kConverters[format](source.picture, planes.data(), capacity));
        QVERIFY(!ConvertPicBuftoIYUV(source.picture, planes.data(), capacity + 1));
        QCOMPARE(std::count(planes.begin(), planes.end(), kUntouched), std::ptrdiff_t(planes.size()));
    }
}

void tst_IYUVConversion::dispatcherPicksTheConverter()
{
    QFETCH(int, format);
    CxSourcePicture const source(fx_Format(format), 20, 6, 0, 11);
    fx_CompareWithOracle(ConvertPicBuftoIYUV, source.picture, GetIYUVSize(source.picture));
    fx_CompareWithOracle(ConvertPicBuftoIYUV, source.picture, GetIYUVSize(source.picture) - 1);
}

void tst_IYUVConversion::otherFormatsAreRefused_data()
{
    QTest::addColumn<quint32>("layout");
    QTest::addColumn<quint32>("sampleType");
    QTest::addColumn<quint32>("components");
    QTest::newRow("layout 0") << 0u << 2u << 3u;
    QTest::newRow("layout 2") << 2u << 2u << 3u;
    for (quint32 type = 0; type <= 12; ++type)
        if (type != 2 && type != 4)
            for (quint32 const components : {1u, 3u, 4u})
                QTest::addRow("sample type %u, %u components", type, components) << 1u << type << components;
    for (quint32 const type : {2u, 4u})
        for (quint32 const components : {0u, 2u, 5u})
            QTest::addRow("sample type %u, %u components", type, components) << 1u << type << components;
}

void tst_IYUVConversion::otherFormatsAreRefused()
{
    QFETCH(quint32, layout);
    QFETCH(quint32, sampleType);
    QFETCH(quint32, components);
    CxSourcePicture source(fx_Format(5), 8, 8);
    source.picture.layout = layout;
    source.picture.sampleType = sampleType;
    source.picture.components = components;
    std::vector<uchar> planes(1000, kUntouched);
    QVERIFY(!ConvertPicBuftoIYUV(source.picture, planes.data(), planes.size()));
    QCOMPARE(std::count(planes.begin(), planes.end(), kUntouched), std::ptrdiff_t(planes.size()));
}

void tst_IYUVConversion::knownPlanesGiveTheirPixel_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("u");
    QTest::addColumn<int>("v");
    QTest::addColumn<QByteArray>("pixel");
    QTest::newRow("grey") << 128 << 128 << 128 << QByteArray("\x80\x80\x80\xFF", 4);
    QTest::newRow("clamped to 255") << 255 << 128 << 255 << QByteArray("\xFF\xA4\xFF\xFF", 4);
    QTest::newRow("clamped to 0") << 0 << 0 << 0 << QByteArray("\x00\x86\x00\xFF", 4);
}

void tst_IYUVConversion::knownPlanesGiveTheirPixel()
{
    QFETCH(int, y);
    QFETCH(int, u);
    QFETCH(int, v);
    QFETCH(QByteArray, pixel);
    uchar const luma[4] = {uchar(y), uchar(y), uchar(y), uchar(y)}, cb = uchar(u), cr = uchar(v);
    QByteArray actual(16, '\0');
    SxPicBuf target = fx_Picture({"RGB32", 2, 4}, 2, 2, reinterpret_cast<uchar*>(actual.data()));
    QVERIFY(ConvertIYUVtoRGB32(target, luma, &cb, &cr, 0, 2, 1));
    QCOMPARE(actual, pixel.repeated(4));
}

void tst_IYUVConversion::everySampleTripleGivesTheOraclesPixel()
{
    // For each luma, every U and V as a block of two by two pixels.
    std::vector<uchar> u(65536), v(65536), pixels(512 * 512 * 4), expected(pixels.size());
    for (size_t i = 0; i < 65536; ++i) {
        u[i] = uchar(i / 256);
        v[i] = uchar(i % 256);
    }
    SxPicBuf target = fx_Picture({"RGB32", 2, 4}, 512, 512, pixels.data());
    for (int luma = 0; luma < 256; ++luma) {
        std::vector<uchar> const y(512 * 512, uchar(luma));
        for (unsigned cb = 0; cb < 256; ++cb) {
            uchar* const row = expected.data() + size_t(cb) * 2 * target.pitch;
            for (unsigned cr = 0; cr < 256; ++cr) {
                fx_OracleToRGB32(luma, int(cb), int(cr), row + cr * 8);
                std::copy_n(row + cr * 8, 4, row + cr * 8 + 4);
            }
            std::copy_n(row, target.pitch, row + target.pitch);
        }
        QVERIFY(ConvertIYUVtoRGB32(target, y.data(), u.data(), v.data(), 0, 512, 256));
        QVERIFY2(pixels == expected, qPrintable(QStringLiteral("luma %1").arg(luma)));
    }
}

void tst_IYUVConversion::picturesBackAreTheOracles_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint32>("padding");
    QTest::addColumn<quint32>("yPadding");
    QTest::addColumn<quint32>("uvPadding");
    for (quint32 const width : {1u, 2u, 3u, 15u, 16u, 17u, 31u, 64u, 66u, 127u, 190u, 641u, 1000u}) {
        for (quint32 const height : {1u, 2u, 3u, 4u}) {
            QTest::addRow("%ux%u tight", width, height) << width << height << 0u << 0u << 0u;
            QTest::addRow("%ux%u padded", width, height) << width << height << 256u << 32u << 17u;
            QTest::addRow("%ux%u odd", width, height) << width << height << 3u << 1u << 1u;
            QTest::addRow("%ux%u, luma alone padded", width, height) << width << height << 0u << 5u << 0u;
        }
    }
    // From 4 MiB on, pictures of aligned rows are written past the cache.
    QTest::newRow("2048x2048") << 2048u << 2048u << 0u << 0u << 0u;
    QTest::newRow("2049x2049, padded") << 2049u << 2049u << 60u << 9u << 3u;
    QTest::newRow("2049x2049") << 2049u << 2049u << 0u << 1u << 0u;
}

void tst_IYUVConversion::picturesBackAreTheOracles()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QFETCH(quint32, padding);
    QFETCH(quint32, yPadding);
    QFETCH(quint32, uvPadding);
    quint32 const yStride = width + yPadding, uvStride = (width + 1) / 2 + uvPadding;
    std::vector<uchar> const y = fx_RandomBytes(size_t(yStride) * height, 1);
    std::vector<uchar> const u = fx_RandomBytes(size_t(uvStride) * ((height + 1) / 2), 2);
    std::vector<uchar> const v = fx_RandomBytes(u.size(), 3);

    quint32 const pitch = width * 4 + padding;
    std::vector<uchar> expected(size_t(pitch) * height, kUntouched);
    for (size_t row = 0; row < height; ++row) {
        bool const hasRoom = width % 2 != 0 && (pitch >= (width + 1) * 4 || row + 1 < height);
        for (size_t x = 0; x < width + (hasRoom ? 1 : 0); ++x) {
            size_t const luma = std::min(row * yStride + x, y.size() - 1);
            size_t const chroma = row / 2 * uvStride + x / 2;
            uchar pixel[4];
            fx_OracleToRGB32(y[luma], u[chroma], v[chroma], pixel);
            std::copy_n(pixel, 4, expected.begin() + std::ptrdiff_t(row * pitch + x * 4));
        }
    }

    // Pixels at a multiple of 64, as the host allocates them, and at an odd address.
    std::vector<uchar> memory(expected.size() + 128);
    for (size_t const misalignment : {0u, 1u}) {
        std::fill(memory.begin(), memory.end(), kUntouched);
        size_t const base = 64 - reinterpret_cast<quintptr>(memory.data()) % 64 + misalignment;
        SxPicBuf target = fx_Picture({"RGB32", 2, 4}, width, height, memory.data() + base);
        target.pitch = pitch;
        QVERIFY(ConvertIYUVtoRGB32(target, y.data(), u.data(), v.data(), 12345, yStride, uvStride));
        QVERIFY(std::equal(expected.begin(), expected.end(), target.data));
        auto const isUntouched = [](uchar byte) { return byte == kUntouched; };
        QVERIFY(std::all_of(memory.data(), target.data, isUntouched));
        QVERIFY(std::all_of(target.data + expected.size(), memory.data() + memory.size(), isUntouched));
    }

    std::vector<uchar> exact(expected.size(), kUntouched);
    SxPicBuf target = fx_Picture({"RGB32", 2, 4}, width, height, exact.data());
    target.pitch = pitch;
    QVERIFY(ConvertIYUVtoRGB32(target, y.data(), u.data(), v.data(), 0, yStride, uvStride));
    QVERIFY(exact == expected);
}

void tst_IYUVConversion::oddWidthBackWritesIntoThePadding()
{
    uchar const y[4] = {10, 20, 30, 40}, u[2] = {128, 128}, v[2] = {128, 128};
    std::vector<uchar> pixels(20, kUntouched);
    SxPicBuf target = fx_Picture({"RGB32", 2, 4}, 3, 1, pixels.data());
    target.pitch = 20;
    QVERIFY(ConvertIYUVtoRGB32(target, y, u, v, 0, 4, 2));
    std::vector<uchar> const expected = {10,  10,  10,         255,        20,         20,        20,
                                         255, 30,  30,         30,         255,        40,        40,
                                         40,  255, kUntouched, kUntouched, kUntouched, kUntouched};
    QCOMPARE(pixels, expected);
}

void tst_IYUVConversion::oddWidthBackStaysInsideTightMemory()
{
    // Planes and pixels end with the picture's last sample: nothing behind it may be read or written.
    for (quint32 const width : {1u, 3u, 17u, 65u, 129u}) {
        for (quint32 const height : {1u, 2u, 3u, 4u}) {
            quint32 const yStride = width + 8, uvStride = width / 2 + 1 + 8;
            std::vector<uchar> const y(size_t(yStride) * (height - 1) + width, 77);
            std::vector<uchar> const u(size_t(uvStride) * ((height - 1) / 2) + width / 2 + 1, 128), v = u;
            std::vector<uchar> pixels(size_t(width) * height * 4, kUntouched);
            SxPicBuf target = fx_Picture({"RGB32", 2, 4}, width, height, pixels.data());
            QVERIFY(ConvertIYUVtoRGB32(target, y.data(), u.data(), v.data(), 0, yStride, uvStride));
            QCOMPARE(std::count(pixels.begin(), pixels.end(), uchar(77)),
                     std::ptrdiff_t(pixels.size() / 4 * 3));
        }
    }
    // Chroma rows of half the width, rounded down, as the forward conversion lays them out.
    std::vector<uchar> const y(3, 77), u(1, 128), v(1, 128);
    std::vector<uchar> pixels(12);
    SxPicBuf target = fx_Picture({"RGB32", 2, 4}, 3, 1, pixels.data());
    QVERIFY(ConvertIYUVtoRGB32(target, y.data(), u.data(), v.data(), 0, 3, 1));
    QCOMPARE(std::count(pixels.begin(), pixels.end(), uchar(77)), std::ptrdiff_t(9));
}

void tst_IYUVConversion::emptyPictureBackIsNoFailure()
{
    SxPicBuf target = fx_Picture({"RGB32", 2, 4}, 16, 0, nullptr);
    QVERIFY(ConvertIYUVtoRGB32(target, nullptr, nullptr, nullptr, 0, 16, 8));
    target = fx_Picture({"RGB32", 2, 4}, 0, 16, nullptr);
    QVERIFY(ConvertIYUVtoRGB32(target, nullptr, nullptr, nullptr, 0, 16, 8));
}

// Everything once with each table of row kernels that this machine has.
int main(int argc, char** argv)
{
    int failures = 0;
    for (VectorTarget const vectors : fx_GetVectorTargets()) {
        if (!fx_ForceVectorTarget(fx_GetName(vectors)))
            return 1;
        qInfo("Row kernels: %s", fx_GetName(vectors));
        tst_IYUVConversion test;
        failures += QTest::qExec(&test, argc, argv);
    }
    return failures;
}

#include "tst_IYUVConversion.moc"

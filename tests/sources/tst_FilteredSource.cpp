#include <QtTest>
#include <random>

#include "FilteredSource.h"

/// Pictures turned, cropped and scaled: samples go where they belong, at the depth that they have.
class tst_FilteredSource : public QObject
{
    Q_OBJECT

private slots:
    void samplesAreMovedUnchanged_data();
    void samplesAreMovedUnchanged();
    void turningTwiceByHalfChangesNothing();
    void scaledPicturesKeepDepthAndColour_data();
    void scaledPicturesKeepDepthAndColour();
    void noSampleComesOutAboveTheBrightest();
    void oddSidesLoseTheirLastColumnAndRow_data();
    void oddSidesLoseTheirLastColumnAndRow();
    void cropBeyondThePictureIsAnError_data();
    void cropBeyondThePictureIsAnError();
    void pictureThatMemoryHasNoRoomForIsAnError();
    void sizesMayChangeOnTheWay();
    void turningItselfFollowsTheSource_data();
    void turningItselfFollowsTheSource();
};

struct SxFormat
{
    quint32 components;
    quint32 bits;
};
Q_DECLARE_METATYPE(SxFormat)

static void fx_AddFormats(std::function<void(QByteArray const&, SxFormat)> const& add)
{
    for (quint32 const components : {1U, 3U, 4U}) {
        for (quint32 const bits : {8U, 12U, 16U})
            add(QByteArray::number(components) + " x " + QByteArray::number(bits), {components, bits});
    }
}

/// Pictures of given sizes whose samples are anything from \p least on, or all \p least.
class CxNoiseSource : public IxPictureSource
{
public:
    CxNoiseSource(SxFormat format, QVector<QSize> sizes, quint32 least = 0, bool isFlat = false)
        : m_format(format)
        , m_sizes(std::move(sizes))
        , m_least(least)
        , m_isFlat(isFlat)
    {}

    Result next(SxPicBuf& picture) override
    {
        if (m_sizes.isEmpty())
            return Result::End;
        QSize const size = m_sizes.takeFirst();
        if (!fx_PreparePicture(picture, fx_PackedFormat(quint32(size.width()), quint32(size.height()),
                                                        m_format.components, m_format.bits)))
            return Result::Error;
        for (quint32 y = 0; y < picture.height; ++y) {
            unsigned char* const row = picture.data + size_t{y} * picture.pitch;
            for (quint32 i = 0; i < picture.width * picture.components; ++i) {
                quint32 const noise = quint32(m_random()) % ((1U << m_format.bits) - m_least);
                quint32 const sample = m_least + (m_isFlat ? i % picture.components : noise);
                if (fx_IsWordFormat(picture))
                    reinterpret_cast<quint16*>(row)[i] = static_cast<quint16>(sample);
                else
                    row[i] = static_cast<uchar>(sample);
            }
        }
        picture.timestamp = m_time += 40000;
        return Result::Picture;
    }
    void setRotation(int degrees) { m_rotation = degrees; }
    int rotation() const override { return m_rotation; }
    QString errorText() const override { return QString(); }
    int expectedPictures() const override { return static_cast<int>(m_sizes.size()); }
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {}; }
    bool isDamaged() const override { return false; }

private:
    SxFormat m_format;
    QVector<QSize> m_sizes;
    quint32 m_least;
    bool m_isFlat;
    int m_rotation = 0;
    quint64 m_time = 0;
    std::mt19937 m_random{5};
};

/// The samples of one pixel.
static QVector<int> fx_Pixel(SxPicBuf const& picture, int x, int y)
{
    unsigned char const* const row = picture.data + static_cast<size_t>(y) * picture.pitch;
    QVector<int> samples;
    for (quint32 c = 0; c < picture.components; ++c) {
        size_t const at = static_cast<size_t>(x) * picture.components + c;
        samples += fx_IsWordFormat(picture) ? reinterpret_cast<quint16 const*>(row)[at] : row[at];
    }
    return samples;
}

static QSize fx_Size(SxPicBuf const& picture) { return {int(picture.width), int(picture.height)}; }

static SxPictureChanges fx_Turned(int rotation)
{
    SxPictureChanges changes;
    changes.rotation = rotation;
    return changes;
}

/// The first picture of \p size, as it is and changed.
struct SxPair
{
    CxOwnedPicture plain;
    CxOwnedPicture changed;
    QString error;
};

static void fx_Change(SxPair& pair, SxFormat format, QSize size, SxPictureChanges const& changes)
{
    CxNoiseSource(format, {size}).next(pair.plain.get());
    CxFilteredSource source(std::make_unique<CxNoiseSource>(format, QVector<QSize>{size}), changes);
    if (source.next(pair.changed.get()) != IxPictureSource::Result::Picture)
        pair.error = source.errorText();
}

void tst_FilteredSource::samplesAreMovedUnchanged_data()
{
    QTest::addColumn<SxFormat>("format");
    QTest::addColumn<int>("rotation");
    QTest::addColumn<QRect>("part");
    fx_AddFormats([](QByteArray const& name, SxFormat format) {
        for (int const rotation : {0, 90, 180, 270}) {
            QTest::newRow(name + ", whole, by " + QByteArray::number(rotation))
                << format << rotation << QRect();
            QTest::newRow(name + ", a part, by " + QByteArray::number(rotation))
                << format << rotation << QRect(3, 1, 7, 11);
        }
    });
}

void tst_FilteredSource::samplesAreMovedUnchanged()
{
    QFETCH(SxFormat, format);
    QFETCH(int, rotation);
    QFETCH(QRect, part);
    QSize const size(19, 13); // no multiple of anything, so that rows have gaps
    SxPictureChanges changes = fx_Turned(rotation);
    changes.crop = part;
    SxPair pair;
    fx_Change(pair, format, size, changes);
    QVERIFY2(pair.error.isEmpty(), qPrintable(pair.error));

    SxPicBuf const& changed = pair.changed.get();
    QSize const turned = rotation % 180 == 0 ? size : size.transposed();
    QRect const kept = part.isNull() ? QRect(QPoint(0, 0), turned) : part;
    QCOMPARE(fx_Size(changed), kept.size());
    QCOMPARE(changed.bitsPerSample, format.bits);
    QCOMPARE(changed.components, format.components);
    QCOMPARE(changed.timestamp, pair.plain.get().timestamp);
    for (int y = 0; y < kept.height(); ++y) {
        for (int x = 0; x < kept.width(); ++x) {
            QPoint const at = kept.topLeft() + QPoint(x, y); // in the turned picture
            QPoint const from = rotation == 0    ? at
                                : rotation == 90 ? QPoint(at.y(), size.height() - 1 - at.x())
                                : rotation == 180
                                    ? QPoint(size.width() - 1 - at.x(), size.height() - 1 - at.y())
                                    : QPoint(size.width() - 1 - at.y(), at.x());
            QCOMPARE(fx_Pixel(changed, x, y), fx_Pixel(pair.plain.get(), from.x(), from.y()));
        }
    }
}

void tst_FilteredSource::turningTwiceByHalfChangesNothing()
{
    QSize const size(21, 17);
    auto once = std::make_unique<CxFilteredSource>(
        std::make_unique<CxNoiseSource>(SxFormat{3, 16}, QVector<QSize>{size}), fx_Turned(180));
    CxFilteredSource twice(std::move(once), fx_Turned(180));
    CxOwnedPicture plain;
    CxOwnedPicture turned;
    CxNoiseSource({3, 16}, {size}).next(plain.get());
    QVERIFY(twice.next(turned.get()) == IxPictureSource::Result::Picture);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            QCOMPARE(fx_Pixel(turned.get(), x, y), fx_Pixel(plain.get(), x, y));
    }
}

void tst_FilteredSource::scaledPicturesKeepDepthAndColour_data()
{
    QTest::addColumn<SxFormat>("format");
    QTest::addColumn<int>("least");
    fx_AddFormats([](QByteArray const& name, SxFormat format) {
        for (int const part : {1, 3, 8}) // dark, grey and so bright that the last component is white
            QTest::newRow(name + ", " + QByteArray::number(part) + "/8")
                << format << ((part << format.bits) >> 3) - int(part == 8 ? format.components : 0);
    });
}

/// One colour everywhere stays that colour, but for what two conversions round: a 16-bit one that went
/// through eight bits would be off by hundreds.
void tst_FilteredSource::scaledPicturesKeepDepthAndColour()
{
    QFETCH(SxFormat, format);
    QFETCH(int, least);
    SxPictureChanges changes;
    changes.scale = QSize(30, 22);
    CxNoiseSource plainSource(format, {QSize(47, 33)}, quint32(least), true);
    CxOwnedPicture plain;
    plainSource.next(plain.get());
    CxFilteredSource source(
        std::make_unique<CxNoiseSource>(format, QVector<QSize>{QSize(47, 33)}, quint32(least), true),
        changes);
    CxOwnedPicture scaled;
    QVERIFY(source.next(scaled.get()) == IxPictureSource::Result::Picture);
    QCOMPARE(fx_Size(scaled.get()), changes.scale);
    QCOMPARE(scaled.get().bitsPerSample, format.bits);
    QVector<int> const wanted = fx_Pixel(plain.get(), 0, 0);
    int const tolerance = format.components == 1 ? 0 : format.bits == 16 ? 8 : 2;
    for (int y = 0; y < 22; ++y) {
        for (int x = 0; x < 30; ++x) {
            QVector<int> const got = fx_Pixel(scaled.get(), x, y);
            for (int c = 0; c < std::min(int(format.components), 3); ++c)
                QVERIFY2(std::abs(got[c] - wanted[c]) <= tolerance,
                         qPrintable(QStringLiteral("%1 for %2").arg(got[c]).arg(wanted[c])));
        }
    }
}

/// What lies above the significant bits would wrap around to black.
void tst_FilteredSource::noSampleComesOutAboveTheBrightest()
{
    for (quint32 const components : {1U, 3U, 4U}) {
        SxPictureChanges changes;
        changes.scale = QSize(64, 48);
        CxFilteredSource source(
            std::make_unique<CxNoiseSource>(SxFormat{components, 12}, QVector<QSize>{QSize(47, 33)}, 4000),
            changes);
        CxOwnedPicture scaled;
        QVERIFY(source.next(scaled.get()) == IxPictureSource::Result::Picture);
        QVERIFY(fx_HighestSample(scaled.get()) > 4000);
        QVERIFY2(fx_HighestSample(scaled.get()) <= 4095, qPrintable(QString::number(components)));
    }
}

void tst_FilteredSource::oddSidesLoseTheirLastColumnAndRow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("even");
    QTest::newRow("both") << QSize(21, 17) << QSize(20, 16);
    QTest::newRow("width") << QSize(21, 16) << QSize(20, 16);
    QTest::newRow("none") << QSize(20, 16) << QSize(20, 16);
    QTest::newRow("too small anyway") << QSize(15, 17) << QSize(15, 17);
    QTest::newRow("a pixel") << QSize(1, 1) << QSize(1, 1);
}

void tst_FilteredSource::oddSidesLoseTheirLastColumnAndRow()
{
    QFETCH(QSize, size);
    QFETCH(QSize, even);
    SxPictureChanges changes;
    changes.isEven = true;
    SxPair pair;
    fx_Change(pair, {3, 8}, size, changes);
    QCOMPARE(fx_Size(pair.changed.get()), even);
    for (int y = 0; y < even.height(); ++y) {
        for (int x = 0; x < even.width(); ++x)
            QCOMPARE(fx_Pixel(pair.changed.get(), x, y), fx_Pixel(pair.plain.get(), x, y));
    }
}

void tst_FilteredSource::cropBeyondThePictureIsAnError_data()
{
    QTest::addColumn<QRect>("part");
    QTest::addColumn<int>("rotation");
    QTest::newRow("wider") << QRect(0, 0, 22, 17) << 0;
    QTest::newRow("too far right") << QRect(6, 0, 16, 16) << 0;
    QTest::newRow("too far down") << QRect(0, 2, 16, 16) << 0;
    QTest::newRow("outside") << QRect(100, 100, 16, 16) << 0;
    QTest::newRow("only before turning within it") << QRect(0, 0, 21, 17) << 90;
}

void tst_FilteredSource::cropBeyondThePictureIsAnError()
{
    QFETCH(QRect, part);
    QFETCH(int, rotation);
    SxPictureChanges changes = fx_Turned(rotation);
    changes.crop = part;
    SxPair pair;
    fx_Change(pair, {3, 8}, QSize(21, 17), changes);
    QVERIFY2(
        pair.error.startsWith(rotation == 0 ? "Picture 0 is 21 x 17;" : "Picture 0 is 17 x 21 when turned;"),
        qPrintable(pair.error));
}

/// Its pictures say that they are larger than any memory.
class CxVastSource : public CxNoiseSource
{
public:
    using CxNoiseSource::CxNoiseSource;
    Result next(SxPicBuf& picture) override
    {
        Result const result = CxNoiseSource::next(picture);
        picture.width = picture.height = 1U << 30;
        return result;
    }
};

void tst_FilteredSource::pictureThatMemoryHasNoRoomForIsAnError()
{
    CxFilteredSource source(std::make_unique<CxVastSource>(SxFormat{3, 8}, QVector<QSize>{QSize(20, 16)}),
                            fx_Turned(180));
    CxOwnedPicture picture;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Error);
    QVERIFY2(source.errorText().startsWith("Picture 0 cannot be brought to "),
             qPrintable(source.errorText()));
}

void tst_FilteredSource::sizesMayChangeOnTheWay()
{
    SxPictureChanges changes;
    changes.scale = QSize(32, 16);
    QVector<QSize> const sizes{{64, 48}, {32, 16}, {50, 40}, {64, 48}};
    CxFilteredSource source(std::make_unique<CxNoiseSource>(SxFormat{3, 8}, sizes), changes);
    CxOwnedPicture picture;
    for (int i = 0; i < sizes.size(); ++i) {
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(fx_Size(picture.get()), QSize(32, 16));
    }
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End);
}

void tst_FilteredSource::turningItselfFollowsTheSource_data()
{
    QTest::addColumn<int>("own");
    QTest::addColumn<int>("asked"); // -1: auto
    QTest::addColumn<QSize>("size");
    QTest::addColumn<int>("left");
    QTest::newRow("auto, by nothing") << 0 << -1 << QSize(20, 16) << 0;
    QTest::newRow("auto, by a quarter") << 90 << -1 << QSize(16, 20) << 0;
    QTest::newRow("auto, by a half") << 180 << -1 << QSize(20, 16) << 0;
    QTest::newRow("left as it is") << 90 << 0 << QSize(20, 16) << 90;
    QTest::newRow("the user's instead of its own") << 90 << 180 << QSize(20, 16) << 0;
}

void tst_FilteredSource::turningItselfFollowsTheSource()
{
    QFETCH(int, own);
    QFETCH(int, asked);
    QFETCH(QSize, size);
    QFETCH(int, left);
    SxPictureChanges changes = fx_Turned(std::max(asked, 0));
    changes.turnsItself = asked < 0;
    auto turned = std::make_unique<CxNoiseSource>(SxFormat{3, 8}, QVector<QSize>{QSize(20, 16)});
    turned->setRotation(own);
    CxFilteredSource source(std::move(turned), changes);
    CxOwnedPicture picture;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
    QCOMPARE(fx_Size(picture.get()), size);
    QCOMPARE(source.rotation(), left);
    QVERIFY(!source.rate().isKnown()); // nor is its source's
}

QTEST_GUILESS_MAIN(tst_FilteredSource)
#include "tst_FilteredSource.moc"

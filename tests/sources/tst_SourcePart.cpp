#include <QtTest>

#include "PictureFormat.h"
#include "SourcePart.h"

/// Parts of a source: exactly the pictures that are asked for.
class tst_SourcePart : public QObject
{
    Q_OBJECT

private slots:
    void lengthsAreTimesOrPictures_data();
    void lengthsAreTimesOrPictures();
    void partHasExactlyItsPictures_data();
    void partHasExactlyItsPictures();
    void unsteadyPicturesAreNotForetold();
    void startBehindTheEndIsAnError();
    void stopEndsTheWayToTheStart();
    void livePartHasAnEnd();
};

void tst_SourcePart::lengthsAreTimesOrPictures_data()
{
    QTest::addColumn<qint64>("value"); // -1: none
    QTest::addColumn<bool>("isPictures");
    auto const time = [](char const* text, qint64 microseconds) {
        QTest::newRow(text) << microseconds << false;
    };
    time("3s", 3000000);
    time("0s", 0);
    time("2.5s", 2500000);
    time("500ms", 500000);
    time("0.25ms", 250);
    time("10m", 600000000);
    time("1.5h", 5400000000);
    time("1:02.5", 62500000);
    time("0:00.04", 40000);
    time("90:00", 5400000000);
    time("1:00:00", 3600000000);
    time("10:59:59.999999", 39599999999);
    QTest::newRow("100f") << qint64{100} << true;
    QTest::newRow("0f") << qint64{0} << true;
    for (char const* text : {"",      "3",    "2.5",         "f",          "s",      "-1s", "+1s", "1 s",
                             "1d",    "1:2",  "1:60",        "1:60:00",    "1:2:03", ":30", "1:",  "1e3s",
                             "0x10f", "1.5f", "9999999999f", "1:02:03:04", "100F",   "½s"})
        QTest::newRow(text) << qint64{-1} << false;
}

void tst_SourcePart::lengthsAreTimesOrPictures()
{
    QFETCH(qint64, value);
    QFETCH(bool, isPictures);
    std::optional<SxPlayLength> const length = fx_PlayLength(QString::fromUtf8(QTest::currentDataTag()));
    QCOMPARE(length.has_value(), value >= 0);
    if (!length)
        return;
    QCOMPARE(length->value, value);
    QCOMPARE(length->isPictures, isPictures);
}

/// Pictures whose first sample is their number, at given times.
class CxTimedSource : public IxPictureSource
{
public:
    CxTimedSource(QVector<quint64> times, SxPictureRate rate, bool isLive = false)
        : m_times(std::move(times))
        , m_rate(rate)
        , m_isLive(isLive)
    {}

    Result next(SxPicBuf& picture) override
    {
        if (m_next >= m_times.size())
            return Result::End;
        if (!fx_PreparePicture(picture, fx_PackedFormat(16, 16, 1, 8)))
            return Result::Error;
        picture.data[0] = static_cast<uchar>(m_next);
        picture.timestamp = m_times[m_next++];
        return Result::Picture;
    }
    QString errorText() const override { return QString(); }
    int expectedPictures() const override { return m_isLive ? -1 : static_cast<int>(m_times.size()); }
    bool hasEnd() const override { return !m_isLive; }
    SxPictureRate rate() const override { return m_rate; }
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {}; }
    bool isDamaged() const override { return false; }

private:
    QVector<quint64> m_times;
    SxPictureRate m_rate;
    bool m_isLive;
    int m_next = 0;
};

static QVector<quint64> fx_SteadyTimes(SxPictureRate rate, int count)
{
    QVector<quint64> times;
    for (quint64 i = 0; i < static_cast<quint64>(count); ++i)
        times += (i * 1000000 * static_cast<quint64>(rate.denominator) +
                  static_cast<quint64>(rate.numerator) / 2) /
                 static_cast<quint64>(rate.numerator);
    return times;
}

static SxPictureRate fx_Rate(int numerator, int denominator = 1)
{
    SxPictureRate rate;
    rate.numerator = numerator;
    rate.denominator = denominator;
    return rate;
}

static SxSourcePart fx_Part(QString const& start, QString const& duration)
{
    SxSourcePart part;
    part.start = fx_PlayLength(start);
    part.duration = fx_PlayLength(duration);
    return part;
}

void tst_SourcePart::partHasExactlyItsPictures_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("duration");
    QTest::addColumn<int>("numerator");
    QTest::addColumn<int>("denominator");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("count"); // of 60
    auto const row = [](char const* start, char const* duration, int numerator, int denominator, int first,
                        int count) {
        QTest::addRow("%s + %s at %d/%d", start, duration, numerator, denominator)
            << start << duration << numerator << denominator << first << count;
    };
    row("", "", 30, 1, 0, 60);
    row("0s", "", 30, 1, 0, 60);
    row("1s", "", 30, 1, 30, 30);
    row("1s", "500ms", 30, 1, 30, 15);
    row("999ms", "500ms", 30, 1, 30, 15);
    row("1.001s", "500ms", 30, 1, 31, 15);
    row("", "1s", 25, 1, 0, 25);
    row("1.001s", "1.001s", 24000, 1001, 24, 24);
    row("1s", "1s", 24000, 1001, 24, 24);
    row("10f", "5f", 25, 1, 10, 5);
    row("10f", "1s", 25, 1, 10, 25);
    row("200ms", "7f", 25, 1, 5, 7);
    row("59f", "", 25, 1, 59, 1);
    row("50f", "1:00", 25, 1, 50, 10);
    row("", "1f", 25, 1, 0, 1);
}

void tst_SourcePart::partHasExactlyItsPictures()
{
    QFETCH(QString, start);
    QFETCH(QString, duration);
    QFETCH(int, numerator);
    QFETCH(int, denominator);
    QFETCH(int, first);
    QFETCH(int, count);
    SxPictureRate const rate = fx_Rate(numerator, denominator);
    QVector<quint64> const times = fx_SteadyTimes(rate, 60);
    CxPartOfSource source(std::make_unique<CxTimedSource>(times, rate), fx_Part(start, duration), nullptr);
    QCOMPARE(source.expectedPictures(), count);
    CxOwnedPicture picture;
    for (int i = 0; i < count; ++i) {
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(int(picture.get().data[0]), first + i);
        QCOMPARE(picture.get().timestamp, times[first + i] - times[first]);
        QCOMPARE(source.expectedPictures(), count);
    }
    for (int i = 0; i < 2; ++i)
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End);
}

void tst_SourcePart::unsteadyPicturesAreNotForetold()
{
    SxPictureRate rate = fx_Rate(10);
    rate.isAverage = true;
    QVector<quint64> const times{0, 1000, 2000, 500000, 600000, 1000000, 2000000};
    CxPartOfSource source(std::make_unique<CxTimedSource>(times, rate), fx_Part("1.5ms", "700ms"), nullptr);
    QCOMPARE(source.expectedPictures(), -1);
    CxOwnedPicture picture;
    for (int i = 2; i < 5; ++i) {
        QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Picture);
        QCOMPARE(int(picture.get().data[0]), i);
        QCOMPARE(source.expectedPictures(), -1);
    }
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End);
}

void tst_SourcePart::startBehindTheEndIsAnError()
{
    SxPictureRate const rate = fx_Rate(25);
    CxPartOfSource source(std::make_unique<CxTimedSource>(fx_SteadyTimes(rate, 60), rate),
                          fx_Part("60f", "1s"), nullptr);
    CxOwnedPicture picture;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::Error);
    QCOMPARE(source.errorText(),
             QString("The last of the pictures is number 59, at 2.360 s: the start lies behind it."));
}

void tst_SourcePart::stopEndsTheWayToTheStart()
{
    std::atomic<bool> const stop{true};
    SxPictureRate const rate = fx_Rate(25);
    CxPartOfSource source(std::make_unique<CxTimedSource>(fx_SteadyTimes(rate, 60), rate), fx_Part("50f", ""),
                          &stop);
    CxOwnedPicture picture;
    QVERIFY(source.next(picture.get()) == IxPictureSource::Result::End);
}

void tst_SourcePart::livePartHasAnEnd()
{
    SxPictureRate const rate = fx_Rate(25);
    auto const live = [&] { return std::make_unique<CxTimedSource>(fx_SteadyTimes(rate, 60), rate, true); };
    CxPartOfSource const endless(live(), fx_Part("1s", ""), nullptr);
    QVERIFY(!endless.hasEnd());
    QCOMPARE(endless.expectedPictures(), -1);
    CxPartOfSource const part(live(), fx_Part("1s", "2s"), nullptr);
    QVERIFY(part.hasEnd());
    QCOMPARE(part.expectedPictures(), 50);
}

QTEST_GUILESS_MAIN(tst_SourcePart)
#include "tst_SourcePart.moc"

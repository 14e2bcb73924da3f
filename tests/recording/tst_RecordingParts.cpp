#include <QtTest>

#include "RecordingParts.h"

/// Pictures at given times; before each as many were lost as were asked for.
class CxTimedSource : public IxPictureSource
{
public:
    explicit CxTimedSource(QVector<quint64> times)
        : m_times(times)
    {}
    Result next(SxPicBuf& picture) override
    {
        ++m_asked;
        if (m_asked > m_times.size() || !fx_PreparePicture(picture, fx_PackedFormat(16, 16, 1, 8)))
            return Result::End;
        picture.timestamp = m_times[m_asked - 1];
        return Result::Picture;
    }
    QString errorText() const override { return {}; }
    int expectedPictures() const override { return static_cast<int>(m_times.size()); }
    SxMissingPictures missing() const override { return {m_asked, 0}; }
    SxPictureRate rate() const override { return {5, 1, true}; } // of all
    bool knowsSignificantBits() const override { return true; }
    QStringList takeWarnings() override { return {}; }
    bool isDamaged() const override { return false; }

private:
    QVector<quint64> m_times;
    int m_asked = 0;
};

/// Where one file of a recording ends and the next begins.
class tst_RecordingParts : public QObject
{
    Q_OBJECT

private slots:
    void numbersStandBeforeTheSuffix();
    void partsEndByTheTimeSinceTheFirstPicture_data();
    void partsEndByTheTimeSinceTheFirstPicture();
    void bytesEndAPartBeforeTheNextPicture();
    void averageIsThatOfThePart();
    void lossesBetweenPartsBelongToTheFirst();
};

void tst_RecordingParts::numbersStandBeforeTheSuffix()
{
    QCOMPARE(fx_NumberedRecording("a.b/out.h264", 1), QString("a.b/out_001.h264"));
    QCOMPARE(fx_NumberedRecording("out.264", 1000), QString("out_1000.264"));
    QCOMPARE(fx_NumberedRecording("x %1.h264", 12), QString("x %1_012.h264"));
}

void tst_RecordingParts::partsEndByTheTimeSinceTheFirstPicture_data()
{
    using Times = QVector<quint64>;
    using Parts = QVector<Times>;
    QTest::addColumn<Times>("times");
    QTest::addColumn<Parts>("parts");
    QTest::newRow("steady") << Times{0, 40, 80, 100, 140, 200} << Parts{{0, 40, 80}, {0, 40}, {0}};
    QTest::newRow("later") << Times{1000, 1099, 1100} << Parts{{0, 99}, {0}};
    QTest::newRow("no drift") << Times{0, 70, 140, 190, 210} << Parts{{0, 70}, {0, 50}, {0}};
    QTest::newRow("gap") << Times{0, 70, 460, 490, 510} << Parts{{0, 70}, {0, 30}, {0}};
    QTest::newRow("seldom") << Times{0, 150, 300} << Parts{{0}, {0}, {0}};
}

void tst_RecordingParts::partsEndByTheTimeSinceTheFirstPicture()
{
    QFETCH(QVector<quint64>, times);
    QFETCH(QVector<QVector<quint64>>, parts);
    CxTimedSource source(times);
    CxSourceInParts inParts(source, {100, 0});
    CxOwnedPicture picture;
    for (QVector<quint64> const& expected : parts) {
        inParts.beginPart();
        QVector<quint64> came;
        while (inParts.next(picture.get()) == IxPictureSource::Result::Picture)
            came.append(picture.get().timestamp);
        QCOMPARE(came, expected);
        QCOMPARE(inParts.hasMore(), &expected != &parts.last());
    }
}

void tst_RecordingParts::bytesEndAPartBeforeTheNextPicture()
{
    CxTimedSource source({0, 1, 2, 3});
    CxSourceInParts inParts(source, {0, 1000});
    CxOwnedPicture picture;
    inParts.beginPart();
    for (qint64 const bytes : {999, 1000}) {
        QVERIFY(inParts.next(picture.get()) == IxPictureSource::Result::Picture);
        inParts.noteBytes(bytes);
    }
    QVERIFY(inParts.next(picture.get()) == IxPictureSource::Result::End);
    QVERIFY(inParts.hasMore());
    inParts.beginPart();
    for (int i = 0; i < 2; ++i)
        QVERIFY(inParts.next(picture.get()) == IxPictureSource::Result::Picture);
    inParts.noteBytes(1000);
    QVERIFY(inParts.next(picture.get()) == IxPictureSource::Result::End);
    QVERIFY(!inParts.hasMore()); // nothing follows, so there is no empty file
}

void tst_RecordingParts::averageIsThatOfThePart()
{
    // A gap in the first second, then 25 pictures a second.
    CxTimedSource source({0, 800000, 1000000, 1040000, 1080000, 1120000, 2000000});
    CxSourceInParts parts(source, {1000000, 0});
    CxOwnedPicture picture;
    QVector<double> rates;
    for (int part = 0; part < 3; ++part) {
        parts.beginPart();
        while (parts.next(picture.get()) == IxPictureSource::Result::Picture) {
        }
        rates.append(parts.rate().perSecond());
    }
    QCOMPARE(rates, (QVector<double>{1.25, 25, 5})); // one picture alone has none of its own
}

void tst_RecordingParts::lossesBetweenPartsBelongToTheFirst()
{
    CxTimedSource source({0, 50, 100, 150});
    CxSourceInParts inParts(source, {100, 0});
    CxOwnedPicture picture;
    inParts.beginPart();
    inParts.next(picture.get());
    inParts.next(picture.get());
    QCOMPARE(inParts.missing().lost, 2);
    QVERIFY(inParts.next(picture.get()) == IxPictureSource::Result::End);
    QCOMPARE(inParts.missing().lost, 3);
    inParts.beginPart();
    QVERIFY(inParts.next(picture.get()) == IxPictureSource::Result::Picture);
    QCOMPARE(inParts.missing().lost, 0); // told before
    QVERIFY(inParts.next(picture.get()) == IxPictureSource::Result::Picture);
    QCOMPARE(inParts.missing().lost, 4);
}

QTEST_GUILESS_MAIN(tst_RecordingParts)
#include "tst_RecordingParts.moc"

#include <QAction>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include "Overview.h"
#include "support/Mouse.h"
#include "support/NotedCopy.h"
#include "support/ViewerWindow.h"

class tst_Overview : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void skippedPicturesLieBetweenRecordedOnes();
    void barsAreAsHighAsTheirBytes();
    void wheelZoomsAroundTheMouse();
    void longRecordingZoomsToSinglePictures();
    void keysZoomAndScroll();
    void scrollsToThePictureShown();
    void keyShowsItAndAClickSeeks();
    void brokenPicturesAreRed();
    void liveSourcesHaveNone();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

static void fx_Wheel(QWidget& widget, QPointF const& place, QPoint const& turn)
{
    QWheelEvent wheel(place, widget.mapToGlobal(place.toPoint()), {}, turn, {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &wheel);
}

/// Every tenth picture a key frame of 1000 bytes, the others of 400 and, picture 15, of 800.
static SxOpenedRecording fx_Recording(int count)
{
    SxOpenedRecording info;
    info.fileName = QStringLiteral("x.h264");
    info.count = count;
    info.fps = 30.0;
    for (int i = 0; i < count; ++i) {
        info.bytes.append(i % 10 == 0 ? 1000 : i == 15 ? 800 : 400);
        if (i % 10 == 0)
            info.keyFrames.append(i);
    }
    return info;
}

/// How many pixels of a column differ from the ground, from below.
static int fx_BarHeight(QImage const& image, int x)
{
    int height = 0;
    while (height < image.height() && image.pixel(x, image.height() - 1 - height) != image.pixel(0, 0))
        ++height;
    return height;
}

void tst_Overview::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_Overview::skippedPicturesLieBetweenRecordedOnes()
{
    // Of the source's pictures 0 to 9, 3 to 5 and 7 were skipped: recorded are 0 1 2 6 8 9.
    QCOMPARE(fx_SkippedBefore({{3, 5}, {7, 7}}), (std::map<int, int>{{3, 3}, {4, 1}}));
    QCOMPARE(fx_SkippedBefore({{0, 1}}), (std::map<int, int>{{0, 2}}));
    QVERIFY(fx_SkippedBefore({}).empty());
}

void tst_Overview::barsAreAsHighAsTheirBytes()
{
    CxOverview overview;
    overview.resize(400, 57); // ten pixels a picture, 50 high
    SxOpenedRecording info = fx_Recording(40);
    info.sidecar.sidecar = SxSidecar();
    info.sidecar.sidecar->skipped = {{22, 23}}; // before picture 22
    overview.setRecording(info);
    overview.markBroken(33);
    QImage const image = overview.grab().toImage();
    QCOMPARE(fx_BarHeight(image, 5), 50);
    QCOMPARE(fx_BarHeight(image, 25), 20);
    QCOMPARE(fx_BarHeight(image, 155), 40);
    QCOMPARE(fx_BarHeight(image, 335), 50);
    QVERIFY(image.pixelColor(5, 55) == overview.palette().color(QPalette::Highlight));
    QVERIFY(image.pixelColor(25, 55) != image.pixelColor(5, 55));
    QVERIFY(image.pixelColor(335, 55).red() > 2 * image.pixelColor(335, 55).green());
    QColor const amber = image.pixelColor(220, 2);
    QVERIFY(amber.red() > amber.green() && amber.green() > 2 * amber.blue());
    QVERIFY(image.pixelColor(250, 2) != amber);
}

void tst_Overview::wheelZoomsAroundTheMouse()
{
    CxOverview overview;
    overview.resize(400, 56);
    overview.setRecording(fx_Recording(400));
    for (int i = 0; i < 5; ++i)
        fx_Wheel(overview, {100, 20}, {0, 120});
    QVERIFY(overview.shownCount() < 140.0);
    QVERIFY(std::abs(overview.firstShown() + overview.shownCount() / 4.0 - 100.0) < 1e-6);
    double const first = overview.firstShown();
    fx_Wheel(overview, {100, 20}, {-120, 0}); // to the side
    QVERIFY(overview.firstShown() > first);
    for (int i = 0; i < 9; ++i)
        fx_Wheel(overview, {300, 20}, {0, -120});
    QCOMPARE(overview.shownCount(), 400.0);
    QCOMPARE(overview.firstShown(), 0.0);
}

void tst_Overview::longRecordingZoomsToSinglePictures()
{
    CxOverview overview;
    overview.resize(400, 57);
    overview.setRecording(fx_Recording(108000)); // an hour: 270 pictures to a pixel
    QCOMPARE(fx_BarHeight(overview.grab().toImage(), 200), 50);
    QSignalSpy chosen(&overview, &CxOverview::chosen);
    for (int i = 0; i < 60; ++i)
        fx_Wheel(overview, {200, 20}, {0, 120});
    QCOMPARE(overview.shownCount(), 10.0);
    QCOMPARE(overview.firstShown(), 53995.0);
    for (int const number : {53995, 53999, 54004}) {
        QTest::mouseClick(&overview, Qt::LeftButton, {}, {(number - 53995) * 40 + 20, 20});
        QCOMPARE(chosen.last().first().toInt(), number);
    }
}

void tst_Overview::keysZoomAndScroll()
{
    CxOverview overview;
    overview.resize(400, 56);
    overview.setRecording(fx_Recording(400));
    overview.setShownNumber(100);
    for (int i = 0; i < 6; ++i)
        QTest::keyClick(&overview, Qt::Key_Up);
    QVERIFY(overview.shownCount() < 110.0);
    QVERIFY(overview.firstShown() < 100.0 && overview.firstShown() + overview.shownCount() > 100.0);
    double const first = overview.firstShown();
    QTest::keyClick(&overview, Qt::Key_PageDown);
    QVERIFY(overview.firstShown() > first + overview.shownCount() / 2);
    QTest::keyClick(&overview, Qt::Key_PageUp);
    QVERIFY(std::abs(overview.firstShown() - first) < 1e-6);
    for (int i = 0; i < 9; ++i)
        QTest::keyClick(&overview, Qt::Key_Down);
    QCOMPARE(overview.shownCount(), 400.0);
}

void tst_Overview::scrollsToThePictureShown()
{
    CxOverview overview;
    overview.resize(400, 56);
    overview.setRecording(fx_Recording(400));
    for (int i = 0; i < 20; ++i)
        fx_Wheel(overview, {0, 20}, {0, 120});
    QCOMPARE(overview.firstShown(), 0.0);
    overview.setShownNumber(3); // inside: stays
    QCOMPARE(overview.firstShown(), 0.0);
    overview.setShownNumber(300);
    QVERIFY(overview.firstShown() <= 300.0 && overview.firstShown() + overview.shownCount() > 300.0);
}

void tst_Overview::keyShowsItAndAClickSeeks()
{
    CxViewerWindow viewer(*m_fixture);
    QString const noted = m_fixture->path(QStringLiteral("noted.h264"));
    QVERIFY(fx_CopyWithSidecar(m_recording, noted));
    QVERIFY(viewer.open(noted));
    auto* const overview = viewer.child<CxOverview>("overview");
    QVERIFY(!overview->isVisible());
    viewer.key(Qt::Key_B);
    QVERIFY(overview->isVisible());
    auto const placeOf = [&](int number) { return QPoint((2 * number + 1) * overview->width() / 80, 30); };
    QTest::mouseClick(overview, Qt::LeftButton, {}, placeOf(23));
    QTRY_COMPARE(viewer.window.player().shownNumber(), 23);
    QTest::mousePress(overview, Qt::LeftButton, {}, placeOf(10));
    fx_MoveMouse(overview, placeOf(31), Qt::LeftButton);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 31);
    QTest::mouseRelease(overview, Qt::LeftButton, {}, placeOf(31));
    // The sidecar's skipped pictures: three before picture 3.
    QColor const amber = overview->grab().toImage().pixelColor(3 * overview->width() / 40, 2);
    QVERIFY(amber.red() > amber.green() && amber.green() > 2 * amber.blue());
    viewer.key(Qt::Key_B);
    QVERIFY(!overview->isVisible());
}

void tst_Overview::brokenPicturesAreRed()
{
    CxViewerWindow viewer(*m_fixture);
    QString const broken = m_fixture->damage(m_recording, QStringLiteral("broken.h264"));
    QVERIFY(!broken.isEmpty() && viewer.open(broken));
    viewer.key(Qt::Key_B);
    auto* const overview = viewer.child<CxOverview>("overview");
    auto const reds = [&] {
        QImage const image = overview->grab().toImage();
        int count = 0;
        for (int x = 0; x < image.width(); ++x) {
            QColor const colour = image.pixelColor(x, image.height() / 3);
            count += colour.red() > 2 * colour.green() && colour.red() > 2 * colour.blue() ? 1 : 0;
        }
        return count;
    };
    QCOMPARE(reds(), 0);
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(reds() > 0);
}

void tst_Overview::liveSourcesHaveNone()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_B);
    auto* const overview = viewer.child<CxOverview>("overview");
    viewer.openCamera();
    QTRY_VERIFY(!overview->isVisible());
    QVERIFY(viewer.open(m_recording));
    QTRY_VERIFY(overview->isVisible()); // it was asked for
}

QTEST_MAIN(tst_Overview)
#include "tst_Overview.moc"

#include <QDockWidget>
#include <QFile>
#include <QRadioButton>
#include <QSettings>
#include <QSpinBox>
#include <QTest>

#include "support/Mouse.h"
#include "support/ViewerWindow.h"

class tst_MeasureControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void mouseDrawsARegion();
    void numbersSetTheRegion();
    void mouseDrawsALine();
    void followsThePicture();
    void closedItLeavesTheMouseToThePicture();

private:
    /// A window with a picture of 16 x 16, each sample 10 times its column, and the panel.
    bool open(CxViewerWindow& viewer);
    /// Drags from the middle of one pixel to that of another.
    void drag(CxViewerWindow const& viewer, QPoint const& from, QPoint const& to);

    std::unique_ptr<CxViewerFixture> m_fixture;
};

void tst_MeasureControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    QFile picture(m_fixture->path(QStringLiteral("ramp.pgm")));
    QVERIFY(picture.open(QIODevice::WriteOnly));
    picture.write("P5 16 16 255\n");
    for (int i = 0; i < 256; ++i)
        picture.putChar(static_cast<char>(i % 16 * 10));
}

bool tst_MeasureControl::open(CxViewerWindow& viewer)
{
    viewer.window.openNamed(m_fixture->path(QStringLiteral("ramp.pgm")));
    viewer.key(Qt::Key_R);
    return QTest::qWaitFor([&] { return viewer.text("mean") == QLatin1String("75.00"); });
}

void tst_MeasureControl::drag(CxViewerWindow const& viewer, QPoint const& from, QPoint const& to)
{
    auto* const overlay = viewer.child<QWidget>("measureOverlay");
    auto const place = [&](QPoint const& pixel) {
        return viewer.view->toView().map(QPointF(pixel) + QPointF(0.5, 0.5)).toPoint();
    };
    QTest::mousePress(overlay, Qt::LeftButton, {}, place(from));
    fx_MoveMouse(overlay, (place(from) + place(to)) / 2, Qt::LeftButton);
    fx_MoveMouse(overlay, place(to), Qt::LeftButton);
    QTest::mouseRelease(overlay, Qt::LeftButton, {}, place(to));
}

void tst_MeasureControl::mouseDrawsARegion()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(open(viewer)); // the middle quarter: columns 4 to 11
    QImage const before = viewer.view->grab().toImage();
    QPoint const corner = viewer.view->pixelAt({0, 0});
    drag(viewer, {9, 6}, {2, 3}); // back and up
    QCOMPARE(viewer.child<QSpinBox>("regionLeft")->value(), 2);
    QCOMPARE(viewer.child<QSpinBox>("regionTop")->value(), 3);
    QCOMPARE(viewer.child<QSpinBox>("regionWidth")->value(), 8);
    QCOMPARE(viewer.child<QSpinBox>("regionHeight")->value(), 4);
    QTRY_COMPARE(viewer.text("mean"), QStringLiteral("55.00")); // columns 2 to 9
    QCOMPARE(viewer.text("lowest"), QStringLiteral("20"));
    QCOMPARE(viewer.text("highest"), QStringLiteral("90"));
    QCOMPARE(viewer.text("deviation"), QStringLiteral("22.91")); // root of 525
    QCOMPARE(viewer.text("components"), QStringLiteral("Grey"));
    QVERIFY(viewer.view->grab().toImage() != before); // it is drawn there
    QCOMPARE(viewer.view->pixelAt({0, 0}), corner);   // and nothing moved
    drag(viewer, {12, 12}, {400, 400});               // never leaves the picture
    QCOMPARE(viewer.child<QSpinBox>("regionWidth")->value(), 4);
    QTRY_COMPARE(viewer.text("mean"), QStringLiteral("135.00"));
}

void tst_MeasureControl::numbersSetTheRegion()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(open(viewer));
    for (auto const& number : {std::pair("regionLeft", "14"), std::pair("regionWidth", "1")}) {
        auto* const box = viewer.child<QSpinBox>(number.first);
        box->selectAll();
        QTest::keyClicks(box, QString::fromLatin1(number.second));
        QTest::keyClick(box, Qt::Key_Return);
    }
    QTRY_COMPARE(viewer.text("mean"), QStringLiteral("140.00"));
    QCOMPARE(viewer.text("deviation"), QStringLiteral("0.00"));
    QTest::keyClick(viewer.child<QSpinBox>("regionLeft"), Qt::Key_Up);
    QTRY_COMPARE(viewer.text("mean"), QStringLiteral("150.00"));
    QCOMPARE(viewer.child<QSpinBox>("regionWidth")->maximum(), 1); // up to the edge
}

void tst_MeasureControl::mouseDrawsALine()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(open(viewer));
    auto* const plot = viewer.child<QWidget>("profile");
    QImage const rising = plot->grab().toImage(); // along the middle row
    QTest::keyClick(viewer.child<QRadioButton>("drawsLine"), Qt::Key_Space);
    drag(viewer, {13, 2}, {4, 9});
    QCOMPARE(viewer.child<QSpinBox>("lineX1")->value(), 13);
    QCOMPARE(viewer.child<QSpinBox>("lineY1")->value(), 2);
    QCOMPARE(viewer.child<QSpinBox>("lineX2")->value(), 4);
    QCOMPARE(viewer.child<QSpinBox>("lineY2")->value(), 9);
    QCOMPARE(viewer.text("mean"), QStringLiteral("75.00")); // the region stays
    // Rising or falling: on the left the line is high now.
    auto const isHighOnTheLeft = [](QImage const& image) {
        for (int y = 0; y < image.height() / 4; ++y) {
            for (int x = 0; x < image.width() / 8; ++x) {
                if (qGray(image.pixel(x, y)) > 120)
                    return true;
            }
        }
        return false;
    };
    QVERIFY(!isHighOnTheLeft(rising));
    QTRY_VERIFY(isHighOnTheLeft(plot->grab().toImage()));
}

void tst_MeasureControl::followsThePicture()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.key(Qt::Key_R); // before there is a picture
    viewer.openCamera();
    QTRY_VERIFY(viewer.text("mean").count(QLatin1Char('\n')) == 2); // red, green, blue
    QCOMPARE(viewer.text("components"), QStringLiteral("Red\nGreen\nBlue"));
    QCOMPARE(viewer.child<QSpinBox>("regionWidth")->value(), 80);
    QString const first = viewer.text("deviation");
    QTRY_VERIFY(viewer.text("deviation") != first); // it is noisy
    fx_MoveMouse(viewer.child<QWidget>("measureOverlay"), viewer.view->rect().center());
    QTRY_VERIFY(!viewer.text("pixel").isEmpty());
}

void tst_MeasureControl::closedItLeavesTheMouseToThePicture()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(open(viewer));
    QVERIFY(viewer.child<QWidget>("measureOverlay")->isVisible());
    viewer.key(Qt::Key_R);
    QVERIFY(!viewer.child<QWidget>("measureOverlay")->isVisible());
    QVERIFY(!viewer.child<QDockWidget>("measureDock")->isVisible());
}

QTEST_MAIN(tst_MeasureControl)
#include "tst_MeasureControl.moc"

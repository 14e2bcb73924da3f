#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include "PictureView.h"
#include "support/Mouse.h"
#include "support/PatternPicture.h"

class tst_PictureView : public QObject
{
    Q_OBJECT

private slots:
    void fitsAndFollowsItsSize_data();
    void fitsAndFollowsItsSize();
    void actualSizeKeepsTheMiddle();
    void wheelKeepsPixelUnderMouse();
    void zoomIsLimited();
    void enlargedPixelsAreSquares();
    void dragPans();
    void keysPan();
    void keepsPlaceWhileSizeStays();
    void keepsPlacePastMissingPicture();
    void paintsPicture();
    void reducedPictureIsAveragedAtOnce();
    void turnedPixelsLieWhereTheyAreFound_data();
    void turnedPixelsLieWhereTheyAreFound();
    void reducedPictureIsTurned();
    void pixelShapeStretches();
    void paintsNotice();
    void reportsLeftDoubleClickOnly();
};

void tst_PictureView::fitsAndFollowsItsSize_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("zoom");
    QTest::newRow("wide") << QSize(800, 100) << 0.5;
    QTest::newRow("high") << QSize(100, 600) << 0.5;
    QTest::newRow("small") << QSize(40, 30) << 10.0;
    QTest::newRow("4096 x 2304") << QSize(4096, 2304) << 400.0 / 4096.0;
}

void tst_PictureView::fitsAndFollowsItsSize()
{
    QFETCH(QSize, size);
    QFETCH(double, zoom);
    CxPictureView view;
    view.resize(400, 300);
    view.show();
    view.setPicture(fx_PatternPicture(fx_PackedFormat(quint32(size.width()), quint32(size.height()), 1, 8)));
    QVERIFY(view.isFitted());
    QCOMPARE(view.zoom(), zoom);
    QCOMPARE(view.pixelAt({200, 150}), QPoint(size.width() / 2, size.height() / 2));
    view.resize(800, 600);
    QCOMPARE(view.zoom(), 2 * zoom);
}

void tst_PictureView::actualSizeKeepsTheMiddle()
{
    CxPictureView view;
    view.resize(400, 300);
    view.setPicture(fx_PatternPicture(fx_PackedFormat(1000, 1000, 1, 8)));
    QSignalSpy zoomed(&view, &CxPictureView::zoomChanged);
    view.showActualSize();
    QCOMPARE(view.zoom(), 1.0);
    QVERIFY(!view.isFitted());
    QCOMPARE(zoomed.last().first().toDouble(), 1.0);
    QCOMPARE(view.pixelAt({200, 150}), QPoint(500, 500)); // still in the middle
    view.fit();
    QVERIFY(view.isFitted());
}

void tst_PictureView::wheelKeepsPixelUnderMouse()
{
    CxPictureView view;
    view.resize(400, 300);
    view.setPicture(fx_PatternPicture(fx_PackedFormat(1000, 750, 1, 8)));
    QPointF const mouse(101, 57);
    for (int const turn : {120, 120, 120, 120, 240, -120, 120}) {
        QPoint const before = view.pixelAt(mouse);
        double const zoom = view.zoom();
        QWheelEvent wheel(mouse, mouse, {}, {0, turn}, {}, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &wheel);
        QVERIFY(turn > 0 ? view.zoom() > zoom : view.zoom() < zoom);
        QVERIFY((view.pixelAt(mouse) - before).manhattanLength() <= 1);
    }
}

void tst_PictureView::zoomIsLimited()
{
    CxPictureView view;
    view.resize(400, 300);
    view.setPicture(fx_PatternPicture(fx_PackedFormat(100, 100, 1, 8)));
    for (int i = 0; i < 100; ++i)
        view.zoomIn();
    QCOMPARE(view.zoom(), 64.0);
    for (int i = 0; i < 100; ++i)
        view.zoomOut();
    QCOMPARE(view.zoom(), 1.0 / 32.0);
}

void tst_PictureView::enlargedPixelsAreSquares()
{
    CxPictureView view;
    view.resize(400, 300);
    SxShownPicture const picture = fx_PatternPicture(fx_PackedFormat(40, 30, 1, 8));
    view.setPicture(picture); // ten times as large
    QImage const painted = view.grab().toImage();
    for (int y = 0; y < 300; y += 3) {
        for (int x = 0; x < 400; x += 3)
            QCOMPARE(qGray(painted.pixel(x, y)), qGray(picture.image.pixel(x / 10, y / 10)));
    }
}

void tst_PictureView::dragPans()
{
    CxPictureView view;
    view.resize(400, 300);
    view.setPicture(fx_PatternPicture(fx_PackedFormat(1000, 1000, 1, 8)));
    view.showActualSize();
    QPoint const before = view.pixelAt({200, 150});
    QTest::mousePress(&view, Qt::LeftButton, {}, {200, 150});
    fx_MoveMouse(&view, {150, 120}, Qt::LeftButton);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {150, 120});
    QCOMPARE(view.pixelAt({200, 150}), before + QPoint(50, 30));
    // Never beyond the picture's edge.
    view.pan({-10000, -10000});
    QCOMPARE(view.pixelAt({399, 299}), QPoint(999, 999));
    view.pan({10000, 10000});
    QCOMPARE(view.pixelAt({0, 0}), QPoint(0, 0));
}

void tst_PictureView::keysPan()
{
    CxPictureView view;
    view.resize(400, 300);
    view.setPicture(fx_PatternPicture(fx_PackedFormat(1000, 1000, 1, 8)));
    view.showActualSize();
    QPoint const before = view.pixelAt({0, 0});
    QTest::keyClick(&view, Qt::Key_Right, Qt::AltModifier);
    QTest::keyClick(&view, Qt::Key_Down, Qt::AltModifier);
    QVERIFY(view.pixelAt({0, 0}).x() > before.x());
    QVERIFY(view.pixelAt({0, 0}).y() > before.y());
    QTest::keyClick(&view, Qt::Key_Left, Qt::AltModifier);
    QTest::keyClick(&view, Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(view.pixelAt({0, 0}), before);
}

void tst_PictureView::keepsPlaceWhileSizeStays()
{
    CxPictureView view;
    view.resize(400, 300);
    view.setPicture(fx_PatternPicture(fx_PackedFormat(1000, 1000, 1, 8)));
    view.setZoom(3.0, {10, 20});
    QPoint const before = view.pixelAt({0, 0});
    view.setPicture(fx_PatternPicture(fx_PackedFormat(1000, 1000, 1, 8), 1));
    QCOMPARE(view.zoom(), 3.0);
    QCOMPARE(view.pixelAt({0, 0}), before);
    QCOMPARE(view.picture().number, 1);
}

void tst_PictureView::keepsPlacePastMissingPicture()
{
    CxPictureView view;
    view.resize(400, 300);
    SxShownPicture const picture = fx_PatternPicture(fx_PackedFormat(1000, 1000, 1, 8));
    view.setPicture(picture);
    view.setZoom(2.0, {});
    QPoint const place = view.pixelAt({10, 10});
    view.setNotice(QStringLiteral("broken"));
    view.setPicture(picture);
    QCOMPARE(view.zoom(), 2.0);
    QCOMPARE(view.pixelAt({10, 10}), place);
    // What is fitted follows the window meanwhile.
    view.fit();
    view.setNotice(QStringLiteral("broken"));
    view.resize(200, 300);
    view.setPicture(picture);
    QCOMPARE(view.zoom(), 0.2);
}

void tst_PictureView::paintsPicture()
{
    CxPictureView view;
    view.resize(60, 50);
    SxShownPicture const picture = fx_PatternPicture(fx_PackedFormat(60, 50, 4, 8));
    view.setPicture(picture);
    QCOMPARE(view.grab().toImage().convertToFormat(QImage::Format_RGB32), picture.image);
}

void tst_PictureView::reducedPictureIsAveragedAtOnce()
{
    // Lines black and white in turn: sampled they alias, all of one colour at a quarter; averaged they are
    // grey.
    SxPicBuf stripes;
    QVERIFY(CxPicBufAPI::AllocPicBufFromHeap(stripes, fx_PackedFormat(1600, 1200, 1, 8), false, 0));
    for (quint32 i = 0; i < stripes.pitch * stripes.height; ++i)
        stripes.data[i] = i % 2 == 0 ? 0 : 255;
    auto data = std::make_unique<CxImageData>();
    data->setPicBuf(stripes);
    CxPictureView view;
    view.setPicture(fx_ShownPicture(0, std::move(data)));
    for (int const width : {400, 500, 800}) { // 25 to 50 %
        view.resize(width, width * 3 / 4);
        QImage const painted = view.grab().toImage();
        for (int x = 10; x < width - 10; ++x)
            QVERIFY2(std::abs(qGray(painted.pixel(x, 150)) - 128) <= 48, qPrintable(QString::number(width)));
    }
    view.resize(400, 300);
    view.setPicture(fx_PatternPicture(fx_PackedFormat(400, 300, 4, 8)));
    QCOMPARE(view.grab().toImage().convertToFormat(QImage::Format_RGB32), view.picture().image);
}

void tst_PictureView::turnedPixelsLieWhereTheyAreFound_data()
{
    QTest::addColumn<int>("turns");
    QTest::addColumn<bool>("isMirrored");
    QTest::addColumn<QPoint>("topLeft"); // which pixel is there
    QTest::newRow("as it is") << 0 << false << QPoint(0, 0);
    QTest::newRow("right") << 1 << false << QPoint(0, 29);
    QTest::newRow("upside down") << 2 << false << QPoint(39, 29);
    QTest::newRow("left") << 3 << false << QPoint(39, 0);
    QTest::newRow("mirrored") << 0 << true << QPoint(39, 0);
    QTest::newRow("right, mirrored") << 1 << true << QPoint(0, 0);
}

void tst_PictureView::turnedPixelsLieWhereTheyAreFound()
{
    QFETCH(int, turns);
    QFETCH(bool, isMirrored);
    QFETCH(QPoint, topLeft);
    CxPictureView view;
    view.resize(turns % 2 == 0 ? QSize(400, 300) : QSize(300, 400));
    SxShownPicture picture = fx_PatternPicture(fx_PackedFormat(40, 30, 1, 8));
    picture.rotation = turns >= 2 ? 180 : 0; // what the picture asks for comes first
    view.setPicture(picture);
    view.setTurning({turns % 2, isMirrored, true});
    QCOMPARE(view.zoom(), 10.0); // it fits whichever way it lies
    QCOMPARE(view.pixelAt({1, 1}), topLeft);
    QImage const painted = view.grab().toImage();
    for (int y = 1; y < view.height(); y += 3) {
        for (int x = 1; x < view.width(); x += 3) {
            QPoint const pixel = view.pixelAt(QPointF(x + 0.5, y + 0.5));
            QCOMPARE(qGray(painted.pixel(x, y)), qGray(picture.image.pixel(pixel)));
        }
    }
}

void tst_PictureView::reducedPictureIsTurned()
{
    CxPictureView view;
    view.resize(30, 40);
    SxShownPicture picture = fx_PatternPicture(fx_PackedFormat(80, 60, 4, 8));
    picture.rotation = 90;
    view.setPicture(picture);
    QImage const expected = picture.image.scaled(40, 30, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                                .transformed(QTransform().rotate(90));
    QCOMPARE(view.grab().toImage().convertToFormat(QImage::Format_RGB32), expected);
}

void tst_PictureView::pixelShapeStretches()
{
    CxPictureView view;
    view.resize(400, 300);
    SxShownPicture picture = fx_PatternPicture(fx_PackedFormat(40, 30, 1, 8));
    picture.pixelShape = {2, 1};
    view.setPicture(picture);
    QCOMPARE(view.zoom(), 5.0); // 80 wide
    QCOMPARE(view.pixelAt({1, 75 + 1}), QPoint(0, 0));
    QCOMPARE(view.pixelAt({399, 75 + 149}), QPoint(39, 29));
    view.setTurning({0, false, false});
    QCOMPARE(view.zoom(), 10.0);
}

void tst_PictureView::paintsNotice()
{
    CxPictureView view;
    view.resize(400, 300);
    QImage const empty = view.grab().toImage();
    view.setNotice(QStringLiteral("Nothing here"));
    QVERIFY(view.grab().toImage() != empty);
    view.setPicture(fx_PatternPicture(fx_PackedFormat(60, 50, 4, 8)));
    view.setPicture({});
    QCOMPARE(view.grab().toImage(), empty); // the notice is gone with the picture
}

void tst_PictureView::reportsLeftDoubleClickOnly()
{
    CxPictureView view;
    QSignalSpy clicked(&view, &CxPictureView::doubleClicked);
    QTest::mouseDClick(&view, Qt::RightButton);
    QCOMPARE(clicked.size(), 0);
    QTest::mouseDClick(&view, Qt::LeftButton);
    QCOMPARE(clicked.size(), 1);
}

QTEST_MAIN(tst_PictureView)
#include "tst_PictureView.moc"

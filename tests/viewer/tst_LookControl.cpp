#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFile>
#include <QFileDialog>
#include <QPushButton>
#include <QSettings>
#include <QTest>

#include "LevelsPanel.h"
#include "support/ViewerWindow.h"

class tst_LookControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void keyShowsAndHidesHistogram();
    void levelsChangeTheDisplayOnly();
    void autoAndResetSetTheLevels();
    void levelsAreOfTheSourcesScale();
    void blackStaysBelowWhite();
    void clippingIsMarkedOnTheScreenOnly();

private:
    QImage screen(CxViewerWindow const& viewer) const { return viewer.view->grab().toImage(); }

    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_LookControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 10);
    QVERIFY(!m_recording.isEmpty());
}

void tst_LookControl::keyShowsAndHidesHistogram()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    auto* const dock = viewer.child<QDockWidget>("levelsDock");
    QVERIFY(!dock->isVisible());
    viewer.key(Qt::Key_H);
    QVERIFY(dock->isVisible());
    QTRY_VERIFY(viewer.text("clippedShares").contains(QStringLiteral("are 255.")));
    QImage const first = viewer.child<QWidget>("histogram")->grab().toImage();
    viewer.key(Qt::Key_End); // it follows the picture
    QTRY_VERIFY(viewer.child<QWidget>("histogram")->grab().toImage() != first);
    viewer.key(Qt::Key_H);
    QVERIFY(!dock->isVisible());
    viewer.key(Qt::Key_H);
    dock->close(); // as its own button does
    QVERIFY(!viewer.child<QAction>("levels")->isChecked());
}

void tst_LookControl::levelsChangeTheDisplayOnly()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_H);
    QImage const before = screen(viewer);
    auto* const white = viewer.child<QSpinBox>("whiteLevel");
    white->selectAll();
    QTest::keyClicks(white, QStringLiteral("99"));
    QTest::keyClick(white, Qt::Key_Return);
    QImage const after = screen(viewer);
    QVERIFY(after != before);
    int brighter = 0;
    int darker = 0;
    for (int x = 0; x < before.width(); ++x) {
        int const difference =
            qGray(after.pixel(x, before.height() / 2)) - qGray(before.pixel(x, before.height() / 2));
        brighter += difference > 0 ? 1 : 0;
        darker += difference < 0 ? 1 : 0;
    }
    QVERIFY(brighter > before.width() / 4);
    QCOMPARE(darker, 0);

    viewer.key(Qt::Key_C, Qt::ControlModifier);
    QImage const decoded = CxViewerFixture::decoded(m_recording, 0);
    QCOMPARE(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32), decoded);
    viewer.key(Qt::Key_S, Qt::ControlModifier);
    auto* const dialog = viewer.child<QFileDialog>("pictureDialog");
    QVERIFY(dialog);
    QString const file = m_fixture->path(QStringLiteral("levels.png"));
    emit dialog->fileSelected(file);
    QCOMPARE(QImage(file).convertToFormat(QImage::Format_RGB32), decoded);
    dialog->close();
    // Closed, the panel has no effect; shown again it has the same as before.
    viewer.key(Qt::Key_H);
    QVERIFY(!viewer.view->look().levels);
    viewer.key(Qt::Key_H);
    QTRY_COMPARE(screen(viewer), after);
}

void tst_LookControl::autoAndResetSetTheLevels()
{
    CxViewerWindow viewer(*m_fixture);
    QString const name = m_fixture->path(QStringLiteral("dim.pgm"));
    QFile picture(name);
    QVERIFY(picture.open(QIODevice::WriteOnly));
    picture.write("P5 16 16 255\n");
    for (int i = 0; i < 256; ++i)
        picture.putChar(static_cast<char>(50 + i % 64));
    picture.close();
    viewer.key(Qt::Key_H);
    viewer.window.openNamed(name);
    QTRY_COMPARE(viewer.child<QSpinBox>("whiteLevel")->value(), 255);
    QTest::mouseClick(viewer.child<QPushButton>("autoLevels"), Qt::LeftButton);
    QCOMPARE(viewer.child<QSpinBox>("blackLevel")->value(), 50);
    QCOMPARE(viewer.child<QSpinBox>("whiteLevel")->value(), 113);
    SxLevels const expected{50, 113, 1.0};
    QVERIFY(viewer.view->look().levels == expected);
    QTest::keyClick(viewer.child<QPushButton>("resetLevels"), Qt::Key_Space);
    QVERIFY(!viewer.view->look().levels);
    viewer.child<QDoubleSpinBox>("gamma")->stepUp();
    QCOMPARE(viewer.view->look().levels->gamma, 1.1);
}

void tst_LookControl::levelsAreOfTheSourcesScale()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.key(Qt::Key_H);
    viewer.window.openLive(QStringLiteral("camera"), fx_Camera(1, "mono12"));
    QTRY_COMPARE(viewer.child<QSpinBox>("whiteLevel")->value(), 4095);
    QVERIFY(viewer.text("clippedShares").contains(QStringLiteral("4095")));
    QTest::mouseClick(viewer.child<QPushButton>("autoLevels"), Qt::LeftButton);
    QVERIFY(viewer.view->look().levels.has_value());
    QVERIFY(viewer.open(m_recording)); // of 8 bits: what was set for 12 means nothing there
    QTRY_COMPARE(viewer.child<QSpinBox>("whiteLevel")->value(), 255);
    QVERIFY(!viewer.view->look().levels);
}

void tst_LookControl::blackStaysBelowWhite()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_H);
    auto* const black = viewer.child<QSpinBox>("blackLevel");
    auto* const white = viewer.child<QSpinBox>("whiteLevel");
    white->setValue(100);
    black->setValue(150);
    QCOMPARE(white->value(), 151);
    white->setValue(20);
    QCOMPARE(black->value(), 19);
}

void tst_LookControl::clippingIsMarkedOnTheScreenOnly()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.window.openLive(QStringLiteral("camera"), fx_Camera(1, "bgr24"));
    QTRY_VERIFY(!viewer.view->picture().image.isNull());
    QImage const before = screen(viewer);
    QImage const picture = viewer.view->picture().image.copy();
    viewer.key(Qt::Key_Z);
    QVERIFY(viewer.view->look().marksClipping);
    QVERIFY(viewer.child<QCheckBox>("markClippingBox")->isChecked());
    QVERIFY(screen(viewer) != before); // its clock is written in white
    QCOMPARE(viewer.view->picture().image, picture);
    viewer.key(Qt::Key_H);
    QTest::mouseClick(viewer.child<QCheckBox>("markClippingBox"), Qt::LeftButton);
    QVERIFY(!viewer.view->look().marksClipping);
    QVERIFY(!viewer.child<QAction>("markClipping")->isChecked());
}

QTEST_MAIN(tst_LookControl)
#include "tst_LookControl.moc"

#include <QApplication>
#include <QFile>
#include <QSettings>
#include <QTest>

#include "support/Mouse.h"
#include "support/NotedCopy.h"
#include "support/ViewerWindow.h"

class tst_StatusBar : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void showsPixelUnderMouse();
    void showsAllBitsOfGreyWords();
    void showsDeepVideoInItsOwnScale();
    void showsWhatTheSidecarNotes();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_StatusBar::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_StatusBar::showsPixelUnderMouse()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QPoint const place(viewer.view->width() / 2, viewer.view->height() / 2);
    fx_MoveMouse(viewer.view, place);
    auto const expected = [&] {
        QPoint const pixel = viewer.view->pixelAt(place);
        QColor const colour(viewer.view->picture().image.pixel(pixel));
        return QStringLiteral("(%1, %2): red %3, green %4, blue %5")
            .arg(pixel.x())
            .arg(pixel.y())
            .arg(colour.red())
            .arg(colour.green())
            .arg(colour.blue());
    };
    QTRY_COMPARE(viewer.text("pixel"), expected());
    // The value is that of the picture shown, also when the mouse rests.
    for (int const number : {20, 39}) {
        viewer.window.player().seek(number);
        QTRY_COMPARE(viewer.window.player().shownNumber(), number);
        QCOMPARE(viewer.text("pixel"), expected());
    }
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(viewer.view, &leave);
    QVERIFY(viewer.text("pixel").isEmpty());
}

void tst_StatusBar::showsAllBitsOfGreyWords()
{
    CxViewerWindow viewer(*m_fixture);
    viewer.window.openLive(QStringLiteral("camera"), fx_Camera(1, "mono12"));
    QTRY_VERIFY(!viewer.view->picture().image.isNull());
    QCOMPARE(viewer.text("format"), QStringLiteral("160 × 120, 12-bit grey"));
    QPoint const place(viewer.view->width() / 2, viewer.view->height() / 2);
    fx_MoveMouse(viewer.view, place);
    QPoint const pixel = viewer.view->pixelAt(place);
    SxPicBuf const& samples = *viewer.view->picture().data->picBuf();
    auto const* const row =
        reinterpret_cast<quint16 const*>(samples.data + static_cast<quint32>(pixel.y()) * samples.pitch);
    quint16 const sample = row[pixel.x()];
    QVERIFY(sample > 255); // not what an 8-bit picture could show
    QTRY_COMPARE(viewer.text("pixel"),
                 QStringLiteral("(%1, %2): grey %3").arg(pixel.x()).arg(pixel.y()).arg(sample));
    QCOMPARE(qGray(viewer.view->picture().image.pixel(pixel)), sample >> 4);
}

void tst_StatusBar::showsDeepVideoInItsOwnScale()
{
    QString const name = m_fixture->path(QStringLiteral("deep.y4m"));
    QFile video(name);
    QVERIFY(video.open(QIODevice::WriteOnly));
    video.write("YUV4MPEG2 W16 H16 F30:1 C444p12 XCOLORRANGE=FULL\nFRAME\n");
    for (int const sample : {1910, 2048, 2048}) // grey
        video.write(QByteArray(1, char(sample & 0xFF)).append(char(sample >> 8)).repeated(256));
    video.close();
    CxViewerWindow viewer(*m_fixture);
    viewer.window.openNamed(name);
    QTRY_COMPARE(viewer.text("format"), QStringLiteral("16 × 16, 12-bit colour"));
    QPoint const place(viewer.view->width() / 2, viewer.view->height() / 2);
    fx_MoveMouse(viewer.view, place);
    QTRY_COMPARE(viewer.text("pixel").section(QStringLiteral(": "), 1),
                 QStringLiteral("red 1910, green 1910, blue 1910"));
}

void tst_StatusBar::showsWhatTheSidecarNotes()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QCOMPARE(viewer.text("notes"), QStringLiteral("30 a second (assumed)"));
    QString const noted = m_fixture->path(QStringLiteral("noted.h264"));
    QVERIFY(fx_CopyWithSidecar(m_recording, noted));
    QVERIFY(viewer.open(noted));
    QCOMPARE(viewer.text("notes"), QStringLiteral("25 a second, turned by 90°, 4 skipped"));
    viewer.openCamera();
    QTRY_VERIFY(viewer.text("notes").isEmpty());
}

QTEST_MAIN(tst_StatusBar)
#include "tst_StatusBar.moc"

#include <QApplication>
#include <QSettings>
#include <QTest>

#include "Overview.h"
#include "support/Mouse.h"
#include "support/ViewerWindow.h"

class tst_ThumbnailControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void pointingShowsThatPicture();
    void newestPlaceWins();
    void nothingWhilePlaying();
    void brokenPictureHasNone();
    void overviewHasThemToo();

private:
    QImage small(QString const& recording, int number) const
    {
        return CxViewerFixture::decoded(recording, number)
            .scaled(192, 192, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    static QImage shown(CxViewerWindow const& viewer)
    {
        auto const* const label = viewer.child<QLabel>("thumbnail");
        if (!label->isVisible())
            return {};
        return label->property("pixmap").value<QPixmap>().toImage().convertToFormat(QImage::Format_RGB32);
    }
    static void leave(QWidget* widget)
    {
        QEvent leave(QEvent::Leave);
        QApplication::sendEvent(widget, &leave);
    }

    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_ThumbnailControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_ThumbnailControl::pointingShowsThatPicture()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    int const decoded = viewer.window.player().picturesDecoded();
    fx_MoveMouse(viewer.timeline, viewer.placeOf(22));
    QTRY_COMPARE(shown(viewer), small(m_recording, 22));
    auto const* const label = viewer.child<QLabel>("thumbnail");
    QVERIFY(label->geometry().bottom() < viewer.timeline->mapToGlobal(QPoint()).y());
    QCOMPARE(viewer.window.player().shownNumber(), 0); // what plays has nothing to do with it
    QCOMPARE(viewer.window.player().picturesDecoded(), decoded);
    leave(viewer.timeline);
    QVERIFY(!label->isVisible());
}

void tst_ThumbnailControl::newestPlaceWins()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    for (int number = 0; number < 40; ++number)
        fx_MoveMouse(viewer.timeline, viewer.placeOf(number));
    QTRY_COMPARE(shown(viewer), small(m_recording, 39));
}

void tst_ThumbnailControl::nothingWhilePlaying()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    fx_MoveMouse(viewer.timeline, viewer.placeOf(22));
    QTRY_VERIFY(!shown(viewer).isNull());
    viewer.key(Qt::Key_Space);
    QVERIFY(shown(viewer).isNull());
    fx_MoveMouse(viewer.timeline, viewer.placeOf(30));
    QTRY_VERIFY(viewer.window.player().shownNumber() > 8);
    QVERIFY(shown(viewer).isNull());
}

void tst_ThumbnailControl::brokenPictureHasNone()
{
    CxViewerWindow viewer(*m_fixture);
    QString const broken = m_fixture->damage(m_recording, QStringLiteral("broken.h264"));
    QVERIFY(viewer.open(broken));
    int number = -1; // the first that is broken
    for (int i = 0; number < 0 && i < 40; ++i)
        number = CxViewerFixture::decoded(broken, i).isNull() ? i : -1;
    QVERIFY(number > 0);
    fx_MoveMouse(viewer.timeline, viewer.placeOf(2));
    QTRY_VERIFY(!shown(viewer).isNull());
    fx_MoveMouse(viewer.timeline, viewer.placeOf(number));
    QTRY_VERIFY(shown(viewer).isNull());
}

void tst_ThumbnailControl::overviewHasThemToo()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_B);
    auto* const overview = viewer.child<CxOverview>("overview");
    fx_MoveMouse(overview, QPoint(overview->width() * 61 / 80, 20));
    QTRY_COMPARE(shown(viewer), small(m_recording, 30));
    leave(overview);
    QVERIFY(shown(viewer).isNull());
}

QTEST_MAIN(tst_ThumbnailControl)
#include "tst_ThumbnailControl.moc"

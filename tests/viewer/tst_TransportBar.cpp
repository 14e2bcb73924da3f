#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QComboBox>
#include <QSettings>
#include <QTest>
#include <QToolButton>

#include "Actions.h"
#include "support/ViewerWindow.h"

class tst_TransportBar : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void spacePressesFocusedButton();
    void clickLeavesKeysToPicture();
    void speedBoxFollowsSpeedsAndSetsThem();
    void narrowBarLeavesOutWhatKeysCanDo();
    void namesSayWhatIsShown();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_TransportBar::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_TransportBar::spacePressesFocusedButton()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    auto* const last = viewer.child<QToolButton>("lastButton");
    last->setFocus(Qt::TabFocusReason);
    QTest::keyClick(last, Qt::Key_Space);
    QVERIFY(!viewer.window.player().isPlaying());
    QTRY_COMPARE(viewer.window.player().shownNumber(), 39);
}

void tst_TransportBar::clickLeavesKeysToPicture()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QCOMPARE(QApplication::focusWidget(), viewer.view);
    QTest::mouseClick(viewer.child<QToolButton>("nextPictureButton"), Qt::LeftButton);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 1);
    QCOMPARE(QApplication::focusWidget(), viewer.view);
}

void tst_TransportBar::speedBoxFollowsSpeedsAndSetsThem()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    auto* const box = viewer.child<QComboBox>("speed");
    QCOMPARE(box->count(), 9);
    QCOMPARE(box->currentIndex(), 4);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(box->currentIndex(), 5);
    auto* const group = viewer.window.findChild<CxActions*>()->speeds;
    QCOMPARE(group->checkedAction()->data().toDouble(), 2.0);
    group->actions().first()->trigger();
    QCOMPARE(box->currentIndex(), 0);
    QCOMPARE(group->checkedAction()->data().toDouble(), 0.0625);
}

void tst_TransportBar::narrowBarLeavesOutWhatKeysCanDo()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.window.resize(1000, 600);
    auto* const record = viewer.child<QToolButton>("recordButton");
    QTRY_COMPARE(record->toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    for (char const* const name : {"time", "speed", "loopButton", "firstButton", "nextKeyFrameButton"})
        QVERIFY2(viewer.child<QWidget>(name)->isVisible(), name);
    viewer.window.resize(400, 300);
    QCOMPARE(viewer.window.size(), QSize(400, 300)); // nothing holds it wider
    QTRY_COMPARE(record->toolButtonStyle(), Qt::ToolButtonIconOnly);
    QTRY_VERIFY(!viewer.child<QWidget>("speed")->isVisible());
    for (char const* const name : {"playButton", "previousPictureButton", "nextPictureButton", "number"}) {
        auto const* const widget = viewer.child<QWidget>(name);
        QVERIFY2(widget->isVisible(), name);
        QTRY_VERIFY2(widget->width() >= widget->sizeHint().width(), name);
    }
    viewer.bar->showMessage(CxMessageBar::Kind::Warning, QString(300, QLatin1Char('W')));
    QTest::qWait(0);
    QCOMPARE(viewer.window.size(), QSize(400, 300));
    viewer.window.resize(1000, 600);
    QTRY_VERIFY(viewer.child<QWidget>("speed")->isVisible());
}

void tst_TransportBar::namesSayWhatIsShown()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_Right);
    QTRY_COMPARE(viewer.child<QWidget>("number")->accessibleName(), QStringLiteral("Picture 1 of 0–39"));
    QCOMPARE(viewer.child<QWidget>("time")->accessibleName(),
             QStringLiteral("Time of the picture shown: 0:00:00.033"));
    QCOMPARE(viewer.timeline->accessibleName(),
             QStringLiteral("Timeline: Picture 1 of 0–39, 8 key frame(s)"));
}

QTEST_MAIN(tst_TransportBar)
#include "tst_TransportBar.moc"

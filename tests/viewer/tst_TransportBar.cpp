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

QTEST_MAIN(tst_TransportBar)
#include "tst_TransportBar.moc"

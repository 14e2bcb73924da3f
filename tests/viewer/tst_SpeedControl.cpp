#include <QAction>
#include <QActionGroup>
#include <QComboBox>
#include <QSettings>
#include <QTest>

#include "Actions.h"
#include "support/ViewerWindow.h"

class tst_SpeedControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void keysChangeSpeed();
    void speedAndLoopAreRemembered();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

static double fx_Speed(CxViewerWindow const& viewer)
{
    return viewer.window.findChild<CxActions*>()->speeds->checkedAction()->data().toDouble();
}

void tst_SpeedControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 10);
    QVERIFY(!m_recording.isEmpty());
}

void tst_SpeedControl::keysChangeSpeed()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    for (double const speed : {2.0, 4.0, 8.0, 16.0, 16.0}) {
        viewer.key(Qt::Key_BracketRight);
        QCOMPARE(fx_Speed(viewer), speed);
    }
    for (double const speed : {8.0, 4.0, 2.0, 1.0, 0.5, 0.25, 0.125, 0.0625, 0.0625}) {
        viewer.key(Qt::Key_BracketLeft);
        QCOMPARE(fx_Speed(viewer), speed);
    }
    QCOMPARE(viewer.child<QComboBox>("speed")->currentText(), QStringLiteral("1/16 ×"));
    viewer.key(Qt::Key_Plus);
    QCOMPARE(fx_Speed(viewer), 0.125);
    viewer.key(Qt::Key_Backspace);
    QCOMPARE(fx_Speed(viewer), 1.0);
    viewer.key(Qt::Key_Minus);
    QCOMPARE(fx_Speed(viewer), 0.5);
    viewer.key(Qt::Key_Equal);
    QCOMPARE(fx_Speed(viewer), 1.0);
}

void tst_SpeedControl::speedAndLoopAreRemembered()
{
    {
        CxViewerWindow viewer(*m_fixture);
        QVERIFY(viewer.open(m_recording));
        viewer.key(Qt::Key_BracketLeft);
        viewer.key(Qt::Key_L);
    }
    CxViewerWindow viewer(*m_fixture);
    QCOMPARE(fx_Speed(viewer), 0.5);
    QCOMPARE(viewer.child<QComboBox>("speed")->currentText(), QStringLiteral("1/2 ×"));
    QVERIFY(viewer.child<QAction>("loop")->isChecked());
}

QTEST_MAIN(tst_SpeedControl)
#include "tst_SpeedControl.moc"

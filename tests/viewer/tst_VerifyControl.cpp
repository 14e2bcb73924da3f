#include <QAction>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QTreeWidget>

#include "VerifyControl.h"
#include "support/FileBytes.h"
#include "support/ViewerWindow.h"

class tst_VerifyControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void soundRecordingIsConfirmed();
    void brokenPicturesAreListedAndMarked();
    void listAndKeysGoToBrokenPictures();
    void playingGoesOnMeanwhile();
    void stopKeepsWhatIsKnown();
    void openingAnotherEndsIt();
    void programThatIsMissingIsTold();
    void decoderThatCrashesIsAFinding();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
    QString m_damaged; ///< the same with broken pictures behind the first half
};

/// The window with verifying done by the built program.
class CxVerifyWindow : public CxViewerWindow
{
public:
    explicit CxVerifyWindow(CxViewerFixture const& fixture)
        : CxViewerWindow(fixture)
        , control(window.findChild<CxVerifyControl*>())
    {
        control->setProgram(QStringLiteral(MINIHOST_PROGRAM));
    }
    bool verify()
    {
        key(Qt::Key_F7);
        return control->isRunning() && QTest::qWaitFor([&] { return !control->isRunning(); }, 60000);
    }
    QTreeWidget* rows() const { return child<QTreeWidget>("brokenRows"); }

    CxVerifyControl* control;
};

void tst_VerifyControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 30);
    QVERIFY(!m_recording.isEmpty());
    m_damaged = m_fixture->damage(m_recording, QStringLiteral("damaged.h264"));
    QVERIFY(!m_damaged.isEmpty());
}

void tst_VerifyControl::soundRecordingIsConfirmed()
{
    CxVerifyWindow viewer(*m_fixture);
    QVERIFY(!viewer.child<QAction>("verify")->isEnabled());
    QVERIFY(viewer.open(m_recording));
    QVERIFY(viewer.verify());
    QCOMPARE(viewer.bar->text(), QStringLiteral("“clip.h264”: every picture can be shown, 30 picture(s)."));
    QCOMPARE(viewer.bar->kind(), CxMessageBar::Kind::Information);
    QVERIFY(!viewer.rows()->isVisible());
    QVERIFY(!viewer.child<QWidget>("verifyBar")->isVisible());
    QVERIFY(!viewer.child<QAction>("nextBroken")->isEnabled());
    QVERIFY(viewer.child<QAction>("verify")->isEnabled());
}

void tst_VerifyControl::brokenPicturesAreListedAndMarked()
{
    CxVerifyWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_damaged));
    QImage const before = viewer.timeline->grab().toImage();
    QVERIFY(viewer.verify());
    QVERIFY(viewer.rows()->isVisible());
    QVERIFY(viewer.rows()->topLevelItemCount() >= 1);
    QVERIFY2(viewer.rows()->topLevelItem(0)->text(2).contains(QStringLiteral("decoder")),
             qPrintable(viewer.rows()->topLevelItem(0)->text(2)));
    QVERIFY2(viewer.bar->text().startsWith(QStringLiteral("“damaged.h264”: ")),
             qPrintable(viewer.bar->text()));
    QVERIFY(viewer.bar->details().contains(QStringLiteral("cannot be decoded")));
    QVERIFY(viewer.text("broken").contains(QStringLiteral("broken picture(s)")));
    QVERIFY(viewer.timeline->grab().toImage() != before);
    QCOMPARE(viewer.window.player().shownNumber(), 0); // where it was
}

void tst_VerifyControl::listAndKeysGoToBrokenPictures()
{
    CxVerifyWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_damaged));
    QVERIFY(viewer.verify());
    auto* const row = viewer.rows()->topLevelItem(0);
    int const broken = row->text(0).section(QChar(0x2013), 0, 0).toInt();
    QVERIFY(broken > 0);
    QTest::mouseClick(viewer.rows()->viewport(), Qt::LeftButton, {},
                      viewer.rows()->visualItemRect(row).topLeft() + QPoint(8, 8));
    QTRY_COMPARE(viewer.window.player().reachedNumber(), broken);
    viewer.view->setFocus();
    viewer.key(Qt::Key_Home);
    QTRY_COMPARE(viewer.window.player().reachedNumber(), 0);
    viewer.key(Qt::Key_F8);
    QTRY_COMPARE(viewer.window.player().reachedNumber(), broken);
    viewer.key(Qt::Key_End);
    QTRY_COMPARE(viewer.window.player().reachedNumber(), 29);
    for (int i = 0; i < viewer.rows()->topLevelItemCount(); ++i)
        viewer.key(Qt::Key_F8, Qt::ShiftModifier);
    QTRY_COMPARE(viewer.window.player().reachedNumber(), broken);
}

void tst_VerifyControl::playingGoesOnMeanwhile()
{
    CxVerifyWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_damaged));
    viewer.key(Qt::Key_F7);
    QVERIFY(viewer.child<QWidget>("verifyBar")->isVisible());
    QVERIFY(!viewer.child<QAction>("verify")->isEnabled());
    viewer.key(Qt::Key_Space);
    QVERIFY(viewer.window.player().isPlaying());
    QTRY_VERIFY_WITH_TIMEOUT(!viewer.control->isRunning(), 60000);
    QTRY_COMPARE_WITH_TIMEOUT(viewer.window.player().reachedNumber(), 29, 60000); // past the broken ones
}

void tst_VerifyControl::stopKeepsWhatIsKnown()
{
    CxVerifyWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_F7);
    QTest::mouseClick(viewer.child<QToolButton>("verifyStop"), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(!viewer.control->isRunning(), 60000);
    QVERIFY(!viewer.child<QWidget>("verifyBar")->isVisible());
    QVERIFY(viewer.child<QAction>("verify")->isEnabled());
    QVERIFY(!viewer.bar->text().contains(QStringLiteral("could not be verified")));
}

void tst_VerifyControl::openingAnotherEndsIt()
{
    CxVerifyWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_damaged));
    QVERIFY(viewer.verify());
    viewer.key(Qt::Key_F7);
    QVERIFY(viewer.open(m_recording));
    QVERIFY(!viewer.control->isRunning());
    QVERIFY(!viewer.rows()->isVisible());
    QVERIFY(!viewer.child<QAction>("nextBroken")->isEnabled());
    QVERIFY(viewer.child<QAction>("verify")->isEnabled());
}

void tst_VerifyControl::programThatIsMissingIsTold()
{
    CxVerifyWindow viewer(*m_fixture);
    viewer.control->setProgram(m_fixture->path(QStringLiteral("no-such-program")));
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_F7);
    QTRY_COMPARE(viewer.bar->text(), QStringLiteral("“clip.h264” could not be verified."));
    QVERIFY(!viewer.bar->details().isEmpty());
    QVERIFY(!viewer.control->isRunning());
}

void tst_VerifyControl::decoderThatCrashesIsAFinding()
{
    QString const file = m_fixture->path(QStringLiteral("deadly.h264"));
    QVERIFY(fx_WriteFile(file, QByteArray("frames 20 crash 7").leftJustified(200, ' ')));
    CxVerifyJob job(QStringLiteral(MINIHOST_PROGRAM), QStringLiteral(DYING_PLUGIN));
    SxVerifyResult result;
    bool isFinished = false;
    connect(&job, &CxVerifyJob::finished, &job, [&](SxVerifyResult const& found) {
        result = found;
        isFinished = true;
    });
    job.start(file);
    QTRY_VERIFY_WITH_TIMEOUT(isFinished, 60000);
    QCOMPARE(result.error, QString());
    QCOMPARE(result.pictures, 20);
    QCOMPARE(result.examined, 20);
    QCOMPARE(result.broken.size(), 1);
    QCOMPARE(result.broken[0].first, 7);
    QVERIFY2(result.broken[0].cause.contains(QStringLiteral("crashed")), qPrintable(result.broken[0].cause));
}

QTEST_MAIN(tst_VerifyControl)
#include "tst_VerifyControl.moc"

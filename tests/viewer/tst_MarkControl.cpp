#include <QAction>
#include <QSettings>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>

#include "support/ViewerWindow.h"

class tst_MarkControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void keysMarkPictureShown();
    void markOnWrongSideTakesOtherAway();
    void timelineShowsMarks();
    void loopRepeatsMarkedPart();
    void savePartStartsFromMarks();
    void keysGoToMarksAndClearThem();
    void otherRecordingHasNoMarks();
    void cameraHasNoMarks();

private:
    bool openAt(CxViewerWindow& viewer, int number);
    void mark(CxViewerWindow& viewer, int in, int out);

    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_MarkControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 30);
    QVERIFY(!m_recording.isEmpty());
}

static bool fx_GoTo(CxViewerWindow& viewer, int number)
{
    viewer.window.player().seek(number);
    return QTest::qWaitFor([&] { return viewer.window.player().shownNumber() == number; });
}

bool tst_MarkControl::openAt(CxViewerWindow& viewer, int number)
{
    return viewer.open(m_recording) && fx_GoTo(viewer, number);
}

void tst_MarkControl::mark(CxViewerWindow& viewer, int in, int out)
{
    QVERIFY(viewer.window.player().isOpen() || viewer.open(m_recording));
    QVERIFY(fx_GoTo(viewer, in));
    viewer.key(Qt::Key_I);
    QVERIFY(fx_GoTo(viewer, out));
    viewer.key(Qt::Key_O);
}

void tst_MarkControl::keysMarkPictureShown()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(openAt(viewer, 6));
    auto* const status = viewer.window.statusBar();
    viewer.key(Qt::Key_I);
    QCOMPARE(status->currentMessage(),
             QStringLiteral("Marked: pictures 6 to 29, 24 picture(s), 0:00:00.800"));
    QVERIFY(fx_GoTo(viewer, 20));
    viewer.key(Qt::Key_O);
    QCOMPARE(status->currentMessage(),
             QStringLiteral("Marked: pictures 6 to 20, 15 picture(s), 0:00:00.500"));
}

void tst_MarkControl::markOnWrongSideTakesOtherAway()
{
    CxViewerWindow viewer(*m_fixture);
    mark(viewer, 6, 20);
    auto* const status = viewer.window.statusBar();
    QVERIFY(fx_GoTo(viewer, 25));
    viewer.key(Qt::Key_I);
    QVERIFY(status->currentMessage().startsWith(QStringLiteral("Marked: pictures 25 to 29,")));
    QVERIFY(fx_GoTo(viewer, 3));
    viewer.key(Qt::Key_O);
    QVERIFY(status->currentMessage().startsWith(QStringLiteral("Marked: pictures 0 to 3,")));
    viewer.key(Qt::Key_I); // one picture is a part, too
    QVERIFY(status->currentMessage().startsWith(QStringLiteral("Marked: pictures 3 to 3, 1 picture(s),")));
}

void tst_MarkControl::timelineShowsMarks()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(openAt(viewer, 10));
    viewer.key(Qt::Key_I);
    QVERIFY(fx_GoTo(viewer, 20));
    QImage const before = viewer.timeline->grab().toImage();
    viewer.key(Qt::Key_O);
    QImage const after = viewer.timeline->grab().toImage();
    auto const isChangedAt = [&](int number) {
        int const x = viewer.placeOf(number).x();
        for (int y = 0; y < after.height(); ++y) {
            if (after.pixel(x, y) != before.pixel(x, y))
                return true;
        }
        return false;
    };
    QVERIFY(!isChangedAt(5)); // before the part
    QVERIFY(!isChangedAt(15));
    QVERIFY(isChangedAt(25)); // belongs to it no longer
    QVERIFY(isChangedAt(20)); // the mark itself
}

void tst_MarkControl::loopRepeatsMarkedPart()
{
    CxViewerWindow viewer(*m_fixture);
    mark(viewer, 10, 13);
    viewer.key(Qt::Key_L);
    QSignalSpy shown(&viewer.window.player(), &CxPlayer::shown);
    viewer.key(Qt::Key_Space);
    QTRY_VERIFY(shown.size() >= 9);
    viewer.key(Qt::Key_Space);
    for (int i = 0; i < 9; ++i)
        QCOMPARE(shown[i].first().value<SxShownPicture>().number, 10 + i % 4);
}

void tst_MarkControl::savePartStartsFromMarks()
{
    CxViewerWindow viewer(*m_fixture);
    mark(viewer, 7, 11);
    viewer.key(Qt::Key_R, Qt::ControlModifier);
    QVERIFY(viewer.child<QSpinBox>("first"));
    QCOMPARE(viewer.child<QSpinBox>("first")->value(), 7);
    QCOMPARE(viewer.child<QSpinBox>("last")->value(), 11);
}

void tst_MarkControl::keysGoToMarksAndClearThem()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    for (char const* const name : {"goToIn", "goToOut", "clearMarks"})
        QVERIFY2(!viewer.child<QAction>(name)->isEnabled(), name);
    mark(viewer, 7, 23);
    viewer.key(Qt::Key_I, Qt::ShiftModifier);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 7);
    viewer.key(Qt::Key_O, Qt::ShiftModifier);
    QTRY_COMPARE(viewer.window.player().shownNumber(), 23);
    viewer.key(Qt::Key_X, Qt::ShiftModifier);
    QCOMPARE(viewer.window.statusBar()->currentMessage(), QStringLiteral("No part is marked."));
    for (char const* const name : {"goToIn", "goToOut", "clearMarks"})
        QVERIFY2(!viewer.child<QAction>(name)->isEnabled(), name);
    viewer.key(Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(viewer.child<QSpinBox>("first")->value(), 0);
    QCOMPARE(viewer.child<QSpinBox>("last")->value(), 29);
}

void tst_MarkControl::otherRecordingHasNoMarks()
{
    CxViewerWindow viewer(*m_fixture);
    mark(viewer, 7, 23);
    QString const other = m_fixture->record(QStringLiteral("other.h264"), 12);
    QVERIFY(viewer.open(other));
    QVERIFY(!viewer.child<QAction>("goToIn")->isEnabled());
    viewer.key(Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(viewer.child<QSpinBox>("last")->value(), 11);
}

void tst_MarkControl::cameraHasNoMarks()
{
    CxViewerWindow viewer(*m_fixture);
    mark(viewer, 7, 23);
    viewer.openCamera();
    QTRY_VERIFY(!viewer.view->picture().image.isNull());
    QTRY_VERIFY(!viewer.child<QAction>("goToIn")->isEnabled());
    QVERIFY(!viewer.child<QAction>("setIn")->isEnabled());
}

QTEST_MAIN(tst_MarkControl)
#include "tst_MarkControl.moc"

#include <QAction>
#include <QClipboard>
#include <QSettings>
#include <QTest>

#include "support/NotedCopy.h"
#include "support/ViewerWindow.h"

class tst_TurnControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void opensAsTheSidecarSays();
    void keysTurnAsSeen();
    void othersBeginAnew();
    void copiesThePictureAsItIs();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
    QString m_noted; ///< its sidecar says to turn it by 90 degrees
};

void tst_TurnControl::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 5);
    QVERIFY(!m_recording.isEmpty());
    m_noted = m_fixture->path(QStringLiteral("noted.h264"));
    QVERIFY(fx_CopyWithSidecar(m_recording, m_noted));
}

void tst_TurnControl::opensAsTheSidecarSays()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_noted));
    QCOMPARE(viewer.view->orientation().quarterTurns, 1);
    viewer.key(Qt::Key_T, Qt::ShiftModifier);
    QCOMPARE(viewer.view->orientation().quarterTurns, 0);
}

void tst_TurnControl::keysTurnAsSeen()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QRectF const picture(0, 0, 320, 180);
    viewer.key(Qt::Key_T);
    QVERIFY(viewer.view->toView().mapRect(picture).height() > viewer.view->toView().mapRect(picture).width());
    QPoint const upperLeft = viewer.view->toView().map(QPointF(0, 180)).toPoint();
    QVERIFY(upperLeft.y() <= 1); // the lower left corner went up
    viewer.key(Qt::Key_T, Qt::ShiftModifier);
    QCOMPARE(viewer.view->orientation(), SxOrientation());
    // Mirrored, right is still to the right: what was on the left is at the top then.
    viewer.key(Qt::Key_M);
    QPointF const left = viewer.view->toView().map(QPointF(320, 90));
    QVERIFY(left.x() <= 1);
    viewer.key(Qt::Key_T);
    QVERIFY(viewer.view->toView().map(QPointF(320, 90)).y() <= 1);
    for (int i = 0; i < 3; ++i)
        viewer.key(Qt::Key_T);
    viewer.key(Qt::Key_M);
    QCOMPARE(viewer.view->orientation(), SxOrientation());
}

void tst_TurnControl::othersBeginAnew()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    viewer.key(Qt::Key_T);
    viewer.key(Qt::Key_M);
    viewer.key(Qt::Key_A);
    viewer.key(Qt::Key_End); // other pictures of it do not
    QTRY_COMPARE(viewer.window.player().shownNumber(), 4);
    QCOMPARE(viewer.view->orientation().quarterTurns, 1);
    QVERIFY(viewer.open(m_noted));
    QCOMPARE(viewer.view->orientation().quarterTurns, 1); // its own
    QVERIFY(!viewer.view->orientation().isMirrored);
    QVERIFY(!viewer.child<QAction>("mirror")->isChecked());
    QVERIFY(viewer.child<QAction>("pixelShape")->isChecked());
}

void tst_TurnControl::copiesThePictureAsItIs()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_noted));
    viewer.key(Qt::Key_M);
    viewer.key(Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32),
             CxViewerFixture::decoded(m_noted, 0));
}

QTEST_MAIN(tst_TurnControl)
#include "tst_TurnControl.moc"

#include <QSettings>
#include <QTest>

#include "support/ViewerWindow.h"

class tst_Timeline : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QSettings().clear(); }

    void marksKeyFrames();
    void otherButtonsMoveNothing();
    void leavingEndsTheHighlight();

private:
    std::unique_ptr<CxViewerFixture> m_fixture;
    QString m_recording;
};

void tst_Timeline::initTestCase()
{
    m_fixture = std::make_unique<CxViewerFixture>();
    QVERIFY2(m_fixture->error.isEmpty(), qPrintable(m_fixture->error));
    m_recording = m_fixture->record(QStringLiteral("clip.h264"), 40);
    QVERIFY(!m_recording.isEmpty());
}

void tst_Timeline::marksKeyFrames()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QCOMPARE(viewer.timeline->maximum(), 39);
    QImage const image = viewer.timeline->grab().toImage();
    QRgb const background = image.pixel(0, image.height() - 3);
    int const row = image.height() - 4;
    auto const isMarked = [&](int number) {
        double const x = (8.0 + (viewer.timeline->width() - 16.0) * number / 39.0);
        for (int dx = -1; dx <= 1; ++dx) {
            if (image.pixel(static_cast<int>(x) + dx, row) != background)
                return true;
        }
        return false;
    };
    for (int number = 0; number < 40; ++number)
        QVERIFY2(isMarked(number) == (number % 5 == 0), qPrintable(QString::number(number)));
}

void tst_Timeline::otherButtonsMoveNothing()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QTest::mouseClick(viewer.timeline, Qt::RightButton, Qt::NoModifier, viewer.timeline->rect().center());
    QCOMPARE(viewer.timeline->value(), 0);
    QVERIFY(!viewer.timeline->isSliderDown());
}

void tst_Timeline::leavingEndsTheHighlight()
{
    CxViewerWindow viewer(*m_fixture);
    QVERIFY(viewer.open(m_recording));
    QImage const before = viewer.timeline->grab().toImage();
    QPoint const place = viewer.timeline->rect().center();
    QMouseEvent move(QEvent::MouseMove, place, viewer.timeline->mapToGlobal(place), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(viewer.timeline, &move);
    QVERIFY(viewer.timeline->grab().toImage() != before);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(viewer.timeline, &leave);
    QVERIFY(viewer.timeline->grab().toImage() == before);
}

QTEST_MAIN(tst_Timeline)
#include "tst_Timeline.moc"

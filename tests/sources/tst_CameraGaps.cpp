#include <QtTest>

#include "CameraGaps.h"

/// Pictures that a camera left out, by the times of those that came.
class tst_CameraGaps : public QObject
{
    Q_OBJECT

private slots:
    void missingPicturesAreCountedWhereTheyAreMissing();
    void unsteadyCameraLeavesNothingOut();
    void slowerCameraIsNoGapForLong();
    void firstPicturesAreNotJudged();
};

static constexpr quint64 kStep = 33333; // microseconds

void tst_CameraGaps::missingPicturesAreCountedWhereTheyAreMissing()
{
    CxCameraGaps gaps;
    for (quint64 number = 0; number < 100; ++number) {
        if (number == 40 || number == 41 || number == 70)
            continue;
        int const expected = number == 42 ? 2 : number == 71 ? 1 : 0;
        QCOMPARE(gaps.before(number * kStep), expected);
    }
}

void tst_CameraGaps::unsteadyCameraLeavesNothingOut()
{
    CxCameraGaps gaps;
    for (quint64 number = 0; number < 100; ++number)
        QCOMPARE(gaps.before(number * kStep + number * 7 % 5 * kStep / 8), 0); // late by up to half a step
}

void tst_CameraGaps::slowerCameraIsNoGapForLong()
{
    CxCameraGaps gaps;
    quint64 time = 0;
    for (int number = 0; number < 30; ++number)
        gaps.before(time += kStep);
    int missing = 0;
    for (int number = 0; number < 100; ++number) // in the dark
        missing += gaps.before(time += 2 * kStep);
    QVERIFY2(missing <= 8, qPrintable(QString::number(missing)));
    QCOMPARE(gaps.before(time + 4 * kStep), 1);
}

void tst_CameraGaps::firstPicturesAreNotJudged()
{
    CxCameraGaps gaps;
    QCOMPARE(gaps.before(0), 0);
    QCOMPARE(gaps.before(10 * kStep), 0); // a camera that takes its time to begin
    QCOMPARE(gaps.before(11 * kStep), 0);
}

QTEST_GUILESS_MAIN(tst_CameraGaps)
#include "tst_CameraGaps.moc"

#include <QTest>

#include "PlayOrder.h"

class tst_PlayOrder : public QObject
{
    Q_OBJECT

private slots:
    void playsToTheEnd();
    void loopRepeatsWholeRecording();
    void loopRepeatsPart();
    void loopFromBehindPartGoesOnToTheEnd();
    void partAloneLoopsNothing();
    void backwardsRunsTheOtherWay();
    void longStridesMeetBothEnds();

private:
    SxPlayOrder m_order;
};

void tst_PlayOrder::playsToTheEnd()
{
    m_order = {};
    m_order.setRecording(3);
    QCOMPARE(m_order.start(), 0);
    QCOMPARE(m_order.after(0), 1);
    QCOMPARE(m_order.after(1), 2);
    QCOMPARE(m_order.after(2), -1);
}

void tst_PlayOrder::loopRepeatsWholeRecording()
{
    m_order = {};
    m_order.setRecording(3);
    m_order.isLooping = true;
    QCOMPARE(m_order.after(2), 0);
}

void tst_PlayOrder::loopRepeatsPart()
{
    m_order = {10, 4, 6, true};
    QCOMPARE(m_order.start(), 4);
    QCOMPARE(m_order.after(0), 1); // up to the part
    QCOMPARE(m_order.after(5), 6);
    QCOMPARE(m_order.after(6), 4);
    m_order = {10, 4, 4, true};
    QCOMPARE(m_order.after(4), 4);
}

void tst_PlayOrder::loopFromBehindPartGoesOnToTheEnd()
{
    m_order = {10, 4, 6, true};
    QCOMPARE(m_order.after(7), 8);
    QCOMPARE(m_order.after(9), 4);
}

void tst_PlayOrder::partAloneLoopsNothing()
{
    m_order = {10, 4, 6, false};
    QCOMPARE(m_order.start(), 0);
    QCOMPARE(m_order.after(6), 7);
    QCOMPARE(m_order.after(9), -1);
}

void tst_PlayOrder::backwardsRunsTheOtherWay()
{
    m_order = {10, 4, 6, false, true};
    QCOMPARE(m_order.start(), 9);
    QCOMPARE(m_order.after(9), 8);
    QCOMPARE(m_order.after(0), -1);
    m_order.isLooping = true;
    QCOMPARE(m_order.start(), 6);
    QCOMPARE(m_order.after(9), 8);
    QCOMPARE(m_order.after(4), 6);
    QCOMPARE(m_order.after(3), 2);
    QCOMPARE(m_order.after(0), 6);
}

void tst_PlayOrder::longStridesMeetBothEnds()
{
    m_order = {10, 4, 6, true, false, 4};
    QCOMPARE(m_order.after(0), 4);
    QCOMPARE(m_order.after(4), 6);
    QCOMPARE(m_order.after(6), 4);
    m_order = {10, 0, 9, false, true, 4};
    QCOMPARE(m_order.after(9), 5);
    QCOMPARE(m_order.after(1), 0);
    QCOMPARE(m_order.after(0), -1);
}

QTEST_GUILESS_MAIN(tst_PlayOrder)
#include "tst_PlayOrder.moc"

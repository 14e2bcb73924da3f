#include <QtTest>

#include <map>

#include "openH264Levels.h"

/// The limits of every level, walked as the numbers that the option "h264_level_idc" may hold.
class tst_openH264Levels : public QObject
{
    Q_OBJECT

private slots:
    void everyLevelHasItsLargestPicture();
    void everyLevelHasItsLargestBitRate();
};

// Every number that the enumeration can hold: its largest enumerator, 52, takes six bits.
static constexpr int kFirstValue = 0;
static constexpr int kLastValue = 63;

void tst_openH264Levels::everyLevelHasItsLargestPicture()
{
    std::map<int, QSize> const table = {
        {9, {176, 144}},    {10, {176, 144}},   {11, {352, 288}},   {12, {352, 288}},   {13, {352, 288}},
        {20, {352, 288}},   {21, {528, 384}},   {22, {720, 480}},   {30, {720, 480}},   {31, {1280, 720}},
        {32, {1280, 1024}}, {42, {2048, 1088}}, {50, {3680, 2760}}, {51, {4096, 2304}}, {52, {4096, 2304}},
    };
    for (int value = kFirstValue; value <= kLastValue; ++value) {
        auto const entry = table.find(value);
        QSize const expected = entry != table.end() ? entry->second : QSize(1920, 1080);
        QVERIFY2(fx_GetMaxResolutionForLevel(static_cast<ELevelIdc>(value)) == expected,
                 qPrintable(QString::number(value)));
    }
}

void tst_openH264Levels::everyLevelHasItsLargestBitRate()
{
    std::map<int, unsigned> const table = {
        {9, 153600},    {10, 76800},    {11, 230400},   {12, 460800},   {13, 921600},
        {20, 2400000},  {21, 4800000},  {22, 4800000},  {30, 12000000}, {31, 16800000},
        {32, 24000000}, {40, 24000000}, {41, 60000000}, {42, 60000000}, {50, 162000000},
    };
    for (int value = kFirstValue; value <= kLastValue; ++value) {
        auto const entry = table.find(value);
        unsigned const expected = entry != table.end() ? entry->second : 288000000u; // that of 5.1 and 5.2
        QVERIFY2(fx_GetMaxBitRateForLevel(static_cast<ELevelIdc>(value)) == expected,
                 qPrintable(QString::number(value)));
    }
}

QTEST_APPLESS_MAIN(tst_openH264Levels)
#include "tst_openH264Levels.moc"

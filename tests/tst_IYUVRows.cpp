#include "IYUVRows.h"

#include <QtTest>

#include "InstructionSets.h"
#include "support/RowsCheck.h"

class tst_IYUVRows : public QObject
{
    Q_OBJECT

private slots:
    void tablesOfThisMachine();
    void fastestTableIsUsed();
    void anyTableCanBeForced();
    void unknownTableIsRefused();
    void everyColour_data() { fx_AddTables(); }
    void everyColour();
    void everySampleTriple_data() { fx_AddTables(); }
    void everySampleTriple();
    void everyShift_data() { fx_AddTables(); }
    void everyShift();
    void everyWidth_data() { fx_AddTables(); }
    void everyWidth();

private:
    static void fx_AddTables()
    {
        QTest::addColumn<int>("table");
        int index = 0;
        for (SxIYUVRows const* rows : fx_GetAllIYUVRows())
            QTest::newRow(rows->name) << index++;
    }
    static void fx_Run(std::string (*check)(SxIYUVRows const&))
    {
        QFETCH(int, table);
        std::string const error = check(*fx_GetAllIYUVRows()[static_cast<size_t>(table)]);
        QVERIFY2(error.empty(), error.c_str());
    }
};

void tst_IYUVRows::tablesOfThisMachine()
{
    QByteArrayList names, expected;
    for (SxIYUVRows const* rows : fx_GetAllIYUVRows())
        names.append(rows->name);
#if defined(__x86_64__)
    SxInstructionSets const has;
    if (has.avx512Bytes)
        expected.append("avx512");
    if (has.avx2)
        expected.append("avx2");
    if (has.sse4)
        expected.append("sse4");
#elif defined(__aarch64__)
    expected.append("neon");
#endif
    expected.append("scalar");
    QCOMPARE(names, expected);
}

// Stands before the tests that force another; a build may have fixed the choice.
void tst_IYUVRows::fastestTableIsUsed()
{
#ifdef TVP_ROWS
    QCOMPARE(fx_GetIYUVRows().name, TVP_ROWS);
#else
    QCOMPARE(&fx_GetIYUVRows(), fx_GetAllIYUVRows().front());
#endif
}

void tst_IYUVRows::anyTableCanBeForced()
{
    for (SxIYUVRows const* rows : fx_GetAllIYUVRows()) {
        QVERIFY(fx_ForceIYUVRows(rows->name));
        QCOMPARE(&fx_GetIYUVRows(), rows);
    }
}

void tst_IYUVRows::unknownTableIsRefused()
{
    SxIYUVRows const* const before = &fx_GetIYUVRows();
    QVERIFY(!fx_ForceIYUVRows("mmx"));
    QCOMPARE(&fx_GetIYUVRows(), before);
}

void tst_IYUVRows::everyColour() { fx_Run(fx_CheckColours); }

void tst_IYUVRows::everySampleTriple() { fx_Run(fx_CheckSamples); }

void tst_IYUVRows::everyShift() { fx_Run(fx_CheckShifts); }

void tst_IYUVRows::everyWidth() { fx_Run(fx_CheckWidths); }

QTEST_APPLESS_MAIN(tst_IYUVRows)
#include "tst_IYUVRows.moc"

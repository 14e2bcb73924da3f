#include "IYUVRows.h"

#include <QtTest>

#include "support/RowsCheck.h"

class tst_IYUVRows : public QObject
{
    Q_OBJECT

private slots:
    void everyColour_data() { fx_AddTargets(); }
    void everyColour();
    void everySampleTriple_data() { fx_AddTargets(); }
    void everySampleTriple();
    void everyShift_data() { fx_AddTargets(); }
    void everyShift();
    void everyWidth_data() { fx_AddTargets(); }
    void everyWidth();

private:
    static void fx_AddTargets()
    {
        QTest::addColumn<int>("target");
        for (VectorTarget const target : fx_GetVectorTargets())
            QTest::newRow(fx_GetName(target)) << static_cast<int>(target);
    }
    static void fx_Run(std::string (*check)(SxIYUVKernels const&))
    {
        QFETCH(int, target);
        std::string const error = check(fx_GetIYUVKernels(static_cast<VectorTarget>(target)));
        QVERIFY2(error.empty(), error.c_str());
    }
};

void tst_IYUVRows::everyColour() { fx_Run(fx_CheckColours); }

void tst_IYUVRows::everySampleTriple() { fx_Run(fx_CheckSamples); }

void tst_IYUVRows::everyShift() { fx_Run(fx_CheckShifts); }

void tst_IYUVRows::everyWidth() { fx_Run(fx_CheckWidths); }

QTEST_APPLESS_MAIN(tst_IYUVRows)
#include "tst_IYUVRows.moc"

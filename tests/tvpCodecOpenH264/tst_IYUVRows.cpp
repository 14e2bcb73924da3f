#include "IYUVRows.h"

#include <QtTest>

#include "support/RowsCheck.h"

class tst_IYUVRows : public QObject
{
    Q_OBJECT

private slots:
    void everyColourIsThatOfTheScalar_data() { fx_AddTargets(); }
    void everyColourIsThatOfTheScalar();
    void everySampleTripleIsThatOfTheScalar_data() { fx_AddTargets(); }
    void everySampleTripleIsThatOfTheScalar();
    void everyShiftIsThatOfTheScalar_data() { fx_AddTargets(); }
    void everyShiftIsThatOfTheScalar();
    void everyWidthIsThatOfTheScalar_data() { fx_AddTargets(); }
    void everyWidthIsThatOfTheScalar();
    void differenceIsDescribed();

private:
    static void fx_AddTargets()
    {
        QTest::addColumn<int>("target");
        for (VectorTarget const target : fx_GetVectorTargets())
            QTest::newRow(fx_GetName(target)) << static_cast<int>(target);
    }
    static void fx_Run(std::string (*check)(char const* table, SxIYUVKernels const&))
    {
        QFETCH(int, target);
        VectorTarget const which = static_cast<VectorTarget>(target);
        std::string const error = check(fx_GetName(which), fx_GetIYUVKernels(which));
        QVERIFY2(error.empty(), error.c_str());
    }
};

void tst_IYUVRows::everyColourIsThatOfTheScalar() { fx_Run(fx_CheckColours); }

void tst_IYUVRows::everySampleTripleIsThatOfTheScalar() { fx_Run(fx_CheckSamples); }

void tst_IYUVRows::everyShiftIsThatOfTheScalar() { fx_Run(fx_CheckShifts); }

void tst_IYUVRows::everyWidthIsThatOfTheScalar() { fx_Run(fx_CheckWidths); }

// Whoever reads a failure of a foreign processor has nothing but the sentence.
void tst_IYUVRows::differenceIsDescribed()
{
    SxIYUVKernels rows = fx_GetScalarIYUVKernels();
    rows.mono16 = [](std::uint8_t const* src, std::uint8_t* y, unsigned width, unsigned shift) {
        fx_GetScalarIYUVKernels().mono16(src, y, width, shift);
        y[width] = 7; // the guard behind the row
    };
    QCOMPARE(fx_CheckWidths("broken", rows),
             std::string("broken, mono16, size 0, luma byte 0, address + 0: 165 expected, 7 found"));
    QCOMPARE(fx_CheckShifts("broken", rows),
             std::string("broken, mono16, size 65536, luma byte 65536, shift 0: 165 expected, 7 found"));

    rows = fx_GetScalarIYUVKernels();
    rows.rgb24.lumaAndChroma = [](std::uint8_t const* src, std::uint8_t* y, std::uint8_t* u, std::uint8_t* v,
                                  unsigned width, unsigned shift) {
        fx_GetScalarIYUVKernels().rgb24.lumaAndChroma(src, y, v, u, width, shift);
    };
    QCOMPARE(
        fx_CheckColours("broken", rows),
        std::string("broken, rgb24, size 4096, U byte 2, blue 0, green from 0: 128 expected, 129 found"));

    rows = fx_GetScalarIYUVKernels();
    rows.toRGB32NonTemporal = [](SxPlaneRows const& planes, std::uint8_t* top, std::uint8_t* bottom,
                                 unsigned width) {
        fx_GetScalarIYUVKernels().toRGB32(planes, top, bottom, width);
        if (width >= 2)
            top[7] = 0; // was opaque
    };
    QCOMPARE(fx_CheckSamples("broken", rows),
             std::string(
                 "broken, toRGB32NonTemporal, size 512, pixel byte 7, luma 0, U 0: 255 expected, 0 found"));
    QCOMPARE(
        fx_CheckWidths("broken", rows),
        std::string("broken, toRGB32NonTemporal, size 2, pixel byte 7, address + 0, two rows: 255 expected, "
                    "0 found"));
}

QTEST_APPLESS_MAIN(tst_IYUVRows)
#include "tst_IYUVRows.moc"

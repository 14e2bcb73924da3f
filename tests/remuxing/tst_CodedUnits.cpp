#include <QtTest>

#include "CodedUnits.h"

class tst_CodedUnits : public QObject
{
    Q_OBJECT

private slots:
    void unitsLieBackToBack();
    void bytesWithoutStartCodeHoldNoUnit();
    void bitsMakeTheSameUnitAgain_data();
    void bitsMakeTheSameUnitAgain();
    void numbersAreReadAsTheyAreWritten();
    void bitsWithoutANumberGiveNone_data();
    void bitsWithoutANumberGiveNone();
};

static QByteArray fx_Hex(char const* text) { return QByteArray::fromHex(text); }

void tst_CodedUnits::unitsLieBackToBack()
{
    QByteArray const frame = fx_Hex("00000001 6742c0 0000 000001 68ce 00000001 65b800 0000");
    QVector<SxCodedUnit> const units = fx_UnitsOf(frame);
    QCOMPARE(units.size(), 3);
    QCOMPARE(units[0].type(), int{SxCodedUnit::kSps});
    QCOMPARE(units[0].bytes, fx_Hex("6742c0")); // zeros behind a unit are no part of it
    QCOMPARE(units[1].bytes, fx_Hex("68ce"));
    QCOMPARE(units[2].bytes, fx_Hex("65b8"));
    QVERIFY(units[2].isSlice() && !units[1].isSlice());
    QCOMPARE(units[0].begin, 0);
    QCOMPARE(units[1].begin, units[0].end);
    QCOMPARE(units[2].begin, units[1].end);
    QCOMPARE(units[2].end, int(frame.size()));
}

void tst_CodedUnits::bytesWithoutStartCodeHoldNoUnit()
{
    for (char const* bytes : {"", "00", "0000", "616263", "000000"})
        QVERIFY2(fx_UnitsOf(fx_Hex(bytes)).isEmpty(), bytes);
    QCOMPARE(fx_UnitsOf(fx_Hex("000001")).size(), 1);
    QCOMPARE(fx_UnitsOf(fx_Hex("000001"))[0].type(), 0);
}

void tst_CodedUnits::bitsMakeTheSameUnitAgain_data()
{
    QTest::addColumn<QByteArray>("unit");
    QTest::addColumn<int>("bits");
    QTest::newRow("stop bit alone") << fx_Hex("6880") << 0;
    QTest::newRow("stop bit last") << fx_Hex("6801") << 7;
    QTest::newRow("picture set") << fx_Hex("68ce3c80") << 16;
    QTest::newRow("number that looks like a start code") << fx_Hex("67000003000180") << 32;
    QTest::newRow("three behind zeros") << fx_Hex("670000030380") << 24;
}

void tst_CodedUnits::bitsMakeTheSameUnitAgain()
{
    QFETCH(QByteArray, unit);
    QFETCH(int, bits);
    QByteArray const payload = fx_PayloadBits(unit);
    QCOMPARE(int(payload.size()), bits);
    QCOMPARE(fx_UnitOf(unit[0], payload), unit);
}

void tst_CodedUnits::numbersAreReadAsTheyAreWritten()
{
    QByteArray bits;
    QVector<quint32> const numbers{0, 1, 2, 3, 6, 7, 255, 256, 65534, 65535};
    for (quint32 const number : numbers)
        bits += fx_NumberBits(number);
    QCOMPARE(fx_NumberBits(0), QByteArray("\1"));
    QCOMPARE(fx_NumberBits(3), QByteArray("\0\0\1\0\0", 5));
    int at = 0;
    for (quint32 const number : numbers)
        QCOMPARE(fx_TakeNumber(bits, at), std::optional<quint32>(number));
    QCOMPARE(at, int(bits.size()));
    QVERIFY(!fx_TakeNumber(bits, at));
}

void tst_CodedUnits::bitsWithoutANumberGiveNone_data()
{
    QTest::addColumn<QByteArray>("bits");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("zeros to the end") << QByteArray(5, '\0');
    QTest::newRow("cut off") << QByteArray("\0\0\1\0", 4);
    QTest::newRow("larger than any") << QByteArray(17, '\0') + QByteArray(18, '\1');
}

void tst_CodedUnits::bitsWithoutANumberGiveNone()
{
    QFETCH(QByteArray, bits);
    int at = 0;
    QVERIFY(!fx_TakeNumber(bits, at));
    QCOMPARE(at, 0);
}

QTEST_GUILESS_MAIN(tst_CodedUnits)
#include "tst_CodedUnits.moc"

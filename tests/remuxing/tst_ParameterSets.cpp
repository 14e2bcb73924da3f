#include <QtTest>

#include "ParameterSets.h"
#include "support/BitWriter.h"
#include "support/SpsWriter.h"

/// Key frames of little more than their sets.
class tst_ParameterSets : public QObject
{
    Q_OBJECT

private slots:
    void describedSetIsTheOldOneUpToItsVui();
    void whatIsNoSequenceSetIsNotDescribed();
    void countedUpIdsMakeOneSequenceSet();
    void picturesStayAsTheyAre();
    void contradictionsStayWithTheirKeyFrames_data();
    void contradictionsStayWithTheirKeyFrames();
    void nonsenseIsRefused_data();
    void nonsenseIsRefused();
};

static QByteArray fx_Bytes(std::vector<uchar> const& bytes)
{
    return QByteArray(reinterpret_cast<char const*>(bytes.data()), static_cast<int>(bytes.size()));
}

static QByteArray fx_Sps(quint32 id, quint32 columns = 20)
{
    SxSps sps;
    sps.seq_parameter_set_id = id;
    sps.pic_width_in_mbs_minus1 = columns - 1;
    return '\x67' + fx_Bytes(fx_WriteSps(sps));
}

static QByteArray fx_Pps(quint32 id, quint32 spsId, quint32 rest = 0x5A)
{
    CxBitWriter writer;
    writer.ue(id);
    writer.ue(spsId);
    writer.bits(rest, 9);
    writer.trailingBits();
    return '\x68' + fx_Bytes(writer.bytes());
}

static QByteArray const kSlice = QByteArray::fromHex("0000016588843300");

static QByteArray fx_KeyFrame(QByteArray const& sps, QByteArray const& pps)
{
    return fx_WithStartCode(sps) + fx_WithStartCode(pps) + kSlice;
}

void tst_ParameterSets::describedSetIsTheOldOneUpToItsVui()
{
    QByteArray const sps = fx_Sps(3);
    SxStreamDescription description;
    description.rate = {25, 1};
    std::optional<QByteArray> const described = fx_DescribeSps(sps, description);
    QVERIFY(described);
    QByteArray const before = fx_PayloadBits(sps);
    QByteArray const after = fx_PayloadBits(*described);
    int const vui = int(before.size()) - 1; // vui_parameters_present_flag
    QCOMPARE(after.left(vui), before.left(vui));
    QCOMPARE(before[vui], '\0');
    QCOMPARE(after[vui], '\1');

    QByteArray expected; // aspect ratio, overscan: none
    for (char const bit : QByteArray("00"
                                     "1"
                                     "101"
                                     "1"
                                     "1")) // format unspecified, full range, described
        expected += static_cast<char>(bit - '0');
    QCOMPARE(after.mid(vui + 1, 8), expected);
    auto const number = [&after](int at, int bits) {
        quint32 value = 0;
        for (int i = 0; i < bits; ++i)
            value = value << 1 | static_cast<quint32>(after[at + i]);
        return value;
    };
    int const colours = vui + 1 + 8;
    QCOMPARE(number(colours, 8), 1U);       // BT.709 primaries
    QCOMPARE(number(colours + 8, 8), 13U);  // sRGB
    QCOMPARE(number(colours + 16, 8), 6U);  // BT.601
    QCOMPARE(number(colours + 24, 2), 1U);  // no chroma location; timing
    QCOMPARE(number(colours + 26, 32), 1U); // num_units_in_tick
    QCOMPARE(number(colours + 58, 32), 50U);
}

void tst_ParameterSets::whatIsNoSequenceSetIsNotDescribed()
{
    for (char const* unit : {"", "67", "68ce3c80", "09f0", "0600"}) // sets cut off, a picture's, others
        QVERIFY2(!fx_DescribeSps(QByteArray::fromHex(unit), {}), unit);
}

void tst_ParameterSets::countedUpIdsMakeOneSequenceSet()
{
    CxParameterSets sets({});
    for (quint32 key = 0; key < 200; ++key) // as OpenH264 counts
        QVERIFY(sets.take(fx_KeyFrame(fx_Sps(key % 32), fx_Pps(key % 57, key % 32))));
    QVERIFY(sets.isCommon());
    QVector<SxCodedUnit> const units = fx_UnitsOf(sets.beforeStream());
    QCOMPARE(units.size(), 1 + 57);
    QCOMPARE(units[0].bytes, *fx_DescribeSps(fx_Sps(0), {}));
    for (quint32 id = 0; id < 57; ++id)
        QCOMPARE(units[int(id) + 1].bytes, fx_Pps(id, 0));
}

void tst_ParameterSets::picturesStayAsTheyAre()
{
    CxParameterSets sets({});
    QByteArray const sps = fx_Sps(7);
    QByteArray const pps = fx_Pps(9, 7);
    QByteArray const key = fx_KeyFrame(sps, pps);
    QVERIFY(sets.take(key));
    QCOMPARE(sets.described(key, false), kSlice);
    QCOMPARE(sets.described(key, true), fx_KeyFrame(*fx_DescribeSps(sps, {}), pps));
    QByteArray const other = QByteArray::fromHex("0000000161e0004000be");
    QCOMPARE(sets.described(other, false), other);
    QCOMPARE(sets.described(other, true), other);
}

void tst_ParameterSets::contradictionsStayWithTheirKeyFrames_data()
{
    QTest::addColumn<QByteArray>("second");
    QTest::newRow("sequence set") << fx_KeyFrame(fx_Sps(0, 30), fx_Pps(1, 0));
    QTest::newRow("picture set of the same id") << fx_KeyFrame(fx_Sps(0), fx_Pps(0, 0, 0x5B));
}

void tst_ParameterSets::contradictionsStayWithTheirKeyFrames()
{
    QFETCH(QByteArray, second);
    CxParameterSets sets({});
    QVERIFY(sets.take(fx_KeyFrame(fx_Sps(0), fx_Pps(0, 0))));
    QVERIFY(sets.take(second));
    QVERIFY(!sets.isCommon());
    QByteArray const first =
        fx_WithStartCode(*fx_DescribeSps(fx_Sps(0), {})) + fx_WithStartCode(fx_Pps(0, 0));
    QCOMPARE(sets.beforeStream(), first);
}

void tst_ParameterSets::nonsenseIsRefused_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("no sets") << kSlice;
    QTest::newRow("cut sequence set") << fx_KeyFrame(fx_Sps(0).left(5), fx_Pps(0, 0));
    QTest::newRow("picture set alone") << fx_WithStartCode(fx_Pps(0, 0)) + kSlice;
    QTest::newRow("sequence set alone") << fx_WithStartCode(fx_Sps(0)) + kSlice;
    QTest::newRow("picture set of another") << fx_KeyFrame(fx_Sps(0), fx_Pps(0, 1));
    QTest::newRow("id too large") << fx_KeyFrame(fx_Sps(0), fx_Pps(256, 0));
    QTest::newRow("endless number") << fx_KeyFrame(fx_Sps(0), QByteArray::fromHex("680000030000030001"));
}

void tst_ParameterSets::nonsenseIsRefused()
{
    QFETCH(QByteArray, frame);
    CxParameterSets sets({});
    QVERIFY(!sets.take(frame));
}

QTEST_GUILESS_MAIN(tst_ParameterSets)
#include "tst_ParameterSets.moc"

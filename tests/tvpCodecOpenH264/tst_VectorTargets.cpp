#include "VectorTargets.h"

#include <QtTest>

/// The choice of an instruction set. Which ones a processor must be found to have is asked by
/// scripts/test-vectors, of processors that an emulator plays.
class tst_VectorTargets : public QObject
{
    Q_OBJECT

private slots:
    void namedTargetOrElseTheFastestIsUsed();
    void targetsAreInOrderAndScalarIsTheLast_data();
    void targetsAreInOrderAndScalarIsTheLast();
    void anyTargetCanBeForced();
    void unknownTargetIsRefused();
    void documentationNamesEveryTarget();
};

static QByteArrayList fx_Names()
{
    QByteArrayList names;
    for (VectorTarget const target : fx_GetVectorTargets())
        names.append(fx_GetName(target));
    return names;
}

// Stands before the tests that force another.
void tst_VectorTargets::namedTargetOrElseTheFastestIsUsed()
{
#ifdef TARN_VECTORS
    QByteArray const expected = fx_Names().contains(TARN_VECTORS) ? TARN_VECTORS : "scalar";
#else
    QByteArray const expected = fx_Names().first();
#endif
    QCOMPARE(QByteArray(fx_GetName(fx_GetVectorTarget())), expected);
}

/// The rows are what this machine was found to have.
void tst_VectorTargets::targetsAreInOrderAndScalarIsTheLast_data()
{
    QTest::addColumn<int>("target");
    for (VectorTarget const target : fx_GetVectorTargets())
        QTest::newRow(fx_GetName(target)) << static_cast<int>(target);
}

void tst_VectorTargets::targetsAreInOrderAndScalarIsTheLast()
{
    QFETCH(int, target);
    auto const& targets = fx_GetVectorTargets();
    auto const found = std::find(targets.begin(), targets.end(), static_cast<VectorTarget>(target));
    QVERIFY(found + 1 == targets.end() ? *found == VectorTarget::Scalar : *found < found[1]);
#if defined(__aarch64__)
    QVERIFY(!IS_WITH_VECTORS || targets.front() == VectorTarget::NEON);
#endif
    QVERIFY(IS_WITH_VECTORS || targets.size() == 1);
}

void tst_VectorTargets::anyTargetCanBeForced()
{
    for (VectorTarget const target : fx_GetVectorTargets()) {
        QVERIFY(fx_ForceVectorTarget(fx_GetName(target)));
        QVERIFY(fx_GetVectorTarget() == target);
    }
}

void tst_VectorTargets::unknownTargetIsRefused()
{
    VectorTarget const before = fx_GetVectorTarget();
    QVERIFY(!fx_ForceVectorTarget("mmx"));
    QVERIFY(fx_GetVectorTarget() == before);
}

void tst_VectorTargets::documentationNamesEveryTarget()
{
    QFile file(QStringLiteral(KERNELS_DOCUMENT));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QByteArrayList rows, expected;
    for (QByteArray const& line : file.readAll().split('\n'))
        if (line.startsWith("| `") && line.count('|') == 4)
            rows.append(line.split('`').at(1));
    for (char const* name : kVectorTargetNames)
        expected.append(name);
    QCOMPARE(rows, expected);
}

QTEST_APPLESS_MAIN(tst_VectorTargets)
#include "tst_VectorTargets.moc"

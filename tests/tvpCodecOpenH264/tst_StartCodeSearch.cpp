#include <QtTest>

#include <memory>
#include <random>

#include "StartCodeSearch.h"

/// Every search of this machine gives the positions of the scalar one, on buffers that end where their
/// memory ends.
class tst_StartCodeSearch : public QObject
{
    Q_OBJECT

private slots:
    void firstPrefixIsFound_data();
    void firstPrefixIsFound();
    void followsTheTargetInUse();
    void everySearchAgreesOnRandomBytes_data();
    void everySearchAgreesOnRandomBytes();
    void everySearchFindsALonePrefixAnywhere();
    void everySearchFindsPrefixesBackToBack();
};

/// Bytes on the heap, exactly as many as there are, \p shift bytes off an aligned address.
class CxExactBytes
{
public:
    CxExactBytes(std::vector<uchar> const& bytes, size_t shift)
        : m_memory(new uchar[bytes.size() + shift])
        , m_data(m_memory.get() + shift)
    {
        std::copy(bytes.begin(), bytes.end(), m_data);
    }
    uchar const* data() const { return m_data; }

private:
    std::unique_ptr<uchar[]> m_memory;
    uchar* m_data;
};

/// All positions, one search after the other.
static std::vector<size_t> fx_AllPositions(FxPrefixSearch find, uchar const* data, size_t size)
{
    std::vector<size_t> positions;
    for (size_t at = find(data, size, 0); at < size; at = find(data, size, at + 1))
        positions.push_back(at);
    return positions;
}

static std::vector<size_t> fx_Expected(std::vector<uchar> const& bytes)
{
    return fx_AllPositions(fx_FindPrefixScalar, bytes.data(), bytes.size());
}

static void fx_CompareAll(std::vector<uchar> const& bytes, size_t shift)
{
    std::vector<size_t> const expected = fx_Expected(bytes);
    CxExactBytes const exact(bytes, shift);
    for (VectorTarget const target : fx_GetVectorTargets())
        QVERIFY2(fx_AllPositions(fx_GetPrefixSearch(target), exact.data(), bytes.size()) == expected,
                 fx_GetName(target));
}

void tst_StartCodeSearch::firstPrefixIsFound_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("expected");

    QTest::newRow("nothing") << QByteArray() << 0 << 0;
    QTest::newRow("too short") << QByteArray("\0\0", 2) << 0 << 2;
    QTest::newRow("at the start") << QByteArray("\0\0\1", 3) << 0 << 0;
    QTest::newRow("behind a third zero") << QByteArray("\0\0\0\1", 4) << 0 << 1;
    QTest::newRow("cut off") << QByteArray("\5\0\0", 3) << 0 << 3;
    QTest::newRow("at the very end") << QByteArray("\5\5\0\0\1", 5) << 0 << 2;
    QTest::newRow("before the place asked for") << QByteArray("\0\0\1\5", 4) << 1 << 4;
    QTest::newRow("from the end") << QByteArray("\0\0\1", 3) << 3 << 3;
    QTest::newRow("two is no one") << QByteArray("\0\0\2\0\1", 5) << 0 << 5;
}

void tst_StartCodeSearch::firstPrefixIsFound()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, from);
    QFETCH(int, expected);
    auto const* const data = reinterpret_cast<uchar const*>(bytes.constData());
    for (VectorTarget const target : fx_GetVectorTargets())
        QCOMPARE(
            fx_GetPrefixSearch(target)(data, static_cast<size_t>(bytes.size()), static_cast<size_t>(from)),
            static_cast<size_t>(expected));
}

void tst_StartCodeSearch::followsTheTargetInUse()
{
    for (VectorTarget const target : fx_GetVectorTargets()) {
        QVERIFY(fx_ForceVectorTarget(fx_GetName(target)));
        QVERIFY2(fx_GetPrefixSearch(fx_GetVectorTarget()) == fx_GetPrefixSearch(target), fx_GetName(target));
        QCOMPARE(target == VectorTarget::Scalar, fx_GetPrefixSearch(target) == fx_FindPrefixScalar);
    }
}

void tst_StartCodeSearch::everySearchAgreesOnRandomBytes_data()
{
    QTest::addColumn<QByteArray>("alphabet");

    QTest::newRow("dense") << QByteArray("\0\0\1", 3);
    QTest::newRow("zeros mostly") << QByteArray("\0\0\0\0\0\0\0\0\0\1", 10);
    QTest::newRow("units") << QByteArray("\0\0\1\3\x61\x67\x65", 7);
    QTest::newRow("sparse") << QByteArray("\0\0\1\2\3\4\5\6\7\x8\x9\xa\xb\xc\xd\xe\xf\x10\x11\x12", 20);
}

void tst_StartCodeSearch::everySearchAgreesOnRandomBytes()
{
    QFETCH(QByteArray, alphabet);
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::vector<uchar> bytes(random() % 700);
        for (uchar& byte : bytes)
            byte = static_cast<uchar>(
                alphabet[static_cast<int>(random() % static_cast<unsigned>(alphabet.size()))]);
        fx_CompareAll(bytes, random() % 64);
        if (QTest::currentTestFailed())
            return;
    }
}

void tst_StartCodeSearch::everySearchFindsALonePrefixAnywhere()
{
    // Longer than the longest step, four vectors of 64 bytes, with what follows it.
    for (size_t size = 3; size < 600; size += 7) {
        for (size_t at = 0; at + 3 <= size; ++at) {
            std::vector<uchar> bytes(size, 0x80);
            bytes[at] = bytes[at + 1] = 0;
            bytes[at + 2] = 1;
            fx_CompareAll(bytes, at % 32);
            if (QTest::currentTestFailed())
                return;
        }
    }
}

void tst_StartCodeSearch::everySearchFindsPrefixesBackToBack()
{
    for (size_t size = 0; size < 700; ++size) {
        std::vector<uchar> bytes(size);
        for (size_t i = 0; i < size; ++i)
            bytes[i] = i % 3 == 2 ? 1 : 0;
        QCOMPARE(fx_Expected(bytes).size(), size / 3);
        fx_CompareAll(bytes, 1);
        if (QTest::currentTestFailed())
            return;
    }
}

QTEST_APPLESS_MAIN(tst_StartCodeSearch)
#include "tst_StartCodeSearch.moc"

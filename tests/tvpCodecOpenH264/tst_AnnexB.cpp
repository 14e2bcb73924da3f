#include <QtTest>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "AnnexB.h"
#include "support/ReferenceScan.h"

#ifdef __SANITIZE_ADDRESS__
static constexpr int kExhaustiveLength = 8; // 5^8 streams; one more is five times the time
static constexpr int kRandomRounds = 20000;
#else
static constexpr int kExhaustiveLength = 9;
static constexpr int kRandomRounds = 60000;
#endif

static QByteArray fx_Text(SxScan const& scan)
{
    QByteArray text;
    for (SxFrameRange const& frame : scan.frames)
        text += '[' + QByteArray::number(frame.offset) + ' ' + QByteArray::number(frame.size) +
                (frame.key ? " key]" : "]");
    if (scan.hasSps)
        text += " SPS " + QByteArray::number(static_cast<qulonglong>(scan.spsPayload)) + '+' +
                QByteArray::number(static_cast<qulonglong>(scan.spsLength));
    return text;
}

static char* toString(SxScan const& scan) { return qstrdup(fx_Text(scan).constData()); }

/// Scans a copy in a block of exactly its size, where the address sanitizer sees every read behind it.
static SxScan fx_Scan(Bytes const& bytes)
{
    std::unique_ptr<uchar[]> const exact(new uchar[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    CxFrameScanner scanner(exact.get(), bytes.size());
    SxScan scan;
    for (SxFrameRange frame; scanner.next(frame);)
        scan.frames.push_back(frame);
    SxFrameRange untouched{-7, 7, true};
    if (scanner.next(untouched) || !(untouched == SxFrameRange{-7, 7, true}))
        scan.frames.push_back(untouched); // a scan at its end stays there
    if (scanner.spsPayload()) {
        scan.hasSps = true;
        scan.spsPayload = static_cast<size_t>(scanner.spsPayload() - exact.get());
    }
    scan.spsLength = scanner.spsLength();
    return scan;
}

/// The definition: the first place from where the bytes 00 00 01 or 00 00 00 01 lie within the stream.
static size_t fx_ReferenceFind(Bytes const& d, size_t from)
{
    static uchar const kCode[] = {0, 0, 0, 1};
    for (size_t p = from; p < d.size(); ++p) {
        size_t const left = d.size() - p;
        if ((left >= 3 && std::memcmp(d.data() + p, kCode + 1, 3) == 0) ||
            (left >= 4 && std::memcmp(d.data() + p, kCode, 4) == 0))
            return p;
    }
    return d.size();
}

static void fx_CheckFind(Bytes const& bytes)
{
    std::unique_ptr<uchar[]> const exact(new uchar[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    for (size_t from = 0; from <= bytes.size() + 2; ++from)
        QCOMPARE(fx_FindStartCode(exact.get(), bytes.size(), from), fx_ReferenceFind(bytes, from));
    bool const begins = bytes.size() >= 4 && fx_ReferenceStartCode(bytes, 0) != 0;
    QCOMPARE(fx_BeginsWithStartCode(exact.get(), bytes.size()), begins);
}

static Bytes fx_Bytes(char const* hex)
{
    QByteArray const raw = QByteArray::fromHex(hex);
    return Bytes(raw.begin(), raw.end());
}

/// Bytes in which start codes, cut ones and their look-alikes are frequent.
static Bytes fx_RandomStream(std::mt19937& random, size_t size)
{
    static uchar const kAlphabet[] = {0,    0,    0,    0,    0,    1,    1,    0x61,
                                      0x67, 0x65, 0x68, 0x41, 0x03, 0xFF, 0x80, 0x02};
    size_t const letters = 4 + random() % (sizeof kAlphabet - 3);
    Bytes bytes(size);
    for (uchar& byte : bytes)
        byte = kAlphabet[random() % letters + (letters < 7 && random() % 4 == 0 ? 5 : 0)];
    return bytes;
}

class tst_AnnexB : public QObject
{
    Q_OBJECT

private slots:
    void startCodeFillsTheStream();
    void startCodeIsFoundWhole_data();
    void startCodeIsFoundWhole();
    void everyShortStreamIsCutLikeThePlainScan();
    void randomStreamsAreCutLikeThePlainScan();
    void longStreamsAreCutLikeThePlainScan();
    void streamThatEndsAnywhereIsCutAlike();
    void framesOpenAtParameterSetsAndSlices_data();
    void framesOpenAtParameterSetsAndSlices();
    void spsIsKnownOnceItIsPassed();
    void spsLengthEndsAt65535_data();
    void spsLengthEndsAt65535();
};

/// Its last byte is the stream's last, which counts; one byte less is no start code.
void tst_AnnexB::startCodeFillsTheStream()
{
    uchar const code[] = {0, 0, 0, 1};
    QCOMPARE(fx_StartCodeLength(code, 4, 0), size_t(4));
    QCOMPARE(fx_StartCodeLength(code, 4, 1), size_t(3));
    QCOMPARE(fx_StartCodeLength(code, 3, 0), size_t(0));
    QCOMPARE(fx_StartCodeLength(code, 3, 1), size_t(0));
    QCOMPARE(fx_StartCodeLength(code, 4, 4), size_t(0));
}

void tst_AnnexB::startCodeIsFoundWhole_data()
{
    QTest::addColumn<QByteArray>("hex");
    for (char const* hex : {"", "00", "0000", "000001", "00000001", "0000000001", "000000", "00000000",
                            "01000001", "0000000000000001", "00000200000100", "000001000001000001",
                            "00000000010000", "FF0000FF000001", "0000030000010000"})
        QTest::newRow(*hex ? hex : "nothing") << QByteArray(hex);
}

void tst_AnnexB::startCodeIsFoundWhole()
{
    QFETCH(QByteArray, hex);
    fx_CheckFind(fx_Bytes(hex.constData()));
}

/// All streams up to a length over the five bytes that decide everything.
void tst_AnnexB::everyShortStreamIsCutLikeThePlainScan()
{
    static uchar const kAlphabet[] = {0x00, 0x01, 0x61, 0x67, 0x65};
    for (int length = 0; length <= kExhaustiveLength; ++length) {
        Bytes bytes(static_cast<size_t>(length), 0);
        std::vector<int> digits(bytes.size(), 0);
        for (bool isLast = false; !isLast;) {
            if (!(fx_Scan(bytes) == fx_ReferenceScan(bytes)))
                QCOMPARE(fx_Scan(bytes), fx_ReferenceScan(bytes));
            isLast = true;
            for (size_t i = 0; i < bytes.size() && isLast; ++i) {
                digits[i] = (digits[i] + 1) % 5;
                bytes[i] = kAlphabet[digits[i]];
                isLast = digits[i] == 0;
            }
        }
    }
}

void tst_AnnexB::randomStreamsAreCutLikeThePlainScan()
{
    std::mt19937 random(1);
    for (int round = 0; round < kRandomRounds; ++round) {
        Bytes const bytes = fx_RandomStream(random, random() % 160);
        QCOMPARE(fx_Scan(bytes), fx_ReferenceScan(bytes));
        if (round % 8 == 0)
            fx_CheckFind(bytes);
        if (QTest::currentTestFailed())
            return;
    }
}

/// Long runs without anything, of zeros, ones and noise, between the places that count.
void tst_AnnexB::longStreamsAreCutLikeThePlainScan()
{
    std::mt19937 random(2);
    for (int round = 0; round < 40; ++round) {
        Bytes bytes;
        while (bytes.size() < 100000) {
            Bytes const piece = fx_RandomStream(random, random() % 40);
            bytes.insert(bytes.end(), piece.begin(), piece.end());
            switch (random() % 4) {
            case 0:
                bytes.insert(bytes.end(), random() % 3000, 0);
                break;
            case 1:
                bytes.insert(bytes.end(), random() % 3000, 1);
                break;
            default:
                for (auto i = random() % 3000; i > 0; --i)
                    bytes.push_back(static_cast<uchar>(random()));
            }
        }
        QCOMPARE(fx_Scan(bytes), fx_ReferenceScan(bytes));
    }
}

void tst_AnnexB::streamThatEndsAnywhereIsCutAlike()
{
    Bytes const whole = fx_Bytes("0000000167420029AA00000168CE00000001658811220000010001000000016101020304"
                                 "000001610506070800000001674D00290000000168AABBCC00000165010203");
    for (size_t size = 0; size <= whole.size(); ++size) {
        for (size_t from = 0; from <= size; ++from) {
            Bytes const piece(whole.begin() + static_cast<std::ptrdiff_t>(from),
                              whole.begin() + static_cast<std::ptrdiff_t>(size));
            QCOMPARE(fx_Scan(piece), fx_ReferenceScan(piece));
        }
    }
}

void tst_AnnexB::framesOpenAtParameterSetsAndSlices_data()
{
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("SPS, PPS and IDR slice are one key frame; a slice opens the next")
        << QByteArray("0000000167424242 0000000168CECECE 0000000165010203 0000000161040506")
        << QByteArray("[0 24 key][24 8] SPS 5+3");
    QTest::newRow("three-byte start codes")
        << QByteArray("00000167424242 00000165010203 00000161040506 00000161070809")
        << QByteArray("[0 14 key][14 7][21 7] SPS 4+3");
    QTest::newRow("a zero before a start code of three bytes belongs to it")
        << QByteArray("00000167424242 0000000161040506") << QByteArray("[0 7 key][7 8] SPS 4+3");
    QTest::newRow("further zeros belong to the unit before")
        << QByteArray("00000167424242 0000 0000000161040506") << QByteArray("[0 9 key][9 8] SPS 4+5");
    QTest::newRow("no second start code: one frame")
        << QByteArray("0000000167424242424242") << QByteArray("[0 11 key] SPS 5+6");
    QTest::newRow("delimiter before the first SPS: a frame of its own")
        << QByteArray("0000000109F00000 000167424242") << QByteArray("[0 6][6 8 key] SPS 11+3");
    QTest::newRow("SEI before the first SPS: a frame of its own")
        << QByteArray("0000000106050100 0000000167424242 0000000165010203")
        << QByteArray("[0 8][8 16 key] SPS 13+3");
    QTest::newRow("a file that begins with a slice")
        << QByteArray("0000000161010203 0000000161040506") << QByteArray("[0 8][8 8]");
    QTest::newRow("several slices a picture: an entry a slice")
        << QByteArray("0000000167424242 0000000165010203 0000000161010203 0000000161040506")
        << QByteArray("[0 16 key][16 8][24 8] SPS 5+3");
    for (char const* slice : {"41", "21", "01", "E1", "62", "60"})
        QTest::addRow("a slice with header byte %s opens no frame", slice)
            << QByteArray("0000000167424242 0000000165010203 00000001") + slice + "010203 00000001" + slice +
                   "040506 0000000167424242"
            << QByteArray("[0 32 key][32 8 key] SPS 5+3");
    for (char const* sps : {"47", "27", "07", "E7"})
        QTest::addRow("an SPS with header byte %s opens no frame", sps)
            << QByteArray("00000001") + sps + "424242 0000000165010203 0000000161040506"
            << QByteArray("[0 16][16 8]");
    QTest::newRow("a second SPS: the first one counts")
        << QByteArray("0000000167424242 0000000167434343 4343") << QByteArray("[0 8 key][8 10 key] SPS 5+3");
    QTest::newRow("start code in the last three bytes stays inside the last frame")
        << QByteArray("0000000167424242 000001") << QByteArray("[0 11 key] SPS 5+6");
    QTest::newRow("start code with three bytes behind it stays inside, but ends the SPS")
        << QByteArray("0000000167424242 0000000161AABB") << QByteArray("[0 15 key] SPS 5+3");
    QTest::newRow("start code with four bytes behind it")
        << QByteArray("0000000167424242 0000000161AABBCC") << QByteArray("[0 8 key][8 8] SPS 5+3");
    QTest::newRow("four-byte start code at the very end: no last frame")
        << QByteArray("0000000167424242 0000000161010203 00000001") << QByteArray("[0 8 key] SPS 5+3");
    QTest::newRow("four bytes of start code and nothing else") << QByteArray("00000001") << QByteArray("");
    QTest::newRow("three-byte start code and one byte")
        << QByteArray("00000167") << QByteArray("[0 4]"); // too short to be looked at
    QTest::newRow("header byte that is the start of a start code is passed over")
        << QByteArray("000001 000001 67424242") << QByteArray("[0 10]");
    QTest::newRow("the first unit closes no frame, also behind a four-byte code")
        << QByteArray("0000000161424242 4242") << QByteArray("[0 10]");
    QTest::newRow("behind three zeros the first unit does")
        << QByteArray("000000000167424242") << QByteArray("[0 1][1 8 key] SPS 6+3");
}

void tst_AnnexB::framesOpenAtParameterSetsAndSlices()
{
    QFETCH(QByteArray, hex);
    QFETCH(QByteArray, expected);
    Bytes const bytes = fx_Bytes(hex.constData());
    QCOMPARE(fx_Text(fx_Scan(bytes)), expected);
    QCOMPARE(fx_Text(fx_ReferenceScan(bytes)), expected);
}

void tst_AnnexB::spsIsKnownOnceItIsPassed()
{
    Bytes const bytes =
        fx_Bytes("0000000161010203 0000000161010203 0000000167424242 0000000168010203 0000000161010203");
    CxFrameScanner scanner(bytes.data(), bytes.size());
    SxFrameRange frame;
    QVERIFY(!scanner.spsPayload());
    QCOMPARE(scanner.spsLength(), quint16(0));
    QVERIFY(scanner.next(frame)); // the first slice, closed by the second
    QVERIFY(!scanner.spsPayload());
    QVERIFY(scanner.next(frame)); // the second, closed by the SPS
    QCOMPARE(scanner.spsPayload(), bytes.data() + 21);
    QVERIFY(scanner.next(frame));
    QCOMPARE(scanner.spsLength(), quint16(3));
}

void tst_AnnexB::spsLengthEndsAt65535_data()
{
    QTest::addColumn<int>("payload");
    QTest::addColumn<bool>("isFollowed");
    QTest::addColumn<int>("length");

    for (int const payload : {3, 65534, 65535, 65536, 65537, 131072 + 3}) {
        QTest::addRow("%d bytes", payload) << payload << true << qMin(payload, 65535);
        QTest::addRow("%d bytes up to the end of the file", payload)
            << payload << false << qMin(payload, 65535);
    }
}

void tst_AnnexB::spsLengthEndsAt65535()
{
    QFETCH(int, payload);
    QFETCH(bool, isFollowed);
    QFETCH(int, length);
    Bytes bytes = fx_Bytes("0000000167");
    bytes.resize(5 + static_cast<size_t>(payload), 0x42);
    if (isFollowed) {
        Bytes const next = fx_Bytes("0000000161010203");
        bytes.insert(bytes.end(), next.begin(), next.end());
    }
    SxScan const scan = fx_Scan(bytes);
    QCOMPARE(scan, fx_ReferenceScan(bytes));
    QCOMPARE(scan.spsPayload, size_t(5));
    QCOMPARE(scan.spsLength, static_cast<size_t>(length));
}

QTEST_APPLESS_MAIN(tst_AnnexB)

#include "tst_AnnexB.moc"

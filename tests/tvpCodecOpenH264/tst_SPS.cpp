#include <QtTest>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "SPS.h"
#include "support/SpsWriter.h"

struct SxSize
{
    int width = -1;
    int height = -1;

    bool operator==(SxSize const& other) const { return width == other.width && height == other.height; }
};

/// Test rows show sizes as text.
static char* toString(SxSize const& size)
{
    return qstrdup(qPrintable(QStringLiteral("%1 x %2").arg(size.width).arg(size.height)));
}

/// Parses the first \p length bytes from a block of exactly that size, where the address sanitizer
/// sees every read behind them.
static SxSize fx_Parse(std::vector<uchar> const& bytes, size_t length)
{
    std::unique_ptr<uchar[]> const exact(new uchar[length]);
    std::copy_n(bytes.data(), length, exact.get());
    SxSize size;
    CxSPS().parse(exact.get(), static_cast<unsigned short>(length), size.width, size.height);
    return size;
}

static SxSize fx_Parse(std::vector<uchar> const& bytes) { return fx_Parse(bytes, bytes.size()); }

/// The same walk in its plainest form, over bits one by one with endless zeros behind them.
class CxReferenceWalk
{
public:
    CxReferenceWalk(std::vector<uchar> const& bytes, size_t length)
    {
        for (size_t i = 0; i < length; ++i)
            for (int bit = 7; bit >= 0; --bit)
                m_bits.push_back((bytes[i] >> bit & 1) != 0);
    }

    SxSize size()
    {
        quint64 const profile = number(8);
        number(16);
        golomb();
        if (profile == 100 || profile == 110 || profile == 122 || profile == 144) {
            if (golomb() == 3)
                number(1);
            golomb();
            golomb();
            number(1);
            if (number(1) == 1)
                number(8);
        }
        golomb();
        quint64 const orderType = golomb();
        if (orderType == 0)
            golomb();
        if (orderType == 1) {
            number(1);
            golomb();
            golomb();
            for (quint64 left = golomb(); left > 0 && m_at < m_bits.size(); --left)
                golomb();
        }
        golomb();
        number(1);
        quint64 const columns = golomb() + 1;
        quint64 const rows = golomb() + 1;
        quint64 const rowHeight = number(1) == 1 ? 16 : 32;
        if (rowHeight == 32)
            number(1);
        number(1);
        quint64 crop[4] = {0, 0, 0, 0};
        if (number(1) == 1)
            for (quint64& offset : crop)
                offset = golomb();
        return {static_cast<int>(static_cast<quint32>(16 * columns - 2 * (crop[0] + crop[1]))),
                static_cast<int>(static_cast<quint32>(rowHeight * rows - 2 * (crop[2] + crop[3])))};
    }

private:
    quint64 number(int bits)
    {
        quint64 value = 0;
        for (; bits > 0; --bits, ++m_at)
            value = 2 * value + (m_at < m_bits.size() && m_bits[m_at] ? 1 : 0);
        return value;
    }

    quint64 golomb()
    {
        int zeros = 0;
        while (zeros < 32 && number(1) == 0)
            ++zeros;
        return ((quint64(1) << zeros) - 1 + number(zeros)) & 0xFFFFFFFF;
    }

    std::vector<bool> m_bits;
    size_t m_at = 0;
};

static SxSize fx_Reference(std::vector<uchar> const& bytes, size_t length)
{
    return CxReferenceWalk(bytes, length).size();
}

/// The size that a set stands for, with the fixed cropping unit of 2.
static SxSize fx_SizeOf(SxSps const& sps)
{
    quint32 const cropX = sps.frame_cropping_flag ? 2 * (sps.left + sps.right) : 0;
    quint32 const cropY = sps.frame_cropping_flag ? 2 * (sps.top + sps.bottom) : 0;
    quint32 const rowHeight = sps.frame_mbs_only_flag ? 16 : 32;
    return {static_cast<int>((sps.pic_width_in_mbs_minus1 + 1) * 16 - cropX),
            static_cast<int>((sps.pic_height_in_map_units_minus1 + 1) * rowHeight - cropY)};
}

/// Whether the walk knows all fields of this set: what it leaves out shifts everything behind.
static bool fx_IsWalkedRightly(SxSps const& sps)
{
    if (!fx_HasChromaFields(sps.profile_idc))
        return true;
    bool const isKnown =
        sps.profile_idc == 100 || sps.profile_idc == 110 || sps.profile_idc == 122 || sps.profile_idc == 144;
    return isKnown && !(sps.seq_scaling_matrix_present_flag && sps.chroma_format_idc == 3);
}

class tst_SPS : public QObject
{
    Q_OBJECT

private slots:
    void sizeIsReadFromTheParameterSet_data();
    void sizeIsReadFromTheParameterSet();
    void everyFormOfParameterSetIsRead();
    void scalingListsAreNotParsed();
    void unknownProfileHasNoChromaFields();
    void emulationPreventionIsReadAsItStands();
    void longestCodeIsRead();
    void setCutAtEveryByteIsReadLikeTheReference();
    void hugeCycleEnds_data();
    void hugeCycleEnds();
    void emptyParameterSetGivesNoSize();
    void bytesBehindLengthDoNotCount();
    void randomBytesAreReadLikeTheReference();
    void parserIsReusable();
};

Q_DECLARE_METATYPE(SxSps)

void tst_SPS::sizeIsReadFromTheParameterSet_data()
{
    QTest::addColumn<SxSps>("sps");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");

    SxSps sps;
    QTest::newRow("baseline 640 x 480") << sps << 640 << 480;
    sps.profile_idc = 77;
    QTest::newRow("main") << sps << 640 << 480;
    sps.profile_idc = 88;
    QTest::newRow("extended") << sps << 640 << 480;
    for (quint32 const profile : {100u, 110u, 122u, 144u}) {
        for (quint32 chroma = 0; chroma <= 3; ++chroma) {
            sps = SxSps();
            sps.profile_idc = profile;
            sps.chroma_format_idc = chroma;
            QTest::addRow("profile %u, chroma format %u", profile, chroma) << sps << 640 << 480;
            if (chroma == 3)
                continue;
            sps.seq_scaling_matrix_present_flag = true;
            QTest::addRow("profile %u, chroma format %u, no list present", profile, chroma)
                << sps << 640 << 480;
        }
    }
    sps = SxSps();
    sps.profile_idc = 110;
    sps.bit_depth_luma_minus8 = 2;
    sps.bit_depth_chroma_minus8 = 6;
    QTest::newRow("deeper samples") << sps << 640 << 480;

    SxSps hd;
    hd.pic_width_in_mbs_minus1 = 119;
    hd.pic_height_in_map_units_minus1 = 67;
    QTest::newRow("1920 x 1088") << hd << 1920 << 1088;
    hd.frame_cropping_flag = true;
    QTest::newRow("cropped by nothing") << hd << 1920 << 1088;
    hd.bottom = 4;
    QTest::newRow("1920 x 1080") << hd << 1920 << 1080;
    hd.left = 1;
    hd.right = 2;
    hd.top = 3;
    QTest::newRow("cropped at all sides") << hd << 1914 << 1074;
    hd.profile_idc = 100;
    hd.chroma_format_idc = 2; // the standard's vertical unit would be 1
    QTest::newRow("4:2:2, cropped in units of 2 all the same") << hd << 1914 << 1074;

    SxSps field;
    field.frame_mbs_only_flag = false;
    field.pic_height_in_map_units_minus1 = 14;
    QTest::newRow("field coded") << field << 640 << 480;
    field.frame_cropping_flag = true;
    field.bottom = 2; // the standard's vertical unit would be 4
    QTest::newRow("field coded, cropped in units of 2 all the same") << field << 640 << 476;

    for (quint32 const type : {0u, 2u, 3u, 4711u}) {
        sps = SxSps();
        sps.pic_order_cnt_type = type;
        QTest::addRow("order count type %u", type) << sps << 640 << 480;
    }
    for (quint32 const cycle : {0u, 1u, 2u, 255u, 5000u}) {
        sps = SxSps();
        sps.pic_order_cnt_type = 1;
        sps.num_ref_frames_in_pic_order_cnt_cycle = sps.offsets = cycle;
        QTest::addRow("order count type 1, cycle of %u", cycle) << sps << 640 << 480;
    }

    sps = SxSps();
    sps.pic_width_in_mbs_minus1 = 0;
    sps.pic_height_in_map_units_minus1 = 0;
    QTest::newRow("one macroblock") << sps << 16 << 16;
    sps.frame_cropping_flag = true;
    sps.left = 8;
    sps.bottom = 9;
    QTest::newRow("cropped to nothing and beyond") << sps << 0 << -2;
    sps = SxSps();
    sps.pic_width_in_mbs_minus1 = 0x0FFFFFFF;
    sps.pic_height_in_map_units_minus1 = 0x07FFFFFF;
    QTest::newRow("sizes wrap at 32 bits") << sps << 0 << -2147483647 - 1;
}

void tst_SPS::sizeIsReadFromTheParameterSet()
{
    QFETCH(SxSps, sps);
    QFETCH(int, width);
    QFETCH(int, height);

    QCOMPARE(fx_Parse(fx_WriteSps(sps)), (SxSize{width, height}));
}

/// One form of a set: what the fields say where all are known, what the plain walk says always.
static void fx_CheckForm(SxSps const& sps)
{
    std::vector<uchar> const bytes = fx_WriteSps(sps);
    SxSize const actual = fx_Parse(bytes);
    QCOMPARE(actual, fx_Reference(bytes, bytes.size()));
    if (fx_IsWalkedRightly(sps))
        QCOMPARE(actual, fx_SizeOf(sps));
}

static void fx_CheckOrderAndSizeForms(SxSps sps)
{
    for (quint32 orderType = 0; orderType <= 3; ++orderType) {
        for (quint32 cycle = 0; cycle <= (orderType == 1 ? 3u : 0u); ++cycle) {
            for (quint32 form = 0; form < 8; ++form) {
                sps.pic_order_cnt_type = orderType;
                sps.num_ref_frames_in_pic_order_cnt_cycle = sps.offsets = cycle;
                sps.frame_mbs_only_flag = (form & 1) != 0;
                sps.frame_cropping_flag = (form & 2) != 0;
                sps.right = form & 4;
                sps.bottom = form & 4;
                sps.pic_width_in_mbs_minus1 = (form & 4) != 0 ? 119 : 3;
                sps.max_num_ref_frames = form;
                fx_CheckForm(sps);
                if (QTest::currentTestFailed())
                    return;
            }
        }
    }
}

void tst_SPS::everyFormOfParameterSetIsRead()
{
    for (quint32 profile = 0; profile <= 255; ++profile) {
        for (quint32 chroma = 0; chroma <= 3; ++chroma) {
            for (int matrix = 0; matrix <= 1; ++matrix) {
                SxSps sps;
                sps.profile_idc = profile;
                sps.chroma_format_idc = chroma;
                sps.seq_scaling_matrix_present_flag = matrix != 0;
                sps.seq_parameter_set_id = profile % 32;
                fx_CheckOrderAndSizeForms(sps);
                if (QTest::currentTestFailed())
                    QFAIL(qPrintable(QStringLiteral("profile %1, chroma %2").arg(profile).arg(chroma)));
            }
        }
    }
}

void tst_SPS::scalingListsAreNotParsed()
{
    // Eight flags, the first of them set: the list's sixteen deltas are then taken for what follows.
    CxBitWriter writer;
    writer.bits(100, 8);
    writer.bits(0, 16);
    writer.ue(0); // seq_parameter_set_id
    writer.ue(1); // chroma_format_idc
    writer.ue(0);
    writer.ue(0);
    writer.bit(false);
    writer.bit(true); // seq_scaling_matrix_present_flag
    writer.bits(0x80, 8);
    writer.ue(0);  // read as log2_max_frame_num_minus4
    writer.ue(2);  // read as pic_order_cnt_type
    writer.ue(1);  // read as max_num_ref_frames
    writer.bit(0); // read as gaps_in_frame_num_value_allowed_flag
    writer.ue(9);  // read as pic_width_in_mbs_minus1
    writer.ue(4);  // read as pic_height_in_map_units_minus1
    writer.bits(4, 3);
    QCOMPARE(fx_Parse(writer.bytes()), (SxSize{160, 80}));
}

void tst_SPS::unknownProfileHasNoChromaFields()
{
    for (quint32 const profile : {244u, 44u, 83u, 86u, 118u, 128u}) {
        SxSps sps;
        sps.profile_idc = 66;
        std::vector<uchar> bytes = fx_WriteSps(sps);
        bytes[0] = static_cast<uchar>(profile);
        QCOMPARE(fx_Parse(bytes), (SxSize{640, 480}));
    }
}

/// As a stream carries it: a 3 ahead of every byte up to 3 that follows two zeros (7.4.1).
static std::vector<uchar> fx_Escaped(std::vector<uchar> const& bytes)
{
    std::vector<uchar> escaped;
    for (uchar const byte : bytes) {
        size_t const n = escaped.size();
        if (byte <= 3 && n >= 2 && escaped[n - 1] == 0 && escaped[n - 2] == 0)
            escaped.push_back(3);
        escaped.push_back(byte);
    }
    return escaped;
}

void tst_SPS::emulationPreventionIsReadAsItStands()
{
    int shifted = 0;
    for (int length = 16; length <= 28; ++length) {
        SxSps sps;
        sps.max_num_ref_frames = (1u << length) - 1; // as many zeros, a one, as many zeros
        std::vector<uchar> const bytes = fx_WriteSps(sps);
        std::vector<uchar> const escaped = fx_Escaped(bytes);
        QCOMPARE(fx_Parse(bytes), (SxSize{640, 480}));
        QCOMPARE(fx_Parse(escaped), fx_Reference(escaped, escaped.size()));
        shifted += escaped.size() > bytes.size() && !(fx_Parse(escaped) == fx_Parse(bytes)) ? 1 : 0;
    }
    QVERIFY(shifted > 0);
}

void tst_SPS::longestCodeIsRead()
{
    // Thirty-two zeros end the count without a look at what follows; thirty-two bits belong to the code.
    for (quint64 const value : {quint64(0), quint64(1), quint64(0x7FFFFFFF), quint64(0xFFFFFFFF)}) {
        CxBitWriter writer;
        writer.bits(66, 8);
        writer.bits(0, 16);
        writer.bits(0, 32); // seq_parameter_set_id: 32 zeros
        writer.bits(value, 32);
        writer.ue(0);
        writer.ue(2);
        writer.ue(1);
        writer.bit(false);
        writer.bits(0, 32); // pic_width_in_mbs_minus1: 2^32 - 1 + value
        writer.bits(value, 32);
        writer.ue(2);
        writer.bits(4, 3);
        quint32 const width = static_cast<quint32>(16 * value);
        QCOMPARE(fx_Parse(writer.bytes()), (SxSize{static_cast<int>(width), 48}));
    }
}

void tst_SPS::setCutAtEveryByteIsReadLikeTheReference()
{
    std::vector<SxSps> sets(4);
    sets[1].profile_idc = 100;
    sets[1].seq_scaling_matrix_present_flag = true;
    sets[2].pic_order_cnt_type = 1;
    sets[2].num_ref_frames_in_pic_order_cnt_cycle = sets[2].offsets = 40;
    sets[3].frame_mbs_only_flag = false;
    sets[3].frame_cropping_flag = true;
    sets[3].left = sets[3].bottom = 70000;
    for (SxSps const& sps : sets) {
        std::vector<uchar> const bytes = fx_WriteSps(sps);
        for (size_t length = 0; length <= bytes.size(); ++length)
            QCOMPARE(fx_Parse(bytes, length), fx_Reference(bytes, length));
    }
}

void tst_SPS::hugeCycleEnds_data()
{
    QTest::addColumn<quint32>("cycle");
    QTest::addColumn<int>("length");

    for (quint32 const cycle : {0xFFFFu, 0x7FFFFFFFu, 0xFFFFFFFEu}) {
        for (int const length : {12, 100, 65535})
            QTest::addRow("%u in %d bytes", cycle, length) << cycle << length;
    }
}

void tst_SPS::hugeCycleEnds()
{
    QFETCH(quint32, cycle);
    QFETCH(int, length);
    for (int const fill : {0x00, 0xFF, 0x5A}) {
        SxSps sps;
        sps.pic_order_cnt_type = 1;
        sps.num_ref_frames_in_pic_order_cnt_cycle = cycle;
        std::vector<uchar> bytes = fx_WriteSps(sps);
        bytes.resize(static_cast<size_t>(length), static_cast<uchar>(fill));
        QCOMPARE(fx_Parse(bytes), fx_Reference(bytes, bytes.size()));
    }
}

void tst_SPS::emptyParameterSetGivesNoSize()
{
    SxSize size;
    CxSPS().parse(nullptr, 0, size.width, size.height);
    QCOMPARE(size, (SxSize{0, 0}));
    QCOMPARE(fx_Parse({66}), (SxSize{0, 0}));
}

void tst_SPS::bytesBehindLengthDoNotCount()
{
    std::vector<uchar> const bytes = fx_WriteSps(SxSps());
    for (size_t length = 0; length < bytes.size(); ++length) {
        std::vector<uchar> other = bytes;
        for (size_t i = length; i < other.size(); ++i)
            other[i] = static_cast<uchar>(~other[i]);
        SxSize size;
        CxSPS().parse(other.data(), static_cast<unsigned short>(length), size.width, size.height);
        QCOMPARE(size, fx_Parse(bytes, length));
    }
}

void tst_SPS::randomBytesAreReadLikeTheReference()
{
    std::mt19937 random(20);
    uchar const profiles[] = {66, 77, 88, 100, 110, 122, 144, 244};
    for (int round = 0; round < 100000; ++round) {
        std::vector<uchar> bytes(random() % 48);
        unsigned const rarity = random() % 4; // zeros make long codes
        for (uchar& byte : bytes) {
            byte = static_cast<uchar>(random());
            for (unsigned i = 0; i < rarity; ++i)
                byte = static_cast<uchar>(byte & random());
        }
        if (!bytes.empty())
            bytes[0] = profiles[random() % sizeof profiles];
        QCOMPARE(fx_Parse(bytes), fx_Reference(bytes, bytes.size()));
    }
}

void tst_SPS::parserIsReusable()
{
    SxSps other;
    other.pic_order_cnt_type = 1;
    other.frame_cropping_flag = true;
    other.left = 3;
    std::vector<uchar> const first = fx_WriteSps(other);
    std::vector<uchar> const second = fx_WriteSps(SxSps());
    CxSPS parser;
    SxSize size;
    parser.parse(first.data(), static_cast<unsigned short>(first.size()), size.width, size.height);
    QCOMPARE(size, (SxSize{634, 480}));
    parser.parse(second.data(), static_cast<unsigned short>(second.size()), size.width, size.height);
    QCOMPARE(size, (SxSize{640, 480}));
}

QTEST_APPLESS_MAIN(tst_SPS)

#include "tst_SPS.moc"

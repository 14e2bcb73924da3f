// What an accessor says, then the stream: a decoder believes none of it.
#include <QLoggingCategory>
#include <climits>
#include <cstdint>
#include <vector>

#include "AnnexB.h"
#include "CxPicBufAPI.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "IxVideoAccessor.h"
#include "openH264Decoder.h"

static constexpr int kMostFrames = 12; // more only take time
static constexpr int kMostDecodes = 8;
static constexpr unsigned kMostBytes = 1 << 20;

/// A size that no memory has is an answer, not a finding.
extern "C" char const* __asan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "allocator_may_return_null=1";
}

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    return 0;
}

/// Frames of a stream. A byte an answer decides whether it is true; the answers are true when there are no
/// more. The one promise kept is that frameData() writes no more than it was given room for.
class CxLyingAccessor : public IxVideoAccessor
{
public:
    CxLyingAccessor(CxFuzzInput const& lies, CxFuzzInput const& stream)
        : m_lies(lies)
        , m_stream(stream)
    {
        CxFrameScanner scanner(stream.data(), stream.left());
        for (SxFrameRange frame; m_frames.size() < kMostFrames && scanner.next(frame);) {
            if (frame.key)
                m_keys.append(static_cast<int>(m_frames.size()));
            m_frames.push_back(frame);
        }
        if (m_keys.isEmpty())
            m_keys.append(0);
    }

    int last = -1;

    int count() const { return static_cast<int>(m_frames.size()); }

    int framesCount() override
    {
        switch (m_lies.byte()) {
        case 1:
            return 0;
        case 2:
            return -1;
        case 3:
            return INT_MAX;
        case 4:
            return count() + m_lies.byte();
        default:
            return count();
        }
    }

    unsigned long frameDataSize(int frame) override
    {
        unsigned long const size = at(frame).size;
        switch (m_lies.byte()) {
        case 1:
            return 0;
        case 2:
            return size + m_lies.byte();
        case 3:
            return size - m_lies.byte() % (size + 1);
        case 4:
            return m_lies.word() % kMostBytes;
        case 5:
            return ULONG_MAX; // more than there is
        default:
            return size;
        }
    }

    bool frameData(int frame, void* buffer, unsigned long& size) override
    {
        std::uint8_t const lie = m_lies.byte();
        if (lie == 1)
            return false;
        SxFrameRange const range = at(lie == 2 ? m_lies.byte() : frame);
        unsigned long const bytes = std::min<unsigned long>(range.size, size);
        std::copy_n(m_stream.data() + range.offset, lie == 3 ? bytes / 2 : bytes,
                    static_cast<std::uint8_t*>(buffer));
        switch (lie) {
        case 4:
            size = m_lies.byte();
            break;
        case 5:
            size += m_lies.byte();
            break;
        case 6:
            size = ULONG_MAX - m_lies.byte();
            break;
        case 7:
            break; // as it came
        default:
            size = bytes;
        }
        return true;
    }

    int lastProcessedFrame() override
    {
        switch (m_lies.byte()) {
        case 1:
            return INT_MIN;
        case 2:
            return INT_MAX;
        case 3:
            return static_cast<std::int8_t>(m_lies.byte());
        default:
            return last;
        }
    }

    void keyFrames(QList<int>& frames) override
    {
        frames = m_keys;
        switch (m_lies.byte()) {
        case 1:
            frames.clear();
            break;
        case 2:
            frames.prepend(-static_cast<int>(m_lies.byte()));
            break;
        case 3:
            frames.append(m_lies.byte());
            break;
        case 4:
            frames.append(INT_MAX);
            frames.prepend(INT_MIN);
            break;
        case 5:
            frames = {m_lies.byte(), m_lies.byte(), m_lies.byte()};
            break;
        }
    }

private:
    SxFrameRange at(int frame) const
    {
        return frame >= 0 && frame < count() ? m_frames[static_cast<size_t>(frame)] : SxFrameRange();
    }

    CxFuzzInput m_lies;
    CxFuzzInput const m_stream;
    std::vector<SxFrameRange> m_frames;
    QList<int> m_keys;
};

/// A picture for the decoder to fill: without memory, or with exactly what its format needs.
static SxPicBuf fx_Target(CxFuzzInput& choices, SxPicBufInfo const& seen, std::vector<std::uint8_t>& memory)
{
    SxPicBuf picture;
    std::uint8_t const kind = choices.byte() % 8;
    if (kind < 4)
        return picture;
    picture.setPicFormat(seen);
    if (kind == 5)
        picture.width = choices.below(128);
    if (kind == 6)
        picture.pitch = choices.below(1024);
    if (kind == 7) {
        picture.components = choices.byte();
        picture.sampleType = choices.byte();
        picture.layout = choices.byte();
        picture.formatFlag = choices.flag();
    }
    quint64 const bytes = quint64(picture.pitch) * picture.height;
    if (bytes == 0 || bytes > kMostBytes)
        return SxPicBuf();
    memory.assign(bytes, 0x55);
    memory.shrink_to_fit();
    picture.data = memory.data();
    return picture;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    CxFuzzInput input(data, size);
    CxFuzzInput choices = input.split();
    CxFuzzInput const lies = input.split();
    CxLyingAccessor accessor(lies, input);
    CxOpenH264Decoder decoder;
    SxPicBufInfo seen;
    for (int step = 0; step < kMostDecodes; ++step) {
        // First in order, then as the input has it.
        int const frame = step < accessor.count() / 2 ? step : static_cast<std::int8_t>(choices.byte());
        std::vector<std::uint8_t> memory;
        SxPicBuf picture = fx_Target(choices, seen, memory);
        bool const isOurs = picture.data != nullptr;
        bool const isDecoded = decoder.decode(frame, &accessor, picture);
        if (isDecoded)
            accessor.last = frame;
        if (!isOurs && picture.data) {
            TARN_EXPECT(picture.pitch / 4 >= picture.width && picture.height != 0);
            TARN_EXPECT(!isDecoded || picture.data[3] == 255); // what a failure leaves there is nobody's
            seen = picture;
            CxPicBufAPI::FreePicBuf(picture, true);
        }
    }
    return 0;
}

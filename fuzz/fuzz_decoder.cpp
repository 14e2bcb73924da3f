// The first two bytes choose the order of access and the accessor's lies; the rest is the stream.
#include <QLoggingCategory>
#include <cstdint>
#include <random>

#include "AnnexB.h"
#include "CxPicBufAPI.h"
#include "Expect.h"
#include "openH264Decoder.h"
#include "support/FakeAccessor.h"

static constexpr std::size_t kHeader = 2;
static constexpr int kMostFrames = 6; // more only take time

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    return 0;
}

static void fx_Index(CxFakeAccessor& accessor, std::uint8_t const* data, std::size_t size)
{
    CxFrameScanner scanner(data, size);
    for (SxFrameRange frame; accessor.frames.size() < kMostFrames && scanner.next(frame);) {
        if (frame.key)
            accessor.keys.append(accessor.frames.size());
        accessor.frames.append(
            QByteArray(reinterpret_cast<char const*>(data) + frame.offset, static_cast<int>(frame.size)));
    }
    if (accessor.keys.isEmpty())
        accessor.keys.append(0);
}

/// Eight bits, a lie each. None makes frameData() itself write beyond what it was given.
static void fx_Lie(CxFakeAccessor& accessor, unsigned lies)
{
    if (lies & 1)
        accessor.keys.prepend(-3);
    if (lies & 2)
        accessor.keys.append(4711);
    if (lies & 4)
        accessor.keys.append(1); // out of order
    if (lies & 8)
        accessor.count = accessor.frames.size() + 2;
    if (lies & 16)
        accessor.announced = 100000;
    if (lies & 32)
        accessor.reported = 7;
    if (lies & 64)
        accessor.reported = ~0ul;
    if (lies & 128)
        accessor.refused.append(1);
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size < kHeader)
        return 0;
    CxFakeAccessor accessor;
    fx_Index(accessor, data + kHeader, size - kHeader);
    fx_Lie(accessor, data[1]);

    CxOpenH264Decoder decoder;
    std::minstd_rand random(data[0] + 1u);
    int const count = accessor.framesCount();
    for (int step = 0; step < 2 * count; ++step) {
        int const frame = step < count ? step : static_cast<int>(random() % static_cast<unsigned>(count));
        SxPicBuf picture;
        if (decoder.decode(frame, &accessor, picture))
            accessor.last = frame;
        if (picture.data) {
            TARN_EXPECT(picture.pitch / 4 >= picture.width && picture.height != 0);
            TARN_EXPECT(picture.data[3] == 255);
        }
        CxPicBufAPI::FreePicBuf(picture, true);
    }
    return 0;
}

// Any option map, set before and between pictures: the encoder codes, or refuses, within its buffer.
#include <QLoggingCategory>
#include <cstdint>
#include <vector>

#include "Expect.h"
#include "FuzzInput.h"
#include "FuzzOptions.h"
#include "openH264Encoder.h"
#include "support/TestPicture.h"

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    CxFuzzInput input(data, size);
    CxOpenH264Encoder encoder;
    encoder.setEncoderOptions(fx_RandomOptions(input));
    CxTestPicture picture(2 + input.byte() % 80, 2 + input.byte() % 80);
    SxPicBufInfo wanted;
    encoder.queryOuputFormat(picture.buf, wanted);
    TARN_EXPECT(wanted.width <= picture.buf.width && wanted.height <= picture.buf.height);
    TARN_EXPECT(wanted.width % 2 == 0 && wanted.height % 2 == 0);

    bool hasCoded = false;
    for (unsigned i = 0; i < 4; ++i) {
        if (input.flag())
            picture.fillNoise(i);
        else
            picture.fillSmooth(i);
        picture.buf.timestamp = input.word();
        std::vector<std::uint8_t> out(encoder.maxEncodedSize(picture.buf));
        out.shrink_to_fit();
        unsigned long bytes = out.size();
        bool isKey = false;
        if (encoder.encode(picture.buf, out.data(), bytes, &isKey)) {
            TARN_EXPECT(bytes <= out.size());
            TARN_EXPECT(isKey || hasCoded || bytes == 0); // the first is a key frame
            hasCoded = hasCoded || bytes > 0;
        } else {
            TARN_EXPECT(bytes == out.size());
        }
        if (input.flag())
            encoder.setEncoderOptions(fx_RandomOptions(input));
    }
    return 0;
}

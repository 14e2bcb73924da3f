// Pictures of any size and format, one behind the other, with any options: what the saver says that it wrote
// is in the file and opens.
#include <QFile>
#include <QLoggingCategory>
#include <cstdint>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

#include "ClassRegistry.h"
#include "CodecOptions.h"
#include "CxImageData.h"
#include "CxRTTI.h"
#include "Expect.h"
#include "FourCC.h"
#include "FuzzInput.h"
#include "FuzzOptions.h"
#include "H264VideoLoader.h"
#include "H264VideoSaver.h"

static constexpr int kMostPictures = 8;
static constexpr quint64 kMostBytes = 1 << 20;

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    CxRTTI::instance()->registerClass(nullptr, CxOpenH264Encoder::staticMetaObject,
                                      QStringLiteral("IxVideoEncoder"));
    return 0;
}

namespace {

/// A picture with exactly the memory that its format describes, or none, or no picture at all.
class CxRandomImage : public CxImageData
{
public:
    explicit CxRandomImage(CxFuzzInput& input)
    {
        static quint32 const kComponents[] = {1, 3, 4};
        std::uint8_t const kind = input.byte();
        m_picture.components = kComponents[kind % 3];
        m_picture.sampleType = kind & 64 ? 4 : 2;
        m_picture.bitsPerSample = m_picture.sampleType == 4 ? 8 + input.byte() % 9 : 8;
        // Mostly one size, as from a camera; sometimes one that a low level scales.
        bool const isOther = input.byte() % 4 == 0;
        m_picture.width = isOther ? input.below(420) : 64;
        m_picture.height = isOther ? input.below(320) : 48;
        m_picture.pitch =
            m_picture.width * m_picture.components * (m_picture.sampleType == 4 ? 2 : 1) + kind % 5;
        m_picture.timestamp = input.word();
        std::uint8_t const fault = input.byte();
        if (fault == 1)
            m_picture.pitch = input.below(1024);
        if (fault == 2)
            m_picture.components = input.byte();
        if (fault == 3)
            m_picture.sampleType = input.byte();
        if (fault == 4)
            m_picture.layout = input.byte();
        if (fault == 5)
            m_picture.width = input.word();
        if (fault == 6)
            m_picture.height = input.word();
        quint64 const bytes = quint64(m_picture.pitch) * m_picture.height;
        if (fault != 7 && bytes <= kMostBytes) {
            m_memory.resize(bytes);
            m_memory.shrink_to_fit();
            input.fill(m_memory.data(), m_memory.size());
            m_picture.data = m_memory.data();
        }
        m_isNull = fault == 8;
    }
    SxPicBuf const* picBuf() const override { return m_isNull ? nullptr : &m_picture; }

private:
    SxPicBuf m_picture;
    std::vector<std::uint8_t> m_memory;
    bool m_isNull = false;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    CxFuzzInput input(data, size);
    fx_SetCodecOptions(kFourCCH264, fx_RandomOptions(input));
    int const file = memfd_create("recording", 0);
    TARN_EXPECT(file >= 0);
    QString const name = QStringLiteral("/proc/self/fd/%1").arg(file);
    int written = 0;
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(name);
        for (int i = 0; i < kMostPictures && input.left() > 0; ++i) {
            CxRandomImage const image(input);
            qint64 const before = saver.findChild<QFile*>()->pos();
            bool const isSaved = saver.save(&image, i);
            qint64 const bytes = saver.findChild<QFile*>()->pos() - before;
            TARN_EXPECT(bytes == 0 || isSaved);
            written += bytes > 0 ? 1 : 0;
        }
    }
    CxH264VideoLoader loader;
    loader.setInputFile(name);
    TARN_EXPECT(loader.sequenceSize() == written);
    for (int frame = 0; frame < written; ++frame) {
        std::unique_ptr<IxChainData> const picture(loader.loadedData(frame));
        TARN_EXPECT(picture != nullptr);
    }
    close(file);
    return 0;
}

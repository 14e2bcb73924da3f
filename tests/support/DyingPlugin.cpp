#include <QFile>
#include <QFileInfo>
#include <QtPlugin>
#include <algorithm>
#include <csignal>
#include <unistd.h>
#include <utility>

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "CxPlugin.h"
#include "CxRTTI.h"
#include "IxImageDataLoader.h"
#include "IxVideoAccessor.h"
#include "PictureFormat.h"

namespace {

constexpr int kFrameBytes = 10;
constexpr int kGroup = 5; // frames from one key frame to the next

/// Ends the process as a stray pointer would, past every sanitizer.
void fx_Crash()
{
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
}

/// Leaves its process number beside the file and never comes back.
[[noreturn]] void fx_Hang(QString const& fileName)
{
    QFile file(fileName + QStringLiteral(".tmp"));
    if (file.open(QIODevice::WriteOnly))
        file.write(QByteArray::number(static_cast<qint64>(getpid())));
    file.close();
    file.rename(fileName + QStringLiteral(".pid"));
    for (;;)
        pause();
}

} // namespace

/// "Opens" a file that says in words what is to happen: "frames 20", "crash 7", "hang 9", "fail 3", "crash
/// open", "raise 2" for a signal with the first picture. With "chain" a frame does to those behind it what it
/// does itself, up to the next key frame.
class CxDyingLoader : public QObject, public IxImageDataLoader, public IxVideoAccessor
{
    Q_OBJECT

public:
    Q_INVOKABLE CxDyingLoader() = default;

    bool load() override
    {
        QFile file(m_fileName);
        if (!file.open(QIODevice::ReadOnly))
            return false;
        QByteArrayList const words = file.readAll().simplified().split(' ');
        m_chains = words.contains("chain");
        for (int i = 0; i + 1 < words.size(); ++i) {
            if (words[i] == "frames")
                m_count = words[i + 1].toInt();
            else if (words[i] == "crash" && words[i + 1] == "open")
                fx_Crash();
            else if (words[i] == "crash")
                m_crashes.append(words[i + 1].toInt());
            else if (words[i] == "hang")
                m_hangs.append(words[i + 1].toInt());
            else if (words[i] == "raise")
                m_signal = words[i + 1].toInt();
            else if (words[i] == "fail")
                m_failures.append(words[i + 1].toInt());
        }
        return m_count > 0;
    }
    int sequenceSize() override { return m_count; }
    IxChainData* loadedData(int index) override
    {
        if (m_signal != 0)
            std::raise(std::exchange(m_signal, 0));
        for (int frame = m_chains ? index / kGroup * kGroup : index; frame <= index; ++frame) {
            if (m_crashes.contains(frame))
                fx_Crash();
            if (m_hangs.contains(frame))
                fx_Hang(m_fileName);
            if (m_failures.contains(frame))
                return nullptr;
        }
        SxPicBuf picture;
        if (!CxPicBufAPI::AllocPicBufFromHeap(picture, fx_PackedFormat(4, 4, 4, 8), false, 0))
            return nullptr;
        auto* const data = new CxImageData;
        data->setPicBuf(picture);
        return data;
    }
    QString inputFile() override { return m_fileName; }
    void setInputFile(QString const& fileName) override { m_fileName = fileName; }
    double loadedFps() override { return 30.0; }
    QList<CxImageFormat> supportedImageFormats() override { return {}; }
    int framesCount() override { return m_count; }
    unsigned long frameDataSize(int) override { return kFrameBytes; }
    bool frameData(int, void* buffer, unsigned long&) override
    {
        std::fill_n(static_cast<uchar*>(buffer), kFrameBytes, uchar{0});
        return true;
    }
    int lastProcessedFrame() override { return -1; }
    void keyFrames(QList<int>& frames) override
    {
        frames.clear();
        for (int frame = 0; frame < m_count; frame += kGroup)
            frames.append(frame);
    }

private:
    QString m_fileName;
    int m_count = 0;
    int m_signal = 0;
    bool m_chains = false;
    QList<int> m_crashes;
    QList<int> m_hangs;
    QList<int> m_failures;
};

/// A plug-in whose loader dies on demand.
class CxDyingPlugin : public QObject, public CxPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.quarn.CxDyingPlugin")
    Q_INTERFACES(CxPlugin)

public:
    bool init() override
    {
        return CxRTTI::instance()->registerClass(this, CxDyingLoader::staticMetaObject,
                                                 QStringLiteral("IxImageDataLoader"));
    }
};

#include "DyingPlugin.moc"

#include <QtTest>

#include <memory>
#include <thread>

#include "CxImageData.h"
#include "CxPicBufAPI.h"
#include "CxRTTI.h"
#include "H264VideoLoader.h"
#include "H264VideoSaver.h"
#include "openH264Encoder.h"
#include "support/CodedStream.h"
#include "support/TestPicture.h"

/// Hosts record and play several streams at once, each object in one thread: nothing may be shared between
/// them. Under the tsan preset a data race fails these tests.
class tst_threads : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void twoSaversWriteWhatOneWrites();
    void twoLoadersReadWhatOneReads();
    void aLoaderReadsWhileASaverWrites();

private:
    QString path(char const* name) const { return m_folder.filePath(QLatin1String(name)); }

    QTemporaryDir m_folder;
};

static constexpr int kPictures = 20;

static void fx_Save(QString const& fileName, bool& isSaved)
{
    isSaved = true;
    CxTestPicture drawn(64, 48);
    CxH264VideoSaver saver;
    saver.setOutputFile(fileName);
    saver.setSequenceSize(kPictures);
    for (int frame = 0; frame < kPictures; ++frame) {
        fx_DrawFrame(drawn, frame);
        SxPicBuf picture;
        isSaved = isSaved && CxPicBufAPI::AllocPicBufFromHeap(picture, drawn.buf, false, 0);
        std::copy_n(drawn.buf.data, drawn.buf.pitch * drawn.buf.height, picture.data);
        CxImageData image;
        image.setPicBuf(picture);
        isSaved = isSaved && saver.save(&image, frame);
    }
}

/// Hash of all pictures, the last first.
static void fx_Load(QString const& fileName, QByteArray& hash)
{
    CxH264VideoLoader loader;
    loader.setInputFile(fileName);
    QCryptographicHash pixels(QCryptographicHash::Md5);
    for (int frame = loader.sequenceSize() - 1; frame >= 0; --frame) {
        std::unique_ptr<IxChainData> const data(loader.loadedData(frame));
        auto const* const image = qobject_cast<CxImageData const*>(data.get());
        if (!image)
            return;
        SxPicBuf const& picture = *image->picBuf();
        pixels.addData(QByteArray(reinterpret_cast<char const*>(picture.data),
                                  static_cast<int>(picture.pitch * picture.height)));
    }
    hash = pixels.result();
}

static QByteArray fx_Bytes(QString const& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_threads::initTestCase()
{
    QVERIFY(m_folder.isValid());
    CxRTTI::instance()->registerClass(nullptr, CxOpenH264Encoder::staticMetaObject,
                                      QStringLiteral("IxVideoEncoder"));
    bool isSaved = false;
    fx_Save(path("one.h264"), isSaved);
    QVERIFY(isSaved);
}

void tst_threads::twoSaversWriteWhatOneWrites()
{
    bool isSaved[2] = {};
    std::thread first(fx_Save, path("first.h264"), std::ref(isSaved[0]));
    std::thread second(fx_Save, path("second.h264"), std::ref(isSaved[1]));
    first.join();
    second.join();
    QVERIFY(isSaved[0]);
    QVERIFY(isSaved[1]);
    QCOMPARE(fx_Bytes(path("first.h264")), fx_Bytes(path("one.h264")));
    QCOMPARE(fx_Bytes(path("second.h264")), fx_Bytes(path("one.h264")));
}

void tst_threads::twoLoadersReadWhatOneReads()
{
    QByteArray alone;
    fx_Load(path("one.h264"), alone);
    QVERIFY(!alone.isEmpty());
    QByteArray hashes[2];
    std::thread first(fx_Load, path("one.h264"), std::ref(hashes[0]));
    std::thread second(fx_Load, path("one.h264"), std::ref(hashes[1]));
    first.join();
    second.join();
    QCOMPARE(hashes[0], alone);
    QCOMPARE(hashes[1], alone);
}

void tst_threads::aLoaderReadsWhileASaverWrites()
{
    QByteArray alone;
    fx_Load(path("one.h264"), alone);
    QByteArray hash;
    bool isSaved = false;
    std::thread reader(fx_Load, path("one.h264"), std::ref(hash));
    std::thread writer(fx_Save, path("other.h264"), std::ref(isSaved));
    reader.join();
    writer.join();
    QVERIFY(isSaved);
    QCOMPARE(hash, alone);
    QCOMPARE(fx_Bytes(path("other.h264")), fx_Bytes(path("one.h264")));
}

QTEST_GUILESS_MAIN(tst_threads)
#include "tst_threads.moc"

#include <QtTest>

#include <atomic>
#include <functional>
#include <random>
#include <thread>

#include "H264VideoLoader.h"
#include "support/CodedStream.h"
#include "support/FileBytes.h"
#include "support/LoadedPictures.h"
#include "support/MessageRecorder.h"

/// Files that others cut, overwrite or replace while a loader plays them.
class tst_H264VideoLoaderChanges : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void changedWhilePlaying_data();
    void changedWhilePlaying();

private:
    void cut(QString const& fileName, std::mt19937& random) const;
    void overwrite(QString const& fileName, std::mt19937& random) const;
    void replace(QString const& fileName, std::mt19937& random) const;

    QTemporaryDir m_folder;
    SxCodedStream m_stream;
    QByteArray m_other;           ///< another recording, of larger pictures
    QList<QByteArray> m_pictures; ///< of the stream
};

static constexpr int kFrames = 60;
static constexpr int kKeyFrameRate = 10;
static constexpr int kMoments = 100;

void tst_H264VideoLoaderChanges::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QMap<QString, QVariant> const options = {{"h264_keyframerate", kKeyFrameRate}};
    m_stream = fx_CodeStream(kFrames, 160, 120, options);
    QCOMPARE(m_stream.frames.size(), kFrames);
    m_other = fx_CodeStream(kFrames, 176, 144, options).bytes();
    QString const fileName = m_folder.filePath(QStringLiteral("whole.h264"));
    QVERIFY(fx_WriteFile(fileName, m_stream.bytes()));
    m_pictures = fx_LoadedPictures(fileName);
    QCOMPARE(m_pictures.size(), kFrames);
    QVERIFY(!m_pictures.contains(QByteArray()));
}

static qint64 fx_Below(std::mt19937& random, qint64 end)
{
    return std::uniform_int_distribution<qint64>(0, end - 1)(random);
}

void tst_H264VideoLoaderChanges::cut(QString const& fileName, std::mt19937& random) const
{
    QFile::resize(fileName, fx_Below(random, m_stream.bytes().size()));
}

/// Some bytes of another recording in the place of these, in the same file.
void tst_H264VideoLoaderChanges::overwrite(QString const& fileName, std::mt19937& random) const
{
    QFile file(fileName);
    qint64 const size = m_stream.bytes().size();
    if (!file.open(QIODevice::ReadWrite) || !file.seek(fx_Below(random, size)))
        return;
    file.write(m_other.left(static_cast<int>(fx_Below(random, qMin<qint64>(m_other.size(), size)))));
}

/// Another recording of that name: the file that is open has no name from then on.
void tst_H264VideoLoaderChanges::replace(QString const& fileName, std::mt19937& random) const
{
    QString const other = fileName + QStringLiteral(".new");
    if (fx_WriteFile(other, m_other.left(static_cast<int>(fx_Below(random, m_other.size())))))
        std::rename(qPrintable(other), qPrintable(fileName));
}

using Change = void (tst_H264VideoLoaderChanges::*)(QString const&, std::mt19937&) const;
Q_DECLARE_METATYPE(Change)

void tst_H264VideoLoaderChanges::changedWhilePlaying_data()
{
    QTest::addColumn<bool>("isScrubbing");
    QTest::addColumn<int>("change");
    for (bool const isScrubbing : {false, true}) {
        char const* const how = isScrubbing ? "scrubbing" : "playing";
        QTest::addRow("%s, cut", how) << isScrubbing << 0;
        QTest::addRow("%s, overwritten", how) << isScrubbing << 1;
        QTest::addRow("%s, replaced", how) << isScrubbing << 2;
    }
}

/// Whatever happens to the file and whenever: no crash, and no picture but the right one where the file was
/// only cut or replaced. Each run is a file of its own, changed by another thread at a random moment.
void tst_H264VideoLoaderChanges::changedWhilePlaying()
{
    QFETCH(bool, isScrubbing);
    QFETCH(int, change);
    static constexpr Change kChanges[] = {&tst_H264VideoLoaderChanges::cut,
                                          &tst_H264VideoLoaderChanges::overwrite,
                                          &tst_H264VideoLoaderChanges::replace};
    unsigned const seed = std::random_device()();
    qInfo("seed %u", seed);
    std::mt19937 random(seed);
    CxMessageRecorder messages;
    int missing = 0;
    for (int moment = 0; moment < kMoments; ++moment) {
        QString const fileName = m_folder.filePath(QStringLiteral("changing.h264"));
        QFile::remove(fileName);
        QVERIFY(fx_WriteFile(fileName, m_stream.bytes()));
        CxH264VideoLoader loader;
        loader.setInputFile(fileName);
        QVERIFY(loader.load()); // from here on the mapping is not read any more

        qint64 const frameOfChange = fx_Below(random, kFrames);
        qint64 const turns = fx_Below(random, 200000); // a picture's time
        std::mt19937 changing(random());
        std::atomic<int> played{0};
        std::thread changer([&] {
            while (played < frameOfChange)
                std::this_thread::yield();
            for (qint64 volatile turn = 0; turn < turns; turn = turn + 1) {
            }
            (this->*kChanges[change])(fileName, changing);
        });
        int wrong = 0;
        for (int i = 0; i < kFrames; ++i, ++played) {
            int const frame = isScrubbing ? static_cast<int>(fx_Below(random, kFrames)) : i;
            QByteArray const picture = fx_LoadedPicture(loader, frame);
            missing += picture.isEmpty() ? 1 : 0;
            bool const isRight = picture == m_pictures.at(frame);
            wrong += isRight || picture.isEmpty() ? 0 : 1;
        }
        changer.join();
        QVERIFY2(kChanges[change] == &tst_H264VideoLoaderChanges::overwrite || wrong == 0,
                 qPrintable(QString::number(wrong)));
        QCOMPARE(loader.sequenceSize(), kFrames); // the index stays that of the file that was opened
    }
    // A replaced file is open under no name and misses nothing; in others frames fail, and say so where the
    // decoder was given bytes that are no stream.
    QCOMPARE(missing > 0, change != 2);
    QCOMPARE(!messages.takeTexts().isEmpty(), change == 1);
}

QTEST_GUILESS_MAIN(tst_H264VideoLoaderChanges)
#include "tst_H264VideoLoaderChanges.moc"

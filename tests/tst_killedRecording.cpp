#include <QtTest>

#include <algorithm>
#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

#include "H264VideoSaver.h"
#include "support/SavedSequence.h"

/// A recording whose process is killed needs no repair: what had left it is in the file and plays.
class tst_killedRecording : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void whatHadLeftTheProcessPlays();

private:
    QTemporaryDir m_folder;
};

static constexpr int kPictures = 60;
static constexpr int kKills = 50;
static constexpr qint64 kMostBuffered = 16384; ///< bytes that QFile keeps back

/// Records in a process of its own and kills that \p turns turns of an empty loop after it has saved
/// \p pictures pictures. \return the bytes that it had said by then that it has saved; -1 when it said
/// nothing.
static qint64 fx_RecordAndKill(CxSavedSequence& sequence, QString const& fileName, int pictures, int turns)
{
    int said[2];
    if (pipe(said) != 0)
        return -1;
    pid_t const process = fork();
    if (process == 0) {
        CxH264VideoSaver saver;
        saver.setOutputFile(fileName);
        for (int number = 0; number < kPictures && sequence.save(saver, number); ++number) {
            qint64 const position = saver.findChild<QFile*>()->pos();
            if (write(said[1], &position, sizeof position) != sizeof position)
                break;
        }
        pause(); // the recording ends only by being killed
        _exit(0);
    }
    close(said[1]);
    qint64 position = -1;
    for (int i = 0; i < pictures; ++i)
        if (read(said[0], &position, sizeof position) != sizeof position)
            break;
    for (int volatile turn = 0; turn < turns; turn = turn + 1) {
    }
    kill(process, SIGKILL);
    for (qint64 later; read(said[0], &later, sizeof later) == sizeof later;)
        position = later;
    close(said[0]);
    waitpid(process, nullptr, 0);
    return position;
}

void tst_killedRecording::initTestCase() { QVERIFY(m_folder.isValid()); }

void tst_killedRecording::whatHadLeftTheProcessPlays()
{
    CxSavedSequence sequence(kPictures);
    QVERIFY(sequence.makeReference(m_folder.filePath(QStringLiteral("whole.h264"))));
    unsigned const seed = std::random_device()();
    qInfo("seed %u", seed);
    std::mt19937 random(seed);
    QList<int> lengths;
    for (int i = 0; i < kKills; ++i) {
        QString const fileName = m_folder.filePath(QStringLiteral("killed%1.h264").arg(i));
        int const pictures = std::uniform_int_distribution<int>(1, kPictures)(random);
        int const turns = std::uniform_int_distribution<int>(0, 4000000)(random); // some pictures' time
        qint64 const saved = fx_RecordAndKill(sequence, fileName, pictures, turns);
        QVERIFY(saved > 0);

        qint64 const size = QFileInfo(fileName).size();
        QVERIFY2(size >= saved - kMostBuffered, qPrintable(QStringLiteral("%1 of %2").arg(size).arg(saved)));
        QVERIFY2(sequence.wholeFrames(fileName) >= 0, qPrintable(QStringLiteral("%1 bytes").arg(size)));
        lengths.append(static_cast<int>(size));
    }
    // The moments differed, and not all were behind the end.
    QVERIFY(*std::min_element(lengths.cbegin(), lengths.cend()) < sequence.bytes().size());
    QVERIFY(*std::max_element(lengths.cbegin(), lengths.cend()) > sequence.bytes().size() / 3);
}

QTEST_GUILESS_MAIN(tst_killedRecording)
#include "tst_killedRecording.moc"

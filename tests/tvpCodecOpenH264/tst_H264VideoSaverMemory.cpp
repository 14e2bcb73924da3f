#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <new>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "CxImageData.h"
#include "H264VideoSaver.h"
#include "support/LoadedPictures.h"
#include "support/MessageRecorder.h"
#include "support/SavedSequence.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TARN_HAS_OWN_MALLOC 0 // the sanitizers have theirs
#else
#define TARN_HAS_OWN_MALLOC 1
#endif

static bool s_isCounting = false;
static int s_count = 0;          ///< allocations since the counting began
static int s_failing = -1;       ///< number of the one that fails; -1: none
static bool s_staysGone = false; ///< those behind it fail too

#if TARN_HAS_OWN_MALLOC
/// Whether this allocation succeeds. OpenH264's own do: it uses some of them without a look.
static bool fx_HasMemory(void* caller)
{
    Dl_info object{};
    if (!s_isCounting || (dladdr(caller, &object) != 0 && std::strstr(object.dli_fname, "libopenh264")))
        return true;
    int const number = s_count++;
    bool const hasMemory = s_failing < 0 || (s_staysGone ? number < s_failing : number != s_failing);
    if (!hasMemory)
        errno = ENOMEM;
    return hasMemory;
}

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);

/// A program's own functions go before those of its libraries: also Qt's allocations come by here.
void* malloc(size_t size) noexcept
{
    return fx_HasMemory(__builtin_return_address(0)) ? __libc_malloc(size) : nullptr;
}
void* calloc(size_t count, size_t size) noexcept
{
    return fx_HasMemory(__builtin_return_address(0)) ? __libc_calloc(count, size) : nullptr;
}
void* realloc(void* block, size_t size) noexcept
{
    return fx_HasMemory(__builtin_return_address(0)) ? __libc_realloc(block, size) : nullptr;
}
}
#endif

/// The saver when memory runs out, at every single allocation of a recording.
class tst_H264VideoSaverMemory : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyAllocationFailsInTurn_data();
    void everyAllocationFailsInTurn();

private:
    QTemporaryDir m_folder;
    std::unique_ptr<CxSavedSequence> m_sequence;
};

static constexpr int kPictures = 12;

void tst_H264VideoSaverMemory::initTestCase()
{
    if (!TARN_HAS_OWN_MALLOC)
        QSKIP("The sanitizer has its own malloc.", );
    QVERIFY(m_folder.isValid());
    m_sequence = std::make_unique<CxSavedSequence>(kPictures);
    QVERIFY(m_sequence->makeReference(m_folder.filePath(QStringLiteral("whole.h264"))));
}

namespace {

/// How a recording ended of which one allocation failed.
struct SxOutcome
{
    int status = 0;     ///< of its process
    QByteArray results; ///< of each picture: saved 't', refused 'f', std::bad_alloc 'b'
    bool hasFailed = false;
};

} // namespace

/// The recording, in a process of its own. \return whether the allocation was reached.
static bool fx_Record(int failing, bool staysGone, CxSavedSequence& sequence, QString const& fileName,
                      int say)
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    CxH264VideoSaver saver;
    saver.setOutputFile(fileName);
    s_failing = failing;
    s_staysGone = staysGone;
    for (int number = 0; number < kPictures; ++number) {
        std::unique_ptr<CxImageData> const image = sequence.image(number);
        char result = 'b';
        s_isCounting = true;
        try {
            result = saver.save(image.get(), number) ? 't' : 'f';
        } catch (std::bad_alloc const&) {
        }
        s_isCounting = false;
        if (s_count > failing)
            s_staysGone = false; // it is back for the next picture
        if (write(say, &result, 1) != 1)
            return false;
    }
    return s_count > failing;
}

/// Records with allocation \p failing failing.
static SxOutcome fx_RecordWithout(int failing, bool staysGone, CxSavedSequence& sequence,
                                  QString const& fileName)
{
    int said[2];
    SxOutcome outcome;
    if (pipe(said) != 0)
        return outcome;
    pid_t const process = fork();
    if (process == 0) {
        rlimit const none{0, 0};
        setrlimit(RLIMIT_CORE, &none);
        for (int const fault : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE})
            signal(fault, SIG_DFL); // Qt Test's handlers would report it as a failure of the whole test
        _exit(fx_Record(failing, staysGone, sequence, fileName, said[1]) ? 0 : 1);
    }
    close(said[1]);
    for (char result; read(said[0], &result, 1) == 1;)
        outcome.results.append(result);
    close(said[0]);
    waitpid(process, &outcome.status, 0);
    outcome.hasFailed = !WIFEXITED(outcome.status) || WEXITSTATUS(outcome.status) != 1;
    return outcome;
}

void tst_H264VideoSaverMemory::everyAllocationFailsInTurn_data()
{
    QTest::addColumn<bool>("staysGone");
    QTest::newRow("only it") << false;
    QTest::newRow("and the others of that picture") << true;
}

/// What the file must hold when picture 0 was refused and the next ones were taken, or not.
static void fx_CheckOutcome(SxOutcome const& outcome, QString const& fileName)
{
    QVERIFY2(WIFEXITED(outcome.status),
             qPrintable(QStringLiteral("signal %1").arg(WTERMSIG(outcome.status))));
    QCOMPARE(outcome.results.size(), kPictures);
    QVERIFY2(outcome.results.at(0) != 't', outcome.results);
    // An encoder that could not be made when the file was opened is not asked for again.
    QByteArray const others = outcome.results.mid(1);
    bool const isSaved = others == QByteArray(kPictures - 1, 't');
    QVERIFY2(isSaved || others == QByteArray(kPictures - 1, 'f'), outcome.results);
    QList<QByteArray> const played = fx_LoadedPictures(fileName);
    QCOMPARE(played.size(), isSaved ? kPictures - 1 : 0);
    // A key frame that was coded and not written is missing to those behind it, up to the next.
    for (int i = 4; i < played.size(); ++i)
        QVERIFY2(!played.at(i).isEmpty(), qPrintable(QString::number(i)));
}

/// false or std::bad_alloc for the picture concerned, and a file of those that were saved, each frame whole.
void tst_H264VideoSaverMemory::everyAllocationFailsInTurn()
{
    QFETCH(bool, staysGone);
    CxMessageRecorder const messages; // the decoder's
    QString const fileName = m_folder.filePath(QStringLiteral("out.h264"));
    int allocations = 0;
    for (;; ++allocations) {
        QFile::remove(fileName);
        SxOutcome const outcome = fx_RecordWithout(allocations, staysGone, *m_sequence, fileName);
        if (!outcome.hasFailed)
            break;
        fx_CheckOutcome(outcome, fileName);
        if (QTest::currentTestFailed())
            QFAIL(qPrintable(QStringLiteral("allocation %1").arg(allocations)));
    }
    QVERIFY2(allocations > 20, qPrintable(QString::number(allocations)));
    QCOMPARE(m_sequence->wholeFrames(fileName), kPictures); // the last one had memory for all
}

QTEST_GUILESS_MAIN(tst_H264VideoSaverMemory)
#include "tst_H264VideoSaverMemory.moc"

#include <QtTest>

#include <csignal>
#include <functional>
#include <linux/capability.h>
#include <memory>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "H264VideoSaver.h"
#include "support/FileBytes.h"
#include "support/LoadedPictures.h"
#include "support/MessageRecorder.h"
#include "support/SavedSequence.h"

namespace {

/// A limit of this process, for as long as the object lives.
class CxLimit
{
public:
    CxLimit(decltype(RLIMIT_FSIZE) resource, rlim_t most)
        : m_resource(resource)
    {
        getrlimit(resource, &m_before);
        rlimit const lowered{most, m_before.rlim_max};
        m_isSet = setrlimit(resource, &lowered) == 0;
    }
    ~CxLimit() { setrlimit(m_resource, &m_before); }
    bool isSet() const { return m_isSet; }

private:
    Q_DISABLE_COPY(CxLimit)
    decltype(RLIMIT_FSIZE) m_resource;
    rlimit m_before{};
    bool m_isSet = false;
};

/// Does what follows as a user who may write only where everyone may, also when root runs the tests.
class CxOrdinaryUser
{
public:
    CxOrdinaryUser() { m_isSet = geteuid() == 0 && seteuid(65534) == 0; }
    ~CxOrdinaryUser() { static_cast<void>(m_isSet && seteuid(0) == 0); }

private:
    Q_DISABLE_COPY(CxOrdinaryUser)
    bool m_isSet;
};

} // namespace

static constexpr int kPictures = 60;
static constexpr int kDisk = 1 << 20;
static constexpr int kRoom = 64 << 10; ///< bytes that are free of it at first
static QString s_smallDisk;            ///< a folder on such a disk; empty where none can be had

/// The saver where disks fill up and files cannot be had: the message that says so, and a file that plays.
class tst_H264VideoSaverDisk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void fileStopsAtTheSizeLimitAndPlays();
    void recordingGoesOnWhereTheLimitIsRaised();
    void fileFillsTheDiskAndPlays();
    void recordingGoesOnWhenTheDiskHasRoomAgain();
    void readOnlyFolderIsReported();
    void readOnlyFileIsReportedAndKept();
    void noFileDescriptorIsReported();

private:
    QString path(char const* name = "out.h264") const { return m_folder->filePath(QLatin1String(name)); }
    void recordIntoTheFullFile(CxH264VideoSaver& saver);
    void checkFailsAndGoesOn(QString const& fileName, std::function<void()> const& makeRoom);

    CxSavedSequence m_sequence{kPictures};
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<CxMessageRecorder> m_messages;
};

static QString const kWriteText =
    QStringLiteral("CxH264VideoSaver::save(): Error when writing encoded frame to file.");

void tst_H264VideoSaverDisk::initTestCase()
{
    signal(SIGXFSZ, SIG_IGN); // the write fails instead
    QTemporaryDir folder;
    QVERIFY(m_sequence.makeReference(folder.filePath(QStringLiteral("whole.h264"))));
    QVERIFY(m_sequence.bytes().size() > 2 * kRoom);
}

void tst_H264VideoSaverDisk::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_messages = std::make_unique<CxMessageRecorder>();
}

void tst_H264VideoSaverDisk::cleanup()
{
    QStringList const unexpected = m_messages->takeRaw();
    m_messages.reset();
    QCOMPARE(unexpected, QStringList());
}

/// Every picture that is not saved is reported, and there are such.
void tst_H264VideoSaverDisk::recordIntoTheFullFile(CxH264VideoSaver& saver)
{
    int failures = 0;
    for (int number = 0; number < kPictures; ++number) {
        bool const isSaved = m_sequence.save(saver, number);
        QCOMPARE(m_messages->takeTexts(), isSaved ? QStringList() : QStringList(kWriteText));
        failures += isSaved ? 0 : 1;
    }
    QVERIFY(failures > 0);
}

void tst_H264VideoSaverDisk::fileStopsAtTheSizeLimitAndPlays()
{
    int const limit = static_cast<int>(m_sequence.bytes().size()) / 2 + 1; // within a frame
    {
        CxLimit const size(RLIMIT_FSIZE, static_cast<rlim_t>(limit));
        QVERIFY(size.isSet());
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        recordIntoTheFullFile(saver);
    }
    QCOMPARE(m_messages->takeTexts(), QStringList(kWriteText)); // what the file's buffer still held
    QCOMPARE(QFileInfo(path()).size(), limit);
    QVERIFY(m_sequence.wholeFrames(path()) > kPictures / 3);
    QCOMPARE(m_messages->takeTexts().filter(QStringLiteral("CxOpenH264Decoder")).size(), 1); // the half frame
}

/// Records until save() fails, makes room and records the rest: what save() said is written is in the file,
/// in order and nothing else, and from the next key frame on it plays again.
void tst_H264VideoSaverDisk::checkFailsAndGoesOn(QString const& fileName,
                                                 std::function<void()> const& makeRoom)
{
    QByteArray said;
    QList<int> numbers;
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(fileName);
        int failures = 0;
        for (int number = 0; number < kPictures; ++number) {
            if (m_sequence.save(saver, number)) {
                said += m_sequence.frame(number);
                numbers.append(number);
                continue;
            }
            QCOMPARE(m_messages->takeTexts(), QStringList(kWriteText));
            if (++failures == 2)
                makeRoom();
        }
        QCOMPARE(failures, 2);
        QVERIFY(numbers.last() == kPictures - 1);
    }
    QVERIFY(fx_FileBytes(fileName) == said);
    QList<QByteArray> const played = fx_LoadedPictures(fileName);
    QCOMPARE(played.size(), numbers.size());
    for (int i = 0; i < played.size(); ++i) {
        int const number = numbers.at(i);
        int const key = number / 5 * 5;
        bool const isGroupWhole = i >= number - key && numbers.at(i - (number - key)) == key;
        if (isGroupWhole)
            QVERIFY2(played.at(i) == m_sequence.pictures().at(number), qPrintable(QString::number(number)));
    }
    m_messages->takeRaw(); // the decoder's, about pictures whose predecessor is missing
}

void tst_H264VideoSaverDisk::recordingGoesOnWhereTheLimitIsRaised()
{
    auto size = std::make_unique<CxLimit>(RLIMIT_FSIZE, static_cast<rlim_t>(m_sequence.bytes().size() / 2));
    QVERIFY(size->isSet());
    checkFailsAndGoesOn(path(), [&size] { size.reset(); });
}

void tst_H264VideoSaverDisk::fileFillsTheDiskAndPlays()
{
    if (s_smallDisk.isEmpty())
        QSKIP("This system mounts no small disk for us.", );
    QVERIFY(fx_WriteFile(s_smallDisk + QStringLiteral("/other"), QByteArray(kDisk - kRoom, 'o')));
    QString const fileName = s_smallDisk + QStringLiteral("/out.h264");
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(fileName);
        recordIntoTheFullFile(saver);
    }
    QCOMPARE(m_messages->takeTexts(), QStringList(kWriteText));
    QCOMPARE(QFileInfo(fileName).size(), kRoom);
    QVERIFY(m_sequence.wholeFrames(fileName) > 0);
    QCOMPARE(m_messages->takeTexts().filter(QStringLiteral("CxOpenH264Decoder")).size(), 1); // the half frame
    QVERIFY(QFile::remove(fileName));
}

void tst_H264VideoSaverDisk::recordingGoesOnWhenTheDiskHasRoomAgain()
{
    if (s_smallDisk.isEmpty())
        QSKIP("This system mounts no small disk for us.", );
    QVERIFY(fx_WriteFile(s_smallDisk + QStringLiteral("/other"), QByteArray(kDisk - kRoom, 'o')));
    checkFailsAndGoesOn(s_smallDisk + QStringLiteral("/out.h264"),
                        [] { QVERIFY(QFile::remove(s_smallDisk + QStringLiteral("/other"))); });
    QVERIFY(QFile::remove(s_smallDisk + QStringLiteral("/out.h264")));
}

void tst_H264VideoSaverDisk::readOnlyFolderIsReported()
{
    QString const folder = m_folder->filePath(QStringLiteral("read-only"));
    QVERIFY(QDir().mkdir(folder));
    QVERIFY(QFile::setPermissions(folder,
                                  QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
    QVERIFY(QFile::setPermissions(m_folder->path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeOther));
    QString const fileName = folder + QStringLiteral("/out.h264");
    CxH264VideoSaver saver;
    saver.setOutputFile(fileName);
    {
        CxOrdinaryUser const user;
        QVERIFY(!m_sequence.save(saver, 0));
    }
    QCOMPARE(m_messages->takeTexts(),
             QStringList("CxH264VideoSaver::save(): Cannot open the '" + fileName + "'."));
    QVERIFY(QDir(folder).entryList(QDir::Files).isEmpty());
}

void tst_H264VideoSaverDisk::readOnlyFileIsReportedAndKept()
{
    QVERIFY(fx_WriteFile(path(), "kept"));
    QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::ReadOther));
    QVERIFY(QFile::setPermissions(m_folder->path(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ExeOther));
    CxH264VideoSaver saver;
    saver.setOutputFile(path());
    {
        CxOrdinaryUser const user;
        QVERIFY(!m_sequence.save(saver, 0));
    }
    QCOMPARE(m_messages->takeTexts(),
             QStringList("CxH264VideoSaver::save(): Cannot open the '" + path() + "'."));
    QCOMPARE(fx_FileBytes(path()), QByteArray("kept"));
}

void tst_H264VideoSaverDisk::noFileDescriptorIsReported()
{
    {
        CxH264VideoSaver saver;
        saver.setOutputFile(path());
        int const next = dup(STDIN_FILENO); // the lowest number that is free
        QVERIFY(next >= 0);
        close(next);
        {
            CxLimit const descriptors(RLIMIT_NOFILE, static_cast<rlim_t>(next));
            QVERIFY(descriptors.isSet());
            for (int i = 0; i < 2; ++i) {
                QVERIFY(!m_sequence.save(saver, 0));
                QCOMPARE(m_messages->takeTexts(),
                         QStringList("CxH264VideoSaver::save(): Cannot open the '" + path() + "'."));
            }
        }
        for (int number = 0; number < kPictures; ++number)
            QVERIFY(m_sequence.save(saver, number));
    }
    QCOMPARE(m_sequence.wholeFrames(path()), kPictures);
}

/// Gives this process a name space in which it may mount. For a user who is not root that takes a user name
/// space, which only a process without threads may have.
static bool fx_UnshareMounts(uid_t user, gid_t group)
{
    if (unshare(CLONE_NEWNS) == 0)
        return true;
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    auto const map = [](char const* name, unsigned id) {
        QByteArray const itself = QByteArray::number(id) + ' ' + QByteArray::number(id) + " 1";
        return fx_WriteFile(QStringLiteral("/proc/self/") + QLatin1String(name), itself);
    };
    return fx_WriteFile(QStringLiteral("/proc/self/setgroups"), "deny") && map("uid_map", user) &&
           map("gid_map", group);
}

/// Mounts a small disk that only this process sees, and that goes with it.
static void fx_MountSmallDisk(QString const& folder)
{
    QByteArray const options = "size=" + QByteArray::number(kDisk);
    bool const isMounted = fx_UnshareMounts(geteuid(), getegid()) &&
                           mount(nullptr, "/", nullptr, MS_PRIVATE | MS_REC, nullptr) == 0 &&
                           mount("none", qPrintable(folder), "tmpfs", 0, options.constData()) == 0;
    if (isMounted)
        s_smallDisk = folder;
    if (geteuid() == 0)
        return;
    // The name space came with every right, also to what is read-only.
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct const none[2] = {};
    syscall(SYS_capset, &header, none);
}

int main(int argc, char** argv)
{
    QTemporaryDir const folder;
    fx_MountSmallDisk(folder.path());
    int result = 0;
    {
        QCoreApplication application(argc, argv);
        tst_H264VideoSaverDisk test;
        result = QTest::qExec(&test, argc, argv);
    }
    if (!s_smallDisk.isEmpty())
        umount2(qPrintable(s_smallDisk), MNT_DETACH); // where it may not, the disk goes with the process
    return result;
}

#include "tst_H264VideoSaverDisk.moc"

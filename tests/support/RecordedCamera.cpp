#include "support/RecordedCamera.h"

#include <QDir>
#include <QTest>

void CxRecordedCamera::makeRecording()
{
    QVERIFY(m_shared.isValid());
    m_recording = m_shared.filePath("in.h264");
    SxMinihostRun const run = fx_RunMinihost(
        {"record", "camera:", m_recording, "--size", "320x240", "--frames", QString::number(kFrames)});
    QVERIFY2(run.exitCode == 0, run.err);
    m_bytes = fx_FileBytes(m_recording);
}

void CxRecordedCamera::makeFolder()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void CxRecordedCamera::checkRefused(QStringList const& arguments, QString const& sentence) const
{
    SxMinihostRun const refused = fx_RunMinihost(arguments, QByteArray(), m_shared.path());
    QCOMPARE(refused.exitCode, 2);
    QVERIFY2(refused.err.contains(sentence.toUtf8()), refused.err);
    QVERIFY2(refused.err.contains("See minihost " + arguments.first().toUtf8() + " --help."), refused.err);
    QCOMPARE(refused.err.count('\n'), 1);
    QCOMPARE(QDir(m_shared.path()).entryList(QDir::Files), QStringList{"in.h264"});
}

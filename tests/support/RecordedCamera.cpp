#include "support/RecordedCamera.h"

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

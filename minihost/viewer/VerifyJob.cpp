#include "VerifyJob.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>
#include <algorithm>

int SxVerifyResult::brokenPictures() const
{
    int count = 0;
    for (SxBrokenRange const& range : broken)
        count += range.last - range.first + 1;
    return count;
}

CxVerifyJob::CxVerifyJob(QString const& program, QString const& pluginPath)
    : m_program(program)
    , m_pluginPath(pluginPath)
{
    m_process.setStandardErrorFile(QProcess::nullDevice()); // what there is to tell comes over its output
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &CxVerifyJob::readLines);
    connect(&m_process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this,
            &CxVerifyJob::takeEnd);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) // otherwise finished() follows
            takeEnd();
    });
}

CxVerifyJob::~CxVerifyJob()
{
    m_process.disconnect(this);
    m_process.kill();
    m_process.waitForFinished(-1);
}

void CxVerifyJob::start(QString const& recording)
{
    int const jobs = std::max(QThread::idealThreadCount() - 1, 1); // one processor is left for the window
    m_process.start(m_program,
                    {QStringLiteral("verify"), QStringLiteral("--watched"), m_pluginPath,
                     QString::number(jobs), recording},
                    QIODevice::ReadOnly);
}

void CxVerifyJob::stop()
{
    m_isStopping = true;
    m_process.terminate();
}

void CxVerifyJob::readLines()
{
    while (m_process.canReadLine()) {
        QByteArray const line = m_process.readLine().trimmed();
        if (line.startsWith("found ")) {
            m_found = line.mid(6);
        } else if (line.startsWith("at ")) {
            QByteArrayList const values = line.split(' ');
            emit progressed(values.value(1).toInt(), values.value(2).toInt());
        }
    }
}

static SxVerifyResult fx_Result(QJsonObject const& json)
{
    SxVerifyResult result;
    result.details.append(json.value(QStringLiteral("error")).toString());
    for (QJsonValue const warning : json.value(QStringLiteral("warnings")).toArray())
        result.details.append(warning.toString());
    result.details.removeAll(QString());
    if (!json.contains(QStringLiteral("frames"))) {
        result.error = json.value(QStringLiteral("error")).toString();
        return result;
    }
    result.pictures = json.value(QStringLiteral("frames")).toInt();
    for (QJsonValue const value : json.value(QStringLiteral("damage")).toArray()) {
        QJsonObject const range = value.toObject();
        result.broken.append({range.value(QStringLiteral("frame")).toInt(),
                              range.value(QStringLiteral("lastFrame")).toInt(),
                              range.value(QStringLiteral("cause")).toString()});
    }
    for (QJsonValue const value : json.value(QStringLiteral("vanished")).toArray()) {
        QJsonObject const place = value.toObject();
        if (!place.value(QStringLiteral("certain")).toBool())
            continue;
        if (result.missing == 0)
            result.firstMissing = place.value(QStringLiteral("beforeFrame")).toInt();
        result.missing += place.value(QStringLiteral("pictures")).toInt();
    }
    result.examined = json.value(QStringLiteral("decoded")).toInt() + result.brokenPictures();
    result.isCutOff = json.value(QStringLiteral("looseBytes")).toDouble() > 0.0;
    result.wasStopped = json.value(QStringLiteral("stopped")).toBool();
    return result;
}

void CxVerifyJob::takeEnd()
{
    readLines();
    QJsonDocument const document = QJsonDocument::fromJson(m_found);
    SxVerifyResult result;
    if (document.isObject())
        result = fx_Result(document.object());
    else if (m_process.error() == QProcess::FailedToStart)
        result.error = m_process.errorString();
    else
        result.error = QStringLiteral("%1 ended early.").arg(m_program);
    if (m_isStopping && result.pictures == 0) { // before it had opened the recording
        result = {};
        result.wasStopped = true;
    }
    emit finished(result);
}

#include "support/ViewerFixture.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>

#include "IxImageDataLoader.h"
#include "IxVideoAccessor.h"
#include "Recorder.h"
#include "TestCamera.h"

CxViewerFixture::CxViewerFixture()
{
    QSettings::setDefaultFormat(QSettings::IniFormat);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_settings.path());
    QCoreApplication::setOrganizationName(QStringLiteral("tarn"));
    QCoreApplication::setApplicationName(QStringLiteral("minihost-test"));
    plugins.load(QStringLiteral(PLUGIN_FILE), error);
}

QString CxViewerFixture::record(QString const& name, int pictures, SxEncoderOptions const& options)
{
    SxTestCameraOptions camera;
    camera.width = 320;
    camera.height = 180;
    camera.frames = pictures;
    CxTestCamera source(camera);
    SxRecordRequest request;
    request.outputFile = path(name);
    request.encoder = options;
    SxRecordSummary const summary = fx_Record(source, request);
    return summary.error.isEmpty() && summary.coded == pictures ? request.outputFile : QString();
}

QString CxViewerFixture::damage(QString const& recording, QString const& name)
{
    QFile source(recording);
    QFile target(path(name));
    if (!source.open(QIODevice::ReadOnly) || !target.open(QIODevice::WriteOnly))
        return {};
    QByteArray bytes = source.readAll();
    auto const from = bytes.indexOf(QByteArray("\0\0\0\1\x67", 5), bytes.size() / 2) + 60;
    for (auto i = from; i < from + 400; ++i)
        bytes[i] = '\x55';
    return target.write(bytes) == bytes.size() ? target.fileName() : QString();
}

static SxCreated<IxImageDataLoader> fx_Loader(QString const& fileName)
{
    QString error;
    auto loader = fx_Create<IxImageDataLoader>("IxImageDataLoader", error);
    if (loader.as)
        loader.as->setInputFile(fileName);
    return loader;
}

QImage CxViewerFixture::decoded(QString const& fileName, int number)
{
    auto const loader = fx_Loader(fileName);
    std::unique_ptr<CxImageData> data(qobject_cast<CxImageData*>(loader.as->loadedData(number)));
    return data ? fx_ShownPicture(number, std::move(data)).image.copy() : QImage();
}

QVector<int> CxViewerFixture::keyFrames(QString const& fileName)
{
    auto const loader = fx_Loader(fileName);
    loader.as->load();
    QList<int> frames;
    static_cast<IxVideoAccessor*>(loader.object->qt_metacast("IxVideoAccessor"))->keyFrames(frames);
    return frames.toVector();
}

int CxViewerFixture::pictures(QString const& fileName) { return fx_Loader(fileName).as->sequenceSize(); }

int CxViewerFixture::level(QString const& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    QByteArray const start = file.read(8); // start code, unit type, profile_idc, constraints, level_idc
    return start.startsWith(QByteArray("\0\0\0\1\x67", 5)) ? static_cast<uchar>(start[7]) : -1;
}

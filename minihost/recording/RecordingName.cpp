#include "RecordingName.h"

#include <QFileInfo>

bool fx_IsRecordingName(QString const& fileName)
{
    QString const suffix = QFileInfo(fileName).suffix();
    return suffix == QLatin1String("h264") || suffix == QLatin1String("264");
}

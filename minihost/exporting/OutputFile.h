#pragma once

#include <QByteArray>
#include <QString>

#include "ExportRequest.h"

/// What stands in the way of writing \p fileName, one sentence; empty when nothing does.
QString fx_Obstacle(QString const& fileName, SxExportRequest const& request);

/// Writes a whole file. \return false, with \p error one sentence, when that fails; no half file stays
/// behind.
bool fx_WriteFile(QString const& fileName, QByteArray const& bytes, QString& error);

#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include "Remuxer.h"

/// What was handed on, several lines without a newline at the end.
QString fx_RemuxText(SxRemuxRequest const& request, SxRemuxSummary const& summary);

/// A sentence for each way in which the recording was not whole.
QStringList fx_RemuxWarnings(QString const& recording, SxRemuxSummary const& summary);

/// A sentence when the output does not say how its pictures are to be turned; else empty.
QString fx_RotationWarning(SxRemuxRequest const& request, SxRemuxSummary const& summary);

/// What was handed on for programs, one JSON object.
QJsonObject fx_RemuxJson(QString const& recording, SxRemuxRequest const& request,
                         SxRemuxSummary const& summary);

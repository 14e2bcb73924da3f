#pragma once

#include <QJsonObject>
#include <QString>

#include "VerifyFindings.h"

/// What is wrong with a recording: a sentence, and below it a line for each damaged range if there are
/// several; empty when nothing is.
QString fx_Complaint(SxFindings const& findings);

/// What a plain decode would not notice, one sentence; empty when there is nothing.
QString fx_Caution(SxFindings const& findings);

QString fx_Praise(SxFindings const& findings); ///< of a sound recording, one sentence
QJsonObject fx_FindingsJson(SxFindings const& findings);

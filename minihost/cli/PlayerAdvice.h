#pragma once

#include <QJsonObject>
#include <QString>

class CxRecordingReader;
struct SxStreamKind;

/// What other players make of a raw recording, which says too little of itself, and the command lines with
/// which they show it right; a newline before each line. Empty when it says all they need.
QString fx_PlayerLines(CxRecordingReader const& recording, SxStreamKind const& kind);

/// The same for programs.
QJsonObject fx_PlayerJson(CxRecordingReader const& recording, SxStreamKind const& kind);

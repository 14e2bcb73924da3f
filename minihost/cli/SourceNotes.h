#pragma once

#include <QStringList>

class CxFilteredSource;

/// What is said about the first picture's source that a recording cannot hold as it is, in sentences.
///
/// \param isNoted  rate and rotation are to be noted beside the recording.
QStringList fx_SourceNotes(CxFilteredSource const& source, bool isNoted);

#pragma once

#include <QStringList>

class CxFilteredSource;

/// What keeps the rate and the rotation of a source for those who show the recording.
enum class RateKeeper {
    Nobody,
    Sidecar,
    Container,
};

/// What is said about the first picture's source that a recording cannot hold as it is, in sentences.
QStringList fx_SourceNotes(CxFilteredSource const& source, RateKeeper keeper);

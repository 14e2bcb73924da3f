#pragma once

#include <QSize>
#include <QStringList>

class IxPictureSource;

/// What keeps the rate and the rotation of a source for those who show the recording.
enum class RateKeeper {
    Nobody,
    Sidecar,
    Container,
};

/// What is said about a source that a recording cannot hold as it is, in sentences.
/// \param size  of its first picture, which came last.
QStringList fx_SourceNotes(IxPictureSource const& source, QSize size, RateKeeper keeper);

#pragma once

#include <QString>
#include <optional>

/// \p pattern with \p frame in the place of its %d or %05d, and %% as a percent sign. Nothing when a
/// percent sign stands for anything else.
std::optional<QString> fx_FileNameOf(QString const& pattern, int frame);

/// True when the pattern has a place for the frame number.
bool fx_HasPlaceForNumber(QString const& pattern);

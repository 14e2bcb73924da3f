#pragma once

#include <QByteArray>

/// Raw H.264 as another encoder writes it: moving grey pictures coded by x264 through FFmpeg.
///
/// \param options  x264's own, "key=value:key=value"
/// \param profile  as x264 names it, "baseline" to "high"
/// \return empty when the encoder is missing or refuses the options
QByteArray fx_X264Stream(int count, int width, int height, char const* profile, char const* options);

#pragma once

#include <QString>
#include <optional>

/// Hours, minutes, seconds and milliseconds at which picture \p number begins: "0:01:02.033".
QString fx_TimeCode(int number, double fps);

/// Milliseconds of a time as people write it: "0:01:02.033", "1:02", "62.5 s", "62,5". Nothing for any other
/// text, a whole number among them, which is a picture's.
std::optional<qint64> fx_TimeFromText(QString const& text);

/// The last picture that has begun so many milliseconds after the first: of a time from fx_TimeCode() the
/// very picture. It may lie behind the recording's end.
int fx_PictureAt(qint64 milliseconds, double fps);

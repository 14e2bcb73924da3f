#pragma once

#include <QString>

/// Hours, minutes, seconds and milliseconds at which picture \p number begins: "0:01:02.033".
QString fx_TimeCode(int number, double fps);

#pragma once

#include <QString>

QString fx_ReadableSize(qint64 bytes);          ///< "812 bytes", "64.2 kB", "7.51 MB"
QString fx_ReadableBitRate(double bits);        ///< bits a second: "812 bit/s", "6.01 Mbit/s"
QString fx_ReadableTime(double seconds);        ///< "0:07", "1:02:59"
QString fx_Count(qint64 count, char const* of); ///< "1 picture", "7 pictures"

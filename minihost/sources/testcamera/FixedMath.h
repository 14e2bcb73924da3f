#pragma once

#include <QtGlobal>

/// Integer trigonometry for drawings that must come out the same on every machine. Angles are in
/// 65536ths of a turn.

int fx_Sine(int angle);              ///< -32767 to 32767, within 60
int fx_Cosine(int angle);            ///< as fx_Sine()
int fx_AngleOf(int dx, int dy);      ///< direction of a vector, 0 to 65535, within 45; 0 for none
int fx_SquareRoot(quint64 value);    ///< rounded down
int fx_Bounce(int time, int length); ///< 0 up to length and back, one step for each of \p time; length >= 0

#pragma once

/// Pictures a second of everything that carries no rate of its own: the encoder counts on it, players assume
/// it for raw streams, and sources without a clock deliver at it. The plug-in has a copy: it includes
/// nothing from here.
constexpr int kPicturesASecond = 30;

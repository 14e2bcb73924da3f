#pragma once

/// The code of H.264 streams, "H264" with the first character in the lowest byte. A host has its own copy of
/// the number (the stand-in in EncoderOptions.h): plug-in and host share no file but those in host/.
constexpr unsigned int kFourCCH264 = 0x34363248;

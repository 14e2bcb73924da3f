#pragma once

/// The code of H.264 streams, "H264" with the first character in the lowest byte.
constexpr unsigned int kFourCCH264 = 0x34363248;

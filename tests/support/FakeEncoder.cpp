#include "support/FakeEncoder.h"

int s_liveEncoders = 0;

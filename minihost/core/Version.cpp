#include "tarnCoreVersion.h"

void tarnCoreVersion(int& major, int& minor, int& build)
{
    major = TARNCORE_MAJOR;
    minor = TARNCORE_MINOR;
    build = TARNCORE_BUILD;
}

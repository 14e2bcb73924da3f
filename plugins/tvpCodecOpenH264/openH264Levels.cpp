#include "openH264Levels.h"

QSize fx_GetMaxResolutionForLevel(ELevelIdc level)
{
    switch (static_cast<int>(level)) {
    case LEVEL_1_B:
    case LEVEL_1_0:
        return {176, 144};
    case LEVEL_1_1:
    case LEVEL_1_2:
    case LEVEL_1_3:
    case LEVEL_2_0:
        return {352, 288};
    case LEVEL_2_1:
        return {528, 384};
    case LEVEL_2_2:
    case LEVEL_3_0:
        return {720, 480};
    case LEVEL_3_1:
        return {1280, 720};
    case LEVEL_3_2:
        return {1280, 1024};
    case LEVEL_4_2:
        return {2048, 1088};
    case LEVEL_5_0:
        return {3680, 2760};
    case LEVEL_5_1:
    case LEVEL_5_2:
        return {4096, 2304};
    default:
        return {1920, 1080};
    }
}

unsigned int fx_GetMaxBitRateForLevel(ELevelIdc level)
{
    switch (static_cast<int>(level)) {
    case LEVEL_1_B:
        return 153600;
    case LEVEL_1_0:
        return 76800;
    case LEVEL_1_1:
        return 230400;
    case LEVEL_1_2:
        return 460800;
    case LEVEL_1_3:
        return 921600;
    case LEVEL_2_0:
        return 2400000;
    case LEVEL_2_1:
    case LEVEL_2_2:
        return 4800000;
    case LEVEL_3_0:
        return 12000000;
    case LEVEL_3_1:
        return 16800000;
    case LEVEL_3_2:
    case LEVEL_4_0:
        return 24000000;
    case LEVEL_4_1:
    case LEVEL_4_2:
        return 60000000;
    case LEVEL_5_0:
        return 162000000;
    default:
        return 288000000;
    }
}

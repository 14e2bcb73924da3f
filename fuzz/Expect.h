#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program, which libFuzzer takes for a finding, when \p condition does not hold.
#define TARN_EXPECT(condition)                                                           \
    do {                                                                                 \
        if (!(condition)) {                                                              \
            std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                \
        }                                                                                \
    } while (false)

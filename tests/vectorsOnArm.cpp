// Proves the vector code of a processor that the tests cannot run on as a whole: `scripts/test-arm` builds
// this for 64-bit Arm, without Qt, and runs it under an emulator.

#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "StartCodeSearch.h"
#include "support/RowsCheck.h"

/// Buffers of every size up to four vectors, of bytes that start codes are made of, searched from every
/// position.
static std::string fx_CheckSearch(SxPrefixSearch const& search)
{
    std::minstd_rand random(1);
    for (unsigned round = 0; round < 40; ++round) {
        for (std::size_t size = 0; size <= 64; ++size) {
            std::vector<std::uint8_t> bytes(size); // exactly sized
            for (std::uint8_t& byte : bytes)
                byte = static_cast<std::uint8_t>((random() >> 8) % (round % 4 + 2));
            for (std::size_t from = 0; from <= size; ++from)
                if (search.find(bytes.data(), size, from) != fx_FindPrefixScalar(bytes.data(), size, from))
                    return "differs at size " + std::to_string(size) + " from " + std::to_string(from);
        }
    }
    return {};
}

static bool fx_Report(char const* table, char const* what, std::string const& error)
{
    std::printf("%s: %s, %s %s\n", error.empty() ? "PASS" : "FAIL", table, what, error.c_str());
    std::fflush(stdout);
    return error.empty();
}

int main()
{
    bool isFine = true;
    for (SxIYUVRows const* rows : fx_GetAllIYUVRows()) {
        isFine &= fx_Report(rows->name, "every colour", fx_CheckColours(*rows));
        isFine &= fx_Report(rows->name, "every (Y, U, V)", fx_CheckSamples(*rows));
        isFine &= fx_Report(rows->name, "every shift", fx_CheckShifts(*rows));
        isFine &= fx_Report(rows->name, "every width", fx_CheckWidths(*rows));
    }
    for (SxPrefixSearch const& search : fx_GetAllPrefixSearches())
        isFine &= fx_Report(search.name, "start codes", fx_CheckSearch(search));
    bool const isNeonUsed = std::strcmp(fx_GetIYUVRows().name, "neon") == 0 &&
                            std::strcmp(fx_GetAllPrefixSearches().front().name, "neon") == 0;
    return fx_Report("neon", "is used", isNeonUsed ? "" : "not") && isFine ? 0 : 1;
}

// Proves the vector code of a processor that the tests cannot run on as a whole: `scripts/test-arm` builds
// this for 64-bit Arm, without Qt, and runs it under an emulator.

#include <cstdio>
#include <random>
#include <vector>

#include "StartCodeSearch.h"
#include "support/RowsCheck.h"

/// Buffers of every size up to four vectors, of bytes that start codes are made of, searched from every
/// position.
static std::string fx_CheckSearch(char const* table, FxPrefixSearch find)
{
    std::minstd_rand random(1);
    for (unsigned round = 0; round < 40; ++round) {
        for (std::size_t size = 0; size <= 64; ++size) {
            std::vector<std::uint8_t> bytes(size); // exactly sized
            for (std::uint8_t& byte : bytes)
                byte = static_cast<std::uint8_t>((random() >> 8) % (round % 4 + 2));
            for (std::size_t from = 0; from <= size; ++from) {
                std::size_t const expected = fx_FindPrefixScalar(bytes.data(), size, from);
                std::size_t const found = find(bytes.data(), size, from);
                if (found != expected)
                    return fx_Difference(table, "start codes", size, "from " + std::to_string(from), expected,
                                         found);
            }
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
    for (VectorTarget const target : fx_GetVectorTargets()) {
        char const* const name = fx_GetName(target);
        SxIYUVKernels const& rows = fx_GetIYUVKernels(target);
        isFine &= fx_Report(name, "every colour", fx_CheckColours(name, rows));
        isFine &= fx_Report(name, "every (Y, U, V)", fx_CheckSamples(name, rows));
        isFine &= fx_Report(name, "every shift", fx_CheckShifts(name, rows));
        isFine &= fx_Report(name, "every width", fx_CheckWidths(name, rows));
        isFine &= fx_Report(name, "start codes", fx_CheckSearch(name, fx_GetPrefixSearch(target)));
    }
    bool const isNeonUsed = fx_GetVectorTarget() == VectorTarget::NEON;
    return fx_Report("neon", "is used", isNeonUsed ? "" : "not") && isFine ? 0 : 1;
}

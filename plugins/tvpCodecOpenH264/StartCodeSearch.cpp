#include "StartCodeSearch.h"

#include "CompiledTargets.h"

std::size_t fx_FindPrefixScalar(std::uint8_t const* data, std::size_t size, std::size_t from)
{
    for (std::size_t at = from; size - at >= 3; ++at)
        if (data[at] == 0 && data[at + 1] == 0 && data[at + 2] == 1)
            return at;
    return size;
}

FxPrefixSearch fx_GetPrefixSearch(VectorTarget target)
{
    FxPrefixSearch const compiled = fx_GetCompiledPrefixSearch(target);
    return compiled ? compiled : fx_FindPrefixScalar;
}

std::size_t fx_FindPrefix(std::uint8_t const* data, std::size_t size, std::size_t from)
{
    return fx_GetPrefixSearch(fx_GetVectorTarget())(data, size, from);
}

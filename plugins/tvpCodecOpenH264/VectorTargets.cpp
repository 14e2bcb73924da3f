#include "VectorTargets.h"

#include <atomic>
#include <cstring>
#include <string_view>

#include "CompiledTargets.h"

namespace {

/// The processor has it and the operating system saves its registers.
bool fx_IsSupported(VectorTarget target)
{
#if defined(__x86_64__)
    bool const sse4 = __builtin_cpu_supports("ssse3") && __builtin_cpu_supports("sse4.1") &&
                      __builtin_cpu_supports("sse4.2");
    bool const avx2 = sse4 && __builtin_cpu_supports("avx") && __builtin_cpu_supports("avx2") &&
                      __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
                      __builtin_cpu_supports("fma");
    bool const avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512cd") &&
                        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq") &&
                        __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vbmi") &&
                        __builtin_cpu_supports("avx512vnni");
    return target == VectorTarget::AVX512 ? avx512
           : target == VectorTarget::AVX2 ? avx2
                                          : target == VectorTarget::SSE4 && sse4;
#else
    return target == VectorTarget::NEON;
#endif
}

std::vector<VectorTarget> fx_FindVectorTargets()
{
    std::vector<VectorTarget> targets;
    for (VectorTarget const target :
         {VectorTarget::AVX512, VectorTarget::AVX2, VectorTarget::SSE4, VectorTarget::NEON})
        if (fx_IsCompiledFor(target) && fx_IsSupported(target))
            targets.push_back(target);
    targets.push_back(VectorTarget::Scalar);
    return targets;
}

/// \p otherwise when this machine has no target of that name.
VectorTarget fx_FindVectorTarget(char const* name, VectorTarget otherwise)
{
    for (VectorTarget const target : fx_GetVectorTargets())
        if (std::strcmp(fx_GetName(target), name) == 0)
            return target;
    return otherwise;
}

#ifdef TARN_VECTORS
constexpr bool fx_IsTargetName(std::string_view name)
{
    for (char const* known : kVectorTargetNames)
        if (name == known)
            return true;
    return false;
}
static_assert(fx_IsTargetName(TARN_VECTORS), "TARN_VECTORS is none of kVectorTargetNames");
#endif

/// Where the machine lacks what the build named, the scalar code stands in for it.
VectorTarget fx_FirstChoice()
{
#ifdef TARN_VECTORS
    return fx_FindVectorTarget(TARN_VECTORS, VectorTarget::Scalar);
#else
    return fx_GetVectorTargets().front();
#endif
}

/// Made once; atomic, since tests may change it and objects of several threads read it.
std::atomic<VectorTarget>& fx_ChosenVectorTarget()
{
    static std::atomic<VectorTarget> chosen(fx_FirstChoice());
    return chosen;
}

} // namespace

char const* fx_GetName(VectorTarget target) { return kVectorTargetNames[static_cast<int>(target)]; }

std::vector<VectorTarget> const& fx_GetVectorTargets()
{
    static std::vector<VectorTarget> const targets = fx_FindVectorTargets();
    return targets;
}

VectorTarget fx_GetVectorTarget() { return fx_ChosenVectorTarget().load(std::memory_order_relaxed); }

bool fx_ForceVectorTarget(char const* name)
{
    VectorTarget const before = fx_GetVectorTarget();
    VectorTarget const target = fx_FindVectorTarget(name, before);
    if (std::strcmp(fx_GetName(target), name) != 0)
        return false;
    fx_ChosenVectorTarget().store(target, std::memory_order_relaxed);
    return true;
}

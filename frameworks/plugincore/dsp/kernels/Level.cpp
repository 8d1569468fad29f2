// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/kernels/Level.h"

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"

#include <cstdlib>
#include <string_view>

namespace DSP::Kernels {

namespace Baseline {
extern const KernelSet All;
}
#if defined(PUFFGUARD_X86_LEVELS)
namespace V3 {
extern const KernelSet All;
}
namespace V4 {
extern const KernelSet All;
}
#endif

namespace {

/// What a name in the environment allows.
Level GetLimit(const char* name) noexcept
{
    const std::string_view text = name == nullptr ? "" : name;
    if (text == "baseline") {
        return Level::Baseline;
    }
    return text == "v3" ? Level::V3 : Level::V4;
}

// NOLINTNEXTLINE(concurrency-mt-unsafe): read while the module loads, and never set
const Level ChosenLevel = ChooseLevel(std::getenv("PUFFGUARD_CPU"));

} // namespace

bool IsSupported(Level wanted) noexcept
{
#if defined(PUFFGUARD_X86_LEVELS)
    // These ask for the operating system's support, too. They name what the build switches on.
    __builtin_cpu_init();
    const bool isV3 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                      __builtin_cpu_supports("bmi2");
    const bool isV4 = isV3 && __builtin_cpu_supports("avx512f") &&
                      __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
                      __builtin_cpu_supports("avx512vl");
    return wanted == Level::Baseline || (wanted == Level::V3 ? isV3 : isV4);
#else
    return wanted == Level::Baseline;
#endif
}

Level ChooseLevel(const char* name) noexcept
{
    Level best = Level::Baseline;
    for (const Level candidate : AllLevels) {
        if (candidate <= GetLimit(name) && IsSupported(candidate)) {
            best = candidate;
        }
    }
    return best;
}

Level GetLevel() noexcept
{
    return ChosenLevel;
}

const KernelSet& GetKernels(Level wanted) noexcept
{
#if defined(PUFFGUARD_X86_LEVELS)
    if (wanted == Level::V4) {
        return V4::All;
    }
    if (wanted == Level::V3) {
        return V3::All;
    }
#endif
    (void)wanted;
    return Baseline::All;
}

const KernelSet& GetKernels() noexcept
{
    return GetKernels(ChosenLevel);
}

} // namespace DSP::Kernels

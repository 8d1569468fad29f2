// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"

#include <algorithm>
#include <vector>

namespace Support {

/// The levels that this processor can run; the baseline comes first.
inline std::vector<DSP::Kernels::Level> GetSupportedLevels()
{
    std::vector<DSP::Kernels::Level> levels;
    std::copy_if(DSP::Kernels::AllLevels.begin(),
                 DSP::Kernels::AllLevels.end(),
                 std::back_inserter(levels),
                 DSP::Kernels::IsSupported);
    return levels;
}

} // namespace Support

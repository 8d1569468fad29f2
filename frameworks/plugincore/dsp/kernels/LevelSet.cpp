// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/LevelSets.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

// Complete before any code of the module runs.
constinit const KernelSet kernelSet = {
    .cascade = cascade,
    .correlation = correlation,
    .fft = fft,
    .lagSearch = lagSearch,
    .overlap = overlap,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL

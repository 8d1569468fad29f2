// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/LevelSets.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

// Complete before any code of the module runs.
constinit const KernelSet All = {
    .cascade = Cascades,
    .correlation = Correlations,
    .fft = Ffts,
    .halfBand = HalfBands,
    .lagSearch = LagSearches,
    .matrix = Matrices,
    .overlap = Overlaps,
    .rank = Ranks,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"

/// PUFFGUARD_LEVEL is the namespace that a source of the kernels is compiled for; the build sets
/// it, and headers with it are for sources of this folder alone. All that such a source defines is
/// in that namespace or has internal linkage, and it calls no inline function from outside unless
/// that is gnu::always_inline: the linker would keep one copy of such a function for the whole
/// module, perhaps the one with instructions that the processor lacks.
#ifndef PUFFGUARD_LEVEL
#define PUFFGUARD_LEVEL Baseline
#endif

namespace DSP::Kernels::PUFFGUARD_LEVEL {

extern const CascadeKernels Cascades;
extern const CorrelationKernels Correlations;
extern const FftKernels Ffts;
extern const HalfBandKernels HalfBands;
extern const LagSearchKernels LagSearches;
extern const MatrixKernels Matrices;
extern const OverlapKernels Overlaps;
extern const RankKernels Ranks;

extern const KernelSet All;

} // namespace DSP::Kernels::PUFFGUARD_LEVEL

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Cascade.h"
#include "frameworks/plugincore/dsp/kernels/Correlation.h"
#include "frameworks/plugincore/dsp/kernels/Fft.h"
#include "frameworks/plugincore/dsp/kernels/HalfBand.h"
#include "frameworks/plugincore/dsp/kernels/LagSearch.h"
#include "frameworks/plugincore/dsp/kernels/Level.h"
#include "frameworks/plugincore/dsp/kernels/Matrix.h"
#include "frameworks/plugincore/dsp/kernels/Overlap.h"
#include "frameworks/plugincore/dsp/kernels/Rank.h"

namespace DSP::Kernels {

/// The kernels of one level, by the header that describes what they do.
struct KernelSet {
    const CascadeKernels& cascade;
    const CorrelationKernels& correlation;
    const FftKernels& fft;
    const HalfBandKernels& halfBand;
    const LagSearchKernels& lagSearch;
    const MatrixKernels& matrix;
    const OverlapKernels& overlap;
    const RankKernels& rank;
};

/// The kernels that this processor runs best. [any]
const KernelSet& GetKernels() noexcept;

/// The kernels of a level; it must be supported. For tests, which compare the levels. [any]
const KernelSet& GetKernels(Level wanted) noexcept;

} // namespace DSP::Kernels

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Cascade.h"
#include "frameworks/plugincore/dsp/kernels/Correlation.h"
#include "frameworks/plugincore/dsp/kernels/Fft.h"
#include "frameworks/plugincore/dsp/kernels/LagSearch.h"
#include "frameworks/plugincore/dsp/kernels/Level.h"
#include "frameworks/plugincore/dsp/kernels/Overlap.h"

namespace DSP::Kernels {

/// The kernels of one level, by the header that describes what they do.
struct KernelSet {
    const CascadeKernels& cascade;
    const CorrelationKernels& correlation;
    const FftKernels& fft;
    const LagSearchKernels& lagSearch;
    const OverlapKernels& overlap;
};

/// The kernels that this processor runs best. [any]
const KernelSet& GetKernels() noexcept;

/// The kernels of a level; it must be supported. For tests, which compare the levels. [any]
const KernelSet& GetKernels(Level wanted) noexcept;

} // namespace DSP::Kernels

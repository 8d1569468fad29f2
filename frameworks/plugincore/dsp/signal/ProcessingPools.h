// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/signal/FFTImpl.h"

#include <cstddef>
#include <cstdint>

namespace DSP {

/// Short-lived memory for the process side, released in stack order.
class ProcessingMemoryPool {
public:
    virtual ~ProcessingMemoryPool() = default;

    /// Grows the pool to at least `bytes`; only while nothing is taken from it. [setup]
    virtual void ReserveProcessingMemory(std::size_t bytes) = 0;

    /// A block aligned for any plain type; from the heap when the pool is exhausted.
    /// [process, locks]
    virtual void* AllocProcessingMemory(std::size_t bytes) = 0;

    /// Returns what AllocProcessingMemory() gave for the same `bytes`. [process, locks]
    virtual void FreeProcessingMemory(void* block, std::size_t bytes) = 0;

    /// Bytes in use; setting an earlier mark frees all that was taken since. [process, locks]
    virtual std::size_t GetProcessingMemoryMark() = 0;
    virtual void SetProcessingMemoryMark(std::size_t mark) = 0;
};

/// Transforms by size, shared by all users on the process side of one instance.
class ProcessingFFTPool {
public:
    virtual ~ProcessingFFTPool() = default;

    /// Makes the transform of 2^order points if it is missing. [setup]
    virtual void PrepareFFT(uint32_t order) = 0;

    /// The transform of 2^order points, made if it is missing; null for an order of 32 or more.
    /// It belongs to the pool and lives as long. [setup; process when prepared]
    virtual FFTImpl<float>* GetFFT(uint32_t order) = 0;
};

} // namespace DSP

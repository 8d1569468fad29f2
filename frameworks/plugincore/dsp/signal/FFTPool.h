// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/signal/ProcessingPools.h"
#include "frameworks/qobase/util/CriticalSection.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

namespace DSP {

/// One transform of each size, made when first asked for and shared from then on. The transforms
/// carry their working buffers, so that all users belong to one process side.
class FFTPool final : public ProcessingFFTPool {
public:
    explicit FFTPool(const String& name);

    /// Makes the transform of 2^order points if it is missing. [setup]
    void PrepareFFT(uint32_t order) override { GetFFT(order); }

    /// The transform of 2^order points, made if it is missing, without a lock when it is there.
    /// Null for a size that there is none of, and for every order of 32 or more.
    FFTImpl<float>* GetFFT(uint32_t order) override;

private:
    static constexpr uint32_t OrderCount = 32;

    Util::CriticalSection lock; // held while one is made
    std::array<std::unique_ptr<FFTImpl<float>>, OrderCount> owned UTIL_GUARDED_BY(lock);
    std::array<std::atomic<FFTImpl<float>*>, OrderCount> slots{};
};

} // namespace DSP

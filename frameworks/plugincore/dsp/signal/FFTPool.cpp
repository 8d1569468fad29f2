// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/FFTPool.h"

namespace DSP {

FFTPool::FFTPool(const String& name)
    : lock(String("%1 Critical Section").arg(name))
{
}

FFTImpl<float>* FFTPool::GetFFT(uint32_t order)
{
    if (order >= OrderCount || !FFTImpl<float>::IsSupported(static_cast<int>(order))) {
        return nullptr;
    }
    // Pairs with the store below: the object is complete when its pointer is seen.
    if (auto* present = slots[order].load(std::memory_order_acquire)) {
        return present;
    }
    const Util::CriticalSectionGuard guard(lock);
    if (owned[order] == nullptr) {
        owned[order] = std::make_unique<FFTImpl<float>>(static_cast<int>(order));
        slots[order].store(owned[order].get(), std::memory_order_release);
    }
    return owned[order].get();
}

} // namespace DSP

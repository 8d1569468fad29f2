// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/RunningMax.h"

#include <algorithm>

namespace DSP {

void RunningMax<float>::configure(uint32_t newLength, float newFillValue)
{
    length = std::max(newLength, 1U);
    fillValue = newFillValue;
    tree.resize(static_cast<std::size_t>(2) * length);
    reset();
}

void RunningMax<float>::reset() noexcept UTIL_NONBLOCKING
{
    std::fill(tree.begin(), tree.end(), fillValue);
    cursor = length;
}

float RunningMax<float>::process(float value) noexcept UTIL_NONBLOCKING
{
    tree[cursor] = value;
    for (uint32_t i = cursor; i != 1; i /= 2) {
        tree[i / 2] = std::max(tree[i], tree[i ^ 1U]);
    }
    if (++cursor == 2 * length) {
        cursor = length;
    }
    return tree[1];
}

void RunningMaxs<float>::configure(std::size_t count, uint32_t length, float fillValue)
{
    entries.resize(count);
    for (RunningMax<float>& entry : entries) {
        entry.configure(length, fillValue);
    }
}

void RunningMaxs<float>::reset() noexcept UTIL_NONBLOCKING
{
    for (RunningMax<float>& entry : entries) {
        entry.reset();
    }
}

} // namespace DSP

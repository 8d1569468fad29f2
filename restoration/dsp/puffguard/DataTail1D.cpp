// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/DataTail1D.h"

#include "restoration/dsp/puffguard/VectorOps.h"

#include <algorithm>
#include <cassert>

namespace DSP {

void DataTail1D::configure(int32_t newBlockLength, int32_t newTailLength, bool isCleared)
{
    blockLength = newBlockLength;
    tailLength = newTailLength;
    values.resize(GetLength());
    if (isCleared) {
        clear();
    }
}

void DataTail1D::append(const float* source, int32_t count, int32_t sourceOffset) noexcept
    UTIL_NONBLOCKING
{
    assert(writeIndex + count <= tailLength + blockLength);
    VectorOps::Copy(
        source + sourceOffset, values.data() + writeIndex, static_cast<std::size_t>(count));
    writeIndex += count;
}

void DataTail1D::consume(int32_t count) noexcept UTIL_NONBLOCKING
{
    const int32_t kept = std::min(tailLength, tailLength + blockLength - count);
    VectorOps::Move(
        values.data() + count, values.data(), static_cast<std::size_t>(std::max(kept, 0)));
    writeIndex = tailLength;
}

void DataTail1D::clear() noexcept UTIL_NONBLOCKING
{
    writeIndex = tailLength;
    VectorOps::Zero(values.data(), GetLength());
}

} // namespace DSP

// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/DataTail.h"

#include "restoration/dsp/puffguard/VectorOps.h"

#include <algorithm>

namespace DSP {

void DataTail::configure(int32_t newChannelCount, int32_t newBlockLength, int32_t newTailLength)
{
    channelCount = newChannelCount;
    tailLength = newTailLength;
    data.resize(static_cast<std::size_t>(channelCount));
    channels.resize(data.size());
    resizeBlock(newBlockLength);
    zero();
}

void DataTail::resizeBlock(int32_t newBlockLength)
{
    blockLength = newBlockLength;
    SetCapacity(GetLength());
}

void DataTail::SetCapacity(int32_t capacity)
{
    for (std::size_t channel = 0; channel < data.size(); ++channel) {
        data[channel].resize(static_cast<std::size_t>(capacity));
        channels[channel] = data[channel].data();
    }
}

void DataTail::zero() noexcept UTIL_NONBLOCKING
{
    for (float* const channel : channels) {
        VectorOps::Zero(channel, static_cast<std::size_t>(GetLength()));
    }
}

void DataTailCirc::configure(int32_t newChannelCount, int32_t newBlockLength, int32_t newTailLength)
{
    startOffset = 0; // nothing is kept: the resizing has nothing to move
    DataTail::configure(newChannelCount, newBlockLength, newTailLength);
}

void DataTailCirc::resizeBlock(int32_t newBlockLength)
{
    const auto kept = static_cast<std::size_t>(GetLength());
    for (std::size_t channel = 0; startOffset > 0 && channel < data.size(); ++channel) {
        VectorOps::Move(channels[channel], data[channel].data(), kept);
    }
    startOffset = 0;
    blockLength = newBlockLength;
    SetCapacity(2 * GetLength());
}

void DataTailCirc::consume(int32_t count) noexcept UTIL_NONBLOCKING
{
    const int32_t length = GetLength();
    const int32_t dropped = std::min(count, length);
    const bool isAtEnd = startOffset + dropped > length;
    const auto kept = static_cast<std::size_t>(length - dropped);
    startOffset = isAtEnd ? 0 : startOffset + dropped;
    for (std::size_t channel = 0; channel < data.size(); ++channel) {
        if (isAtEnd) {
            VectorOps::Move(channels[channel] + dropped, data[channel].data(), kept);
        }
        channels[channel] = data[channel].data() + startOffset;
    }
}

} // namespace DSP

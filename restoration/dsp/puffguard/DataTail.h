// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/AlignedVector.h"
#include "frameworks/qobase/util/Realtime.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace DSP {

/// Samples of several channels: a tail that is kept, then a block.
///
/// The channels' addresses lie ready in an array for functions that take a block as pointers.
///
/// Threads: configure() and resizeBlock() are [setup] and allocate nothing where no size grows; the
/// others are [process].
class DataTail {
public:
    DataTail() = default;
    DataTail(const DataTail&) = delete; // the array of addresses would point into the original
    DataTail& operator=(const DataTail&) = delete;
    DataTail(DataTail&&) noexcept = default;
    DataTail& operator=(DataTail&&) noexcept = default;
    virtual ~DataTail() = default;

    /// Lengths in samples a channel. Everything is zero afterwards.
    virtual void configure(int32_t newChannelCount, int32_t newBlockLength, int32_t newTailLength);

    /// Gives the block another length; the tail stays, and what the block gains is zero.
    virtual void resizeBlock(int32_t newBlockLength);

    /// Zeroes all samples.
    void zero() noexcept UTIL_NONBLOCKING;

    /// First sample of the channel's tail, or of its block when there is no tail.
    float* GetChannel(int32_t channel) const noexcept UTIL_NONBLOCKING
    {
        return channels[static_cast<std::size_t>(channel)];
    }

    /// GetChannel() of all channels; valid until the sizes change.
    float* const* GetChannels() const noexcept UTIL_NONBLOCKING { return channels.data(); }

    int32_t GetChannelCount() const noexcept { return channelCount; }
    int32_t GetLength() const noexcept { return tailLength + blockLength; } ///< samples

protected:
    /// Makes each channel `capacity` floats long and points at its start.
    void SetCapacity(int32_t capacity);

    std::vector<float*> channels;                 // where each channel's tail starts
    std::vector<Util::AlignedVector<float>> data; // each channel's memory
    int32_t tailLength = 0;
    int32_t blockLength = 0;
    int32_t channelCount = 0;
};

/// DataTail whose samples move on like those of a delay line: the oldest go, new ones come behind.
///
/// The samples stay one contiguous run. It travels through twice the memory and is copied back to
/// the start at the end, so that most steps move nothing.
class DataTailCirc : public DataTail {
public:
    DataTailCirc() = default;
    DataTailCirc(const DataTailCirc&) = delete;
    DataTailCirc& operator=(const DataTailCirc&) = delete;
    DataTailCirc(DataTailCirc&&) noexcept = default;
    DataTailCirc& operator=(DataTailCirc&&) noexcept = default;
    ~DataTailCirc() override = default;

    void configure(int32_t newChannelCount, int32_t newBlockLength, int32_t newTailLength) override;
    void resizeBlock(int32_t newBlockLength) override;

    /// Drops the oldest `count` samples of all channels, at most all of them. As many at the end
    /// are unspecified until they have been written. [process]
    void consume(int32_t count) noexcept UTIL_NONBLOCKING;

private:
    int32_t startOffset = 0; // of the oldest sample in each channel's memory
};

} // namespace DSP

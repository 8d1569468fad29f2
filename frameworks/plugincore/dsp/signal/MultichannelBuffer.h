// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"

#include <array>
#include <cstdint>
#include <span>
#include <type_traits>
#include <vector>

namespace DSP {

// NOLINTNEXTLINE(readability-identifier-naming): a detail, spelled as libraries spell theirs
namespace multichannel_buffer_detail {

/// A place in the list of all that look at the same samples: whoever owns them heads it, and goes
/// along it when they go. Not for several threads at once.
class view_canary { // NOLINT(readability-identifier-naming): as above
public:
    view_canary() = default;
    view_canary(const view_canary&) = delete;
    view_canary& operator=(const view_canary&) = delete;
    virtual ~view_canary() { Unlink(); }

    /// Leaves the list; the others stay in it.
    void Unlink() noexcept;

protected:
    /// Comes behind `other` in its list, and leaves the one before.
    void LinkTo(view_canary& other) noexcept;
    /// Takes all that follow out of the list and calls their onSamplesGone().
    void DropFollowers() noexcept;

private:
    virtual void onSamplesGone() noexcept {}

    view_canary* previous = nullptr;
    view_canary* next = nullptr;
};

} // namespace multichannel_buffer_detail

/// The channels of a block, without owning them; `Sample` is float or const float. A view of an
/// owner's samples, and every copy of it, shows null channels once the owner has gone.
///
/// Threads: a view and all that look at the same samples belong to one thread.
template <typename Sample>
class MultichannelBufferView : public multichannel_buffer_detail::view_canary {
public:
    /// Of no channels.
    MultichannelBufferView() = default;
    /// Of the caller's channels, which may be null; at most MaxChannels.
    MultichannelBufferView(std::span<Sample* const> channels, uint32_t newFrames)
        : channelCount(static_cast<uint32_t>(channels.size()))
        , frames(newFrames)
    {
        for (uint32_t channel = 0; channel < channelCount; ++channel) {
            Set(channel, channels[channel], newFrames);
        }
    }
    /// Of channels that go with `owner`.
    MultichannelBufferView(std::span<Sample* const> channels,
                           uint32_t newFrames,
                           view_canary& owner)
        : MultichannelBufferView(channels, newFrames)
    {
        LinkTo(owner);
    }
    MultichannelBufferView(const MultichannelBufferView& other) { Copy(other); }
    MultichannelBufferView& operator=(const MultichannelBufferView& other)
    {
        if (this != &other) {
            Copy(other);
        }
        return *this;
    }
    ~MultichannelBufferView() override = default;

    uint32_t GetChannelCount() const noexcept { return channelCount; }
    uint32_t GetFrames() const noexcept { return frames; }
    Sample* GetChannel(uint32_t channel) const noexcept { return entries[channel].samples; }
    /// The channels' addresses, for functions that take a block as pointers.
    Sample* const* GetChannels() const noexcept { return pointers.data(); }

    /// The same channels from frame `first` on; in the same list.
    MultichannelBufferView Part(uint32_t first, uint32_t count) const
    {
        MultichannelBufferView part(*this);
        part.frames = count;
        for (uint32_t channel = 0; channel < channelCount; ++channel) {
            Sample* const samples = entries[channel].samples;
            part.Set(channel, samples != nullptr ? samples + first : nullptr, count);
        }
        return part;
    }

    /// All channels null, each as long as the view.
    void Clear() noexcept
    {
        entries.fill({nullptr, frames});
        pointers.fill(nullptr);
    }

private:
    struct Entry {
        Sample* samples = nullptr;
        uint32_t length = 0; // frames
    };

    void Set(uint32_t channel, Sample* samples, uint32_t length)
    {
        entries[channel] = {samples, length};
        pointers[channel] = samples;
    }
    void Copy(const MultichannelBufferView& other)
    {
        channelCount = other.channelCount;
        frames = other.frames;
        for (uint32_t channel = 0; channel < channelCount; ++channel) {
            Set(channel, other.entries[channel].samples, other.entries[channel].length);
        }
        // The list is no part of what a view shows.
        LinkTo(const_cast<MultichannelBufferView&>(other));
    }
    void onSamplesGone() noexcept override { Clear(); }

    uint32_t channelCount = 0;
    std::array<Entry, MaxChannels> entries{};
    std::array<Sample*, MaxChannels> pointers{};
    uint32_t frames = 0;
};

/// Owns the channels of a block.
class MultichannelBuffer : public multichannel_buffer_detail::view_canary {
public:
    /// Silent. At most MaxChannels.
    MultichannelBuffer(uint32_t channelCount, uint32_t newFrames)
        : frames(newFrames)
        , samples(channelCount, std::vector<float>(newFrames))
    {
        for (std::vector<float>& channel : samples) {
            pointers.push_back(channel.data());
        }
    }
    ~MultichannelBuffer() override { DropFollowers(); }
    MultichannelBuffer(const MultichannelBuffer&) = delete;
    MultichannelBuffer& operator=(const MultichannelBuffer&) = delete;

    uint32_t GetChannelCount() const noexcept { return static_cast<uint32_t>(samples.size()); }
    uint32_t GetFrames() const noexcept { return frames; }
    float* GetChannel(uint32_t channel) noexcept { return pointers[channel]; }
    float* const* GetChannels() const noexcept { return pointers.data(); }

    /// A view of the first `count` frames that knows when the samples go.
    MultichannelBufferView<float> View(uint32_t count)
    {
        return {std::span<float* const>(pointers), count, *this};
    }

private:
    uint32_t frames;
    std::vector<std::vector<float>> samples; // [channel]
    std::vector<float*> pointers;
};

} // namespace DSP

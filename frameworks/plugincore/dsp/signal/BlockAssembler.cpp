// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/BlockAssembler.h"

#include <algorithm>
#include <cassert>

namespace DSP {
namespace {

using Samples = std::vector<float>;

void Reserve(std::vector<Samples>& channels, uint32_t samples)
{
    for (Samples& channel : channels) {
        channel.reserve(samples);
    }
}

void SetSilent(std::vector<Samples>& channels, uint32_t samples)
{
    for (Samples& channel : channels) {
        channel.assign(samples, 0.0F);
    }
}

// Copies from one place in each channel to another place in the caller's, where there is one.
void CopyTo(float* const* destinations,
            uint32_t at,
            const std::vector<Samples>& channels,
            uint32_t from,
            uint32_t count)
{
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
        if (destinations[channel] != nullptr) {
            std::copy_n(channels[channel].begin() + from, count, destinations[channel] + at);
        }
    }
}

} // namespace

BlockAssembler::BlockAssembler(uint32_t inputChannels,
                               uint32_t outputChannels,
                               uint32_t sideChannels)
    : inputAccum(inputChannels)
    , outputPending(outputChannels)
    , outputMade(outputChannels)
    , sidePending(sideChannels)
    , sideMade(sideChannels)
    , inputPointers(inputChannels, nullptr)
    , outputPointers(outputChannels, nullptr)
    , sidePointers(sideChannels, nullptr)
{
}

void BlockAssembler::Resize(uint32_t maxBlock, uint32_t frame)
{
    maxBlockFrames = std::max(maxBlockFrames, maxBlock);
    capacityFrame = std::max(capacityFrame, frame);
    if (maxBlock == 0 || frame == 0) {
        return;
    }
    const uint32_t longest = maxBlockFrames;
    const uint32_t size = capacityFrame;
    Reserve(inputAccum, longest + size - 1);
    Reserve(outputPending, size - 1);
    Reserve(sidePending, size - 1);
    const uint32_t made = ((longest - 1 + size) / size + 1) * size - 1;
    Reserve(outputMade, made);
    Reserve(sideMade, made);
}

void BlockAssembler::SetFrameSize(uint32_t frame)
{
    if (frame == frameSize) {
        return;
    }
    frameSize = frame;
    Resize(maxBlockFrames, frame);
    clean = false;
    Reset();
}

void BlockAssembler::Begin(const Frame& newBlock) noexcept
{
    block = newBlock;
    clean = false;
    inBlock = true;
    consumed = 0;
    if (frameSize == 0) {
        return;
    }
    if (block.inputPosition && !inputAccum.empty()) {
        // From now on counted from the accumulator's start.
        *block.inputPosition += static_cast<uint32_t>(inputAccum.front().size());
    }
    for (std::size_t channel = 0; channel < inputAccum.size(); ++channel) {
        Samples& accum = inputAccum[channel];
        const float* input = block.inputs[channel];
        if (input != nullptr) {
            accum.insert(accum.end(), input, input + block.frames);
        } else {
            // Kept in step with the others, in case the channel comes back.
            accum.insert(accum.end(), block.frames, 0.0F);
        }
    }
}

bool BlockAssembler::NextPassThrough(Frame& frame) noexcept
{
    if (consumed != 0) {
        frame = Frame();
        frame.inputPosition = 0;
        frame.outputPosition = 0;
        return false;
    }
    frame = block;
    consumed += block.frames;
    clean = false;
    return true;
}

bool BlockAssembler::Next(Frame& frame) noexcept
{
    if (frameSize == 0) {
        return NextPassThrough(frame);
    }
    frame = Frame();
    if (inputAccum.empty() || inputAccum.front().size() < std::size_t{consumed} + frameSize) {
        frame.inputPosition = 0;
        frame.outputPosition = 0;
        return false;
    }
    for (std::size_t channel = 0; channel < inputAccum.size(); ++channel) {
        inputPointers[channel] = inputAccum[channel].data() + consumed;
    }
    frame.frames = frameSize;
    frame.inputs = inputPointers.data();
    if (block.outputs != nullptr) {
        frame.outputs = ExtendMade(outputMade, outputPointers);
    }
    if (block.sideOutputs != nullptr) {
        frame.sideOutputs = ExtendMade(sideMade, sidePointers);
    }
    frame.inputPosition = FrameInputPosition();
    frame.outputPosition = FrameOutputPosition();
    consumed += frameSize;
    clean = false;
    return true;
}

float* const* BlockAssembler::ExtendMade(Channels& made, std::vector<float*>& pointers) noexcept
{
    for (std::size_t channel = 0; channel < made.size(); ++channel) {
        const std::size_t start = made[channel].size();
        made[channel].resize(start + frameSize, 0.0F);
        pointers[channel] = made[channel].data() + start;
    }
    return pointers.data();
}

// The two tests differ at the frame's end and below 0 by design: an output position may stand on
// the frame's end or before its start, an input position may not.
std::optional<uint32_t> BlockAssembler::FrameInputPosition() const noexcept
{
    if (!block.inputPosition) {
        return std::nullopt;
    }
    const uint32_t relative = *block.inputPosition - consumed; // wraps when it lies before
    return relative >= frameSize ? std::nullopt : std::optional<uint32_t>(relative);
}

std::optional<uint32_t> BlockAssembler::FrameOutputPosition() const noexcept
{
    if (!block.outputPosition) {
        return std::nullopt;
    }
    const auto relative = static_cast<int64_t>(*block.outputPosition) - consumed +
                          static_cast<int64_t>(block.inputPosition.value_or(0));
    if (relative > static_cast<int64_t>(frameSize)) {
        return std::nullopt;
    }
    return static_cast<uint32_t>(std::max<int64_t>(relative, 0));
}

uint32_t BlockAssembler::PendingLength() const noexcept
{
    return outputPending.empty() ? 0 : static_cast<uint32_t>(outputPending.front().size());
}

float* const* BlockAssembler::Destinations() const noexcept
{
    return block.outputs != nullptr ? block.outputs : block.inputs;
}

void BlockAssembler::End(CopyOut copyOut) noexcept
{
    if (frameSize != 0) {
        DeliverMade(copyOut, DeliverPending(copyOut));
        KeepUnconsumedInput();
    }
    consumed = 0;
    block = Frame();
    inBlock = false;
    clean = false;
}

uint32_t BlockAssembler::DeliverPending(CopyOut copyOut) noexcept
{
    const uint32_t count = std::min(PendingLength() - pendingRead, block.frames);
    if (count == 0) {
        return 0;
    }
    if (copyOut == CopyOut::Yes) {
        CopyTo(Destinations(), 0, outputPending, pendingRead, count);
        if (block.sideOutputs != nullptr) {
            CopyTo(block.sideOutputs, 0, sidePending, pendingRead, count);
        }
    }
    pendingRead += count;
    if (pendingRead == PendingLength()) {
        SetSilent(outputPending, 0);
        SetSilent(sidePending, 0);
        pendingRead = 0;
    }
    return count;
}

// In place the frames were written over the accumulated input, otherwise beside it.
void BlockAssembler::DeliverMade(CopyOut copyOut, uint32_t done) noexcept
{
    const uint32_t rest = block.frames - done;
    const Channels& source = block.outputs != nullptr ? outputMade : inputAccum;
    if (copyOut == CopyOut::Yes && rest != 0) {
        CopyTo(Destinations(), done, source, 0, rest);
        if (block.sideOutputs != nullptr) {
            CopyTo(block.sideOutputs, done, sideMade, 0, rest);
        }
    }
    if (rest < consumed) {
        for (std::size_t channel = 0; channel < outputPending.size(); ++channel) {
            const auto first = source[channel].begin();
            outputPending[channel].assign(first + rest, first + consumed);
        }
        for (std::size_t channel = 0; channel < sidePending.size(); ++channel) {
            Samples& pending = sidePending[channel];
            if (block.sideOutputs != nullptr) {
                const auto first = sideMade[channel].begin();
                pending.assign(first + rest, first + consumed);
            } else {
                pending.assign(consumed - rest, 0.0F); // without a processor: keep the count
            }
        }
    }
    SetSilent(outputMade, 0);
    SetSilent(sideMade, 0);
}

void BlockAssembler::KeepUnconsumedInput() noexcept
{
    for (Samples& accum : inputAccum) {
        accum.erase(accum.begin(), accum.begin() + consumed);
    }
}

BlockAssembler::Frame BlockAssembler::GetUnfinished() noexcept
{
    Frame frame;
    if (frameSize == 0 || inputAccum.empty()) {
        return frame;
    }
    for (std::size_t channel = 0; channel < inputAccum.size(); ++channel) {
        inputPointers[channel] = inputAccum[channel].data();
    }
    frame.frames = static_cast<uint32_t>(inputAccum.front().size());
    frame.inputs = inputPointers.data();
    return frame;
}

void BlockAssembler::Reset() noexcept
{
    if (clean) {
        return;
    }
    clean = true;
    if (inBlock) {
        for (Channels* pending : {&outputPending, &sidePending}) {
            for (Samples& channel : *pending) {
                std::fill(channel.begin(), channel.end(), 0.0F);
            }
        }
        return;
    }
    SetSilent(inputAccum, 0);
    const uint32_t queued = GetLatency();
    SetSilent(outputPending, queued);
    SetSilent(sidePending, queued);
    pendingRead = 0;
    consumed = 0;
}

} // namespace DSP

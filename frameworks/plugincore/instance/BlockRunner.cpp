// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/BlockRunner.h"

#include "frameworks/plugincore/dsp/signal/BlockPieces.h"
#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"
#include "frameworks/plugincore/instance/UsableSamples.h"
#include "frameworks/qobase/util/Tick.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace {

// Gaps in the stream that are shorter than this don't hand the signal path to the UI side.
constexpr uint32_t ProcessingHoldMilliseconds = 2500;

// One bad sample from another plug-in would otherwise stay in the repair's statistics for good.
void ReplaceUnusable(const ProcessRecord& record, uint32_t channelCount)
{
    for (uint32_t channel = 0; channel < channelCount; ++channel) {
        float* samples = record.channels[channel];
        if (samples != nullptr) {
            ::ReplaceUnusable(std::span(samples, record.frames));
        }
    }
}

} // namespace

/// Marks the runner as processing, and this thread as the last that did it; at the end of the scope
/// what belongs to one block is gone.
class BlockRunner::Block {
public:
    explicit Block(BlockRunner& newRunner)
        : runner(newRunner)
    {
        runner.lastProcessTick = Util::GetTickCount();
        runner.processing = true;
        runner.audioThread = std::this_thread::get_id();
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    ~Block()
    {
        runner.processing = false;
        runner.renderFlagA = false;
        runner.renderFlagB = false;
        runner.transportValid = false;
    }

private:
    BlockRunner& runner;
};

void BlockRunner::Run(DSP::TransformBase& transform, const ProcessRecord& record)
{
    const Block block(*this);
    renderFlagA = record.renderFlagA != 0;
    renderFlagB = record.renderFlagB != 0;
    transport = record.transport != nullptr ? *record.transport : TransportRecord();
    transportValid = true;
    ReplaceUnusable(record, transform.GetChannelCount());
    RunCommands(transform); // once a host block, not once a chunk
    RunChunks(transform, record);
}

void BlockRunner::RunSidePass(DSP::TransformBase& transform, const SidePassRecord& record)
{
    const Block block(*this);
    transform.ProcessSidePass(record.frames, record.first, record.second);
}

void BlockRunner::RunCommands(const DSP::TransformBase& transform)
{
    for (const auto& [name, element] : transform.GetSet().GetElements()) {
        element->ProcessRegion(0, 0, nullptr);
    }
}

void BlockRunner::RunChunks(DSP::TransformBase& transform, const ProcessRecord& record)
{
    std::array<float*, DSP::MaxChannels> pointers{};
    const std::span<float*> channels = std::span(pointers).first(transform.GetChannelCount());
    const auto runChunk = [&](uint32_t /*begin*/, uint32_t frames) {
        transform.ProcessChunk(frames, channels.data());
        if (transport.isPositionValid != 0) {
            transport.position += frames;
        }
    };
    DSP::RunInPieces(record.frames, maxFrames, record.channels, channels, runChunk);
}

bool BlockRunner::RecentlyProcessed() const noexcept
{
    const uint32_t last = lastProcessTick;
    return last != 0 && Util::GetTickCount() - last < ProcessingHoldMilliseconds;
}

void BlockRunner::ForgetBlocks() noexcept
{
    processing = false;
    lastProcessTick = 0;
}

std::optional<int64_t> BlockRunner::GetTransportPosition() const
{
    if (!transportValid || transport.isPositionValid == 0) {
        return std::nullopt;
    }
    return std::llround(transport.position);
}

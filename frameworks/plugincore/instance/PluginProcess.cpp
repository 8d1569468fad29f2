// SPDX-License-Identifier: ISC
// The way of a host's block through an instance.
#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/plugincore/instance/ThreadMark.h"
#include "frameworks/qobase/util/Realtime.h"
#include "frameworks/qobase/util/Tick.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Beyond this, +300 dB over full scale, a sample is as much of an accident as one that is no
// number: its power would overflow.
constexpr float LargestSample = 1e15F;

bool IsUsable(float sample)
{
    return std::abs(sample) <= LargestSample; // false for a NaN
}

} // namespace

/// Marks an instance as processing, and this thread as the last that did it; at the end of the
/// scope what belongs to one block is gone.
class Plugin::ProcessScope {
public:
    explicit ProcessScope(Plugin& newPlugin)
        : plugin(newPlugin)
    {
        plugin.lastProcessTick = Util::GetTickCount();
        plugin.processing = true;
        plugin.audioThread = std::this_thread::get_id();
    }
    ProcessScope(const ProcessScope&) = delete;
    ProcessScope& operator=(const ProcessScope&) = delete;
    ~ProcessScope()
    {
        plugin.processing = false;
        plugin.renderFlagA = false;
        plugin.renderFlagB = false;
        plugin.transportCopyValid = false;
    }

private:
    Plugin& plugin;
};

void Plugin::beforeProcess(uint32_t eventCount, const uint8_t* events)
{
    transform->BeforeProcess(eventCount, events);
}

void Plugin::afterProcess()
{
    transform->AfterProcess();
}

void Plugin::process(const ProcessRecord& record)
{
    const Util::ScopedDenormalGuard denormalGuard;
    const ThreadMark mark(processThread);
    RunBlock(record);
    latency.Check(DSP::Context::Process);
}

void Plugin::RunBlock(const ProcessRecord& record)
{
    const ProcessScope scope(*this);
    renderFlagA = record.renderFlagA != 0;
    renderFlagB = record.renderFlagB != 0;
    transportCopy = record.transport != nullptr ? *record.transport : TransportRecord();
    transportCopyValid = true;
    ReplaceUnusable(record);
    RunCommands(); // once a host block, not once a chunk
    RunChunks(record);
}

// One bad sample from another plug-in would otherwise stay in the repair's statistics for good.
void Plugin::ReplaceUnusable(const ProcessRecord& record) const
{
    for (uint32_t channel = 0; channel < channelCount; ++channel) {
        float* samples = record.channels[channel];
        if (samples != nullptr) {
            std::replace_if(
                samples,
                samples + record.frames,
                [](float sample) { return !IsUsable(sample); },
                0.0F);
        }
    }
}

void Plugin::RunCommands()
{
    for (const auto& [name, element] : transform->GetSet().GetElements()) {
        element->ProcessRegion(0, 0, nullptr);
    }
}

void Plugin::RunChunks(const ProcessRecord& record)
{
    std::array<float*, DSP::MaxChannels> channels{};
    for (uint32_t done = 0; done < record.frames;) {
        const uint32_t chunk = std::min(record.frames - done, maxBlockFrames);
        for (uint32_t channel = 0; channel < channelCount; ++channel) {
            float* samples = record.channels[channel];
            channels[channel] = samples != nullptr ? samples + done : nullptr;
        }
        transform->ProcessChunk(chunk, channels.data());
        if (transportCopy.isPositionValid != 0) {
            transportCopy.position += chunk;
        }
        done += chunk;
    }
}

void Plugin::ProcessSidePass(const SidePassRecord& record)
{
    const Util::ScopedDenormalGuard denormalGuard;
    const ThreadMark mark(processThread);
    const ProcessScope scope(*this);
    transform->ProcessSidePass(record.frames, record.first, record.second);
}

std::optional<int64_t> Plugin::GetTransportPosition() const
{
    if (!transportCopyValid || transportCopy.isPositionValid == 0) {
        return std::nullopt;
    }
    return std::llround(transportCopy.position);
}

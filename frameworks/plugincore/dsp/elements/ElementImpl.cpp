// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/ElementImpl.h"

#include "frameworks/plugincore/dsp/elements/HumanReadableParamVisitor.h"
#include "frameworks/plugincore/dsp/signal/BlockPieces.h"
#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace DSP {
namespace {

constexpr float FadeSeconds = 0.01F;

} // namespace

/// The dry signal of one block: pointers and samples from the pool, given back in reverse order.
/// With 0 frames it takes nothing.
class ElementImpl::DryBlock {
public:
    DryBlock(ElementHost& newHost, uint32_t frames, uint32_t channelCount)
        : host(newHost)
        , pointerBytes(frames == 0 ? 0 : channelCount * sizeof(float*))
        , sampleBytes(std::size_t{frames} * channelCount * sizeof(float))
    {
        if (frames == 0) {
            return;
        }
        pointers = static_cast<float**>(newHost.AllocProcessingMemory(pointerBytes));
        samples = static_cast<float*>(newHost.AllocProcessingMemory(sampleBytes));
        for (uint32_t channel = 0; channel < channelCount; ++channel) {
            pointers[channel] = samples + std::size_t{channel} * frames;
        }
    }
    DryBlock(const DryBlock&) = delete;
    DryBlock& operator=(const DryBlock&) = delete;
    ~DryBlock()
    {
        if (pointers != nullptr) {
            host.FreeProcessingMemory(samples, sampleBytes);
            host.FreeProcessingMemory(static_cast<void*>(pointers), pointerBytes);
        }
    }

    float* const* Channels() const { return pointers; }

private:
    ElementHost& host;
    const std::size_t pointerBytes;
    const std::size_t sampleBytes;
    float** pointers = nullptr;
    float* samples = nullptr;
};

ElementImpl::ElementImpl(const Setup& setup)
    : host(setup.host)
    , name(setup.name)
    , sampleRate(setup.sampleRate)
    , channelConfig(setup.channelConfig)
    , channelCount(DSP::GetChannelCount(setup.channelConfig))
    , pieceChannels(channelCount, nullptr)
    , processFifo(String("%1 Process FIFO").arg(name), DSPCommandFifo::Growing::Yes)
    , uiFifo(String("%1 UI FIFO").arg(name), DSPCommandFifo::Growing::No)
    , dryDelay(setup.regionCount)
    , bypassFader(MakeFader())
{
    for (uint32_t region = 0; region < setup.regionCount; ++region) {
        tails.push_back(MakeTail());
    }
}

ElementImpl::~ElementImpl()
{
    Drain(processFifo);
    Drain(uiFifo);
}

void ElementImpl::Drain(DSPCommandFifo& fifo)
{
    while (DSPCommand* command = fifo.Pop()) {
        Finish(command);
    }
}

void ElementImpl::Finish(DSPCommand* command)
{
    host.CommandFinished(*this, *command);
    delete command;
}

std::unique_ptr<BlockAssembler> ElementImpl::MakeTail() const
{
    auto tail = std::make_unique<BlockAssembler>(channelCount, channelCount, 0);
    tail->Resize(host.GetMaxBlockFrames(), 1);
    return tail;
}

std::unique_ptr<BypassFader> ElementImpl::MakeFader() const
{
    return std::make_unique<BypassFader>(
        channelCount, static_cast<uint32_t>(std::lround(sampleRate * FadeSeconds)));
}

Element* ElementImpl::GetChild(uint32_t index) const
{
    return index < children.size() ? children[index] : nullptr;
}

void ElementImpl::AddChild(Element& child, const String& role)
{
    children.push_back(&child);
    childrenByName[child.GetName()] = &child;
    if (!role.IsEmpty()) {
        namedChildren[role] = &child;
    }
    child.SetParent(this);
}

void ElementImpl::RemoveChild(Element& child)
{
    const auto isChild = [&child](const auto& entry) { return entry.second == &child; };
    children.erase(std::remove(children.begin(), children.end(), &child), children.end());
    std::erase_if(childrenByName, isChild);
    std::erase_if(namedChildren, isChild);
    child.SetParent(nullptr);
}

ChangedParams ElementImpl::CollectChangedParams() const
{
    HumanReadableParamVisitor visitor;
    VisitParams(GetParamMap(), visitor);
    return std::move(visitor.changed);
}

void ElementImpl::SetFormat(float newSampleRate, uint32_t newChannelConfig)
{
    if (!IsConfigurable() || (newSampleRate == sampleRate && newChannelConfig == channelConfig)) {
        return;
    }
    const uint32_t newChannelCount = DSP::GetChannelCount(newChannelConfig);
    const bool sameChannels = newChannelCount == channelCount;
    sampleRate = newSampleRate;
    channelConfig = newChannelConfig;
    channelCount = newChannelCount;
    if (sameChannels) {
        // Truncated here, while a new fader's length is rounded: both are meant.
        bypassFader->SetLength(static_cast<uint32_t>(sampleRate * FadeSeconds));
    } else {
        bypassFader = MakeFader();
    }
    for (auto& tail : tails) {
        auto fresh = MakeTail();
        fresh->SetFrameSize(tail->GetFrameSize());
        tail = std::move(fresh);
    }
    pieceChannels.assign(channelCount, nullptr);
    OnFormatChanged();
    if (dryHistoryEnabled) {
        MakeDryLines();
    }
}

void ElementImpl::SetDryHistoryEnabled(bool enabled)
{
    if (parent != nullptr) {
        return;
    }
    dryHistoryEnabled = enabled;
    if (enabled && dryDelay.front().size() != channelCount) {
        MakeDryLines();
    }
}

void ElementImpl::MakeDryLines()
{
    for (auto& lines : dryDelay) {
        lines.assign(channelCount, DelayLine(GetMaxLatency()));
        for (DelayLine& line : lines) {
            line.SetLength(GetLatency(Context::Process));
        }
    }
    host.ReserveProcessingMemory(GetProcessingMemorySize());
}

std::size_t ElementImpl::GetProcessingMemorySize() const
{
    std::size_t bytes = 0;
    for (const Element* child : children) {
        bytes = std::max(bytes, child->GetProcessingMemorySize());
    }
    if (dryHistoryEnabled) {
        // A block's samples and, in the room of two frames, its pointers.
        bytes += std::size_t{host.GetMaxBlockFrames() + 2} * channelCount * sizeof(float);
    }
    return bytes + GetOwnProcessingMemorySize();
}

void ElementImpl::Suspend()
{
    if (++suspendCount == 1) {
        OnSuspend();
        for (Element* child : children) {
            child->Suspend();
        }
    }
}

void ElementImpl::Resume()
{
    // A Resume too many counts as the last one.
    suspendCount = std::max(suspendCount, 1);
    if (--suspendCount == 0) {
        OnResume();
        for (Element* child : children) {
            child->Resume();
        }
    }
}

void ElementImpl::Reset()
{
    const Util::CriticalSectionGuard guard(host.GetProcessLock());
    for (auto& tail : tails) {
        tail->Reset();
    }
    SetNextPositions(std::nullopt, std::nullopt);
    if (!initialised) {
        OnReset();
    }
    for (auto& lines : dryDelay) {
        for (DelayLine& line : lines) {
            line.Clear();
        }
    }
    lastActive = IsActive(0);
    bypassFader->SetTarget(!lastActive);
    bypassFader->Snap();
    initialised = true;
}

void ElementImpl::ResetTails()
{
    const Util::CriticalSectionGuard guard(host.GetProcessLock());
    for (auto& tail : tails) {
        tail->Reset();
    }
    SetNextPositions(std::nullopt, std::nullopt);
}

void ElementImpl::ClearState()
{
    const Util::CriticalSectionGuard guard(host.GetProcessLock());
    initialised = false;
    Reset();
}

void ElementImpl::SetNextPositions(std::optional<uint32_t> input, std::optional<uint32_t> output)
{
    nextInputPosition = input;
    nextOutputPosition = output;
}

void ElementImpl::ProcessRegion(uint32_t region, uint32_t frames, float* const* channels)
{
    if (region >= GetRegionCount()) {
        return;
    }
    const bool hasAudio = frames != 0 && channels != nullptr;
    const DryBlock dry(host, dryHistoryEnabled && hasAudio ? frames : 0, channelCount);
    const Util::CriticalSectionGuard guard(host.GetProcessLock());
    if (!DefersCommands()) {
        // What commands took from the pool is free again afterwards.
        const std::size_t mark = host.GetProcessingMemoryMark();
        ProcessCommands();
        host.SetProcessingMemoryMark(mark);
    }
    if (hasAudio) {
        RunBlock(region, frames, channels, dry);
    }
    if (dryHistoryEnabled) {
        FadeToDry(hasAudio ? frames : 0, channels, dry);
    }
}

void ElementImpl::RunBlock(uint32_t region,
                           uint32_t frames,
                           float* const* channels,
                           const DryBlock& dry)
{
    if (ProcessesBlocks()) {
        initialised = false;
    }
    if (dryHistoryEnabled) {
        FillDryBlock(region, frames, channels, dry);
    }
    RunTail(region, frames, channels);
}

void ElementImpl::FillDryBlock(uint32_t region,
                               uint32_t frames,
                               float* const* channels,
                               const DryBlock& dry)
{
    const uint32_t latency = GetLatency(Context::Process);
    for (uint32_t channel = 0; channel < channelCount; ++channel) {
        DelayLine& line = dryDelay[region][channel];
        line.FadeToLength(std::min(latency, line.GetMaxLength()));
        line.Process(channels[channel], dry.Channels()[channel], frames);
    }
}

void ElementImpl::RunTail(uint32_t region, uint32_t frames, float* const* channels)
{
    BlockAssembler& tail = *tails[region];
    BlockAssembler::Frame block;
    block.frames = frames;
    block.inputs = channels;
    if (host.IsPositionless()) {
        block.inputPosition = 0;
        block.outputPosition = 0;
    } else {
        block.inputPosition = nextInputPosition;
        block.outputPosition = nextOutputPosition;
        SetNextPositions(std::nullopt, std::nullopt);
    }
    host.SetProcessBlockOffset(0);
    SetBlockOffset(0);
    if (tail.GetFrameSize() == 0) {
        RunPieces(region, frames, channels); // passes through: there is nothing to assemble
        return;
    }
    tail.Begin(block);
    BlockAssembler::Frame frame;
    while (tail.Next(frame)) {
        ProcessPiece(region, frame.frames, frame.inputs);
    }
    tail.End(UsesRegionCrossfade() ? BlockAssembler::CopyOut::Yes : BlockAssembler::CopyOut::No);
    const BlockAssembler::Frame unfinished = tail.GetUnfinished();
    if (region == 0 && unfinished.frames != 0 && ProcessesBlocks()) {
        OnFrameArriving(unfinished.frames, unfinished.inputs);
    }
}

// Such a block can be longer than the element expects.
void ElementImpl::RunPieces(uint32_t region, uint32_t frames, float* const* channels)
{
    const auto runPiece = [&](uint32_t begin, uint32_t count) {
        ProcessPiece(region, count, pieceChannels.data());
        if (count != frames) {
            host.SetProcessBlockOffset(begin + count);
            SetBlockOffset(begin + count);
        }
    };
    RunInPieces(frames, host.GetMaxBlockFrames(), channels, pieceChannels, runPiece);
}

void ElementImpl::ProcessPiece(uint32_t region, uint32_t frames, float* const* channels)
{
    if (!ProcessesBlocks()) {
        return;
    }
    const std::size_t mark = host.GetProcessingMemoryMark();
    ProcessAudioRegion(region, frames, channels);
    host.SetProcessingMemoryMark(mark);
}

void ElementImpl::FadeToDry(uint32_t frames, float* const* channels, const DryBlock& dry)
{
    if (frames != 0) {
        OnWetBlock(frames, channels);
        OnDryBlock(frames, dry.Channels());
    }
    const bool active = IsActive(0);
    if (active != lastActive) {
        lastActive = active;
        bypassFader->SetTarget(!active);
    }
    if (frames != 0) {
        bypassFader->Process(frames, dry.Channels(), channels);
    }
}

} // namespace DSP

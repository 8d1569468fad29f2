// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/DSPCommandFifo.h"
#include "frameworks/plugincore/dsp/elements/Element.h"
#include "frameworks/plugincore/dsp/signal/BlockAssembler.h"
#include "frameworks/plugincore/dsp/signal/BypassFader.h"
#include "frameworks/plugincore/dsp/signal/DelayLine.h"

#include <memory>
#include <vector>

namespace DSP {

class OfflineSource;
class Region;
class RegionCrossover;
class RegionRun;
struct Preroll;

/// Shared behaviour of all elements: format, latency, block assembly, the way of commands, and the
/// dry signal that a bypassed element fades to. A concrete element overrides the few protected
/// hooks at the end.
///
/// Threads: as for Element. Everything that touches the signal runs under the host's process lock.
class ElementImpl : public Element {
public:
    struct Setup {
        ElementHost& host;
        String name;
        float sampleRate = 0; ///< Hz
        uint32_t channelConfig = 0;
        uint32_t regionCount = 1;
    };

    explicit ElementImpl(const Setup& setup);
    ~ElementImpl() override;

    String GetName() const override { return name; }
    void ServiceCommands() override;
    void ProcessCommands() override;
    uint32_t GetChildCount() const override { return static_cast<uint32_t>(children.size()); }
    Element* GetChild(uint32_t index) const override;
    Element* GetParent() const override { return parent; }
    void SetParent(Element* newParent) override { parent = newParent; }
    ChildMap CopyChildMap() const override { return childrenByName; }
    const ChildMap& GetNamedChildren() const override { return namedChildren; }
    bool IsConfigurable() const override { return false; }
    void SetFormat(float newSampleRate, uint32_t newChannelConfig) override;
    float GetSampleRate() const override { return sampleRate; }
    uint32_t GetChannelConfig() const override { return channelConfig; }
    uint32_t GetChannelCount() const override { return channelCount; }
    uint32_t GetLatency(Context context) const override { return GetLatencySamples(context); }
    uint32_t GetMaxLatency() const override { return GetMaxLatencySamples(); }
    uint32_t GetExtraLatency() const override { return GetExtraLatencySamples(); }
    void SetBlockOffset(uint32_t frames) override { blockOffset = frames; }
    uint32_t GetBlockOffset() const override { return blockOffset; }
    uint32_t GetRegionCount() const override { return static_cast<uint32_t>(tails.size()); }
    uint32_t GetParamVersion() const override { return 0; }
    ChangedParams CollectChangedParams() const override;
    bool HasExtraBytes() const override { return false; }
    uint32_t GetExtraBytesCount() const override { return 0; }
    void WriteExtraBytes(std::span<uint8_t> /*bytes*/) const override {}
    uint32_t GetExtraBytesSize() const override
    {
        return HasExtraBytes() ? GetExtraBytesCount() : 0;
    }
    void ReadExtraBytes(std::span<const uint8_t> /*bytes*/) override {}
    void ClearExtraBytes() override {}
    void Suspend() override;
    void Resume() override;
    void Reset() override;
    void ClearState() override;
    void ResetTails() override;
    void Process(uint32_t frames, float* const* channels) override
    {
        ProcessRegion(0, frames, channels);
    }
    void ProcessRegion(uint32_t region, uint32_t frames, float* const* channels) override;
    OfflineResult RunOffline(OfflineJob& job) override;
    bool IsActive(uint32_t /*region*/) const override { return true; }
    void SetDryHistoryEnabled(bool enabled) override;
    std::size_t GetProcessingMemorySize() const override;

    /// Takes ownership of the command; runs it at once when no audio runs. [ui]
    void PostCommand(DSPCommand* command) override;

    /// While set, waiting commands stay where they are. [process]
    void SetCommandsDisabled(bool disabled) { commandsDisabled = disabled; }

    /// Sample positions of the next block's frames; empty after each block. [process]
    void SetNextPositions(std::optional<uint32_t> input, std::optional<uint32_t> output);

    ElementHost& GetHost() const { return host; }

protected:
    /// Appends a child that the concrete element owns. `role` is what it is called here besides
    /// its own name; empty: nothing. [setup]
    void AddChild(Element& child, const String& role = "");
    /// Forgets a child before the concrete element ends it. [setup]
    void RemoveChild(Element& child);

    /// Samples of latency; see Element::GetLatency(). [any]
    virtual uint32_t GetLatencySamples(Context /*context*/) const { return 0; }
    virtual uint32_t GetMaxLatencySamples() const { return 0; }
    virtual uint32_t GetExtraLatencySamples() const { return 0; }
    /// Restarts the concrete element's state. [process]
    virtual void OnReset() {}
    /// Works on the frame in place; `frames` is the tail's frame size unless that is 0. [process]
    virtual void ProcessAudio(uint32_t /*frames*/, float* const* /*channels*/) {}
    virtual void ProcessAudioRegion(uint32_t region, uint32_t frames, float* const* channels)
    {
        if (region == 0) {
            ProcessAudio(frames, channels);
        }
    }
    /// What has come of the tail's next frame: its first `arrived` samples, which stay as they are.
    /// Called after each block that leaves some, for elements that don't put off all work to the
    /// frame's end; ProcessAudio() gets the whole frame in any case. [process]
    virtual void OnFrameArriving(uint32_t /*arrived*/, float* const* /*channels*/) {}
    /// Rate or layout have changed; under the process lock. [setup]
    virtual void OnFormatChanged() {}
    /// Whether the tail's samples go to the caller.
    virtual bool UsesRegionCrossfade() const { return true; }
    /// Whether a block is processed at all, and counts as one since the last reset.
    virtual bool ProcessesBlocks() const { return true; }
    /// The regions that a job touches, in order. [setup], as all that follows up to RunRegion()
    virtual void
    GetRegionInfo(std::vector<Region>& regions, OfflineSource& source, const OfflineJob& job) const;
    virtual Preroll GetPreroll() const;
    /// Frames before a region after which the element works there as if it had always run.
    virtual uint32_t GetWarmupFrames() const;
    /// Whether it is cleared between two regions, and not only reset where it has run.
    virtual bool ClearsBetweenRegions() const { return true; }
    /// What leads a region's blocks in and out; it outlives neither region nor job.
    virtual std::unique_ptr<RegionCrossover> PrepareCrossover(const OfflineJob& job,
                                                              const Region& region);
    virtual OfflineResult RunRegions(OfflineJob& job);
    /// One region, whose share of the progress goes from `begin` to `end`; `label` says which one
    /// it is, when there are several.
    struct RegionShare {
        double begin = 0;
        double end = 1;
        String label{};
    };
    virtual OfflineResult RunRegion(RegionRun& run, const Region& region, const RegionShare& share);

    /// Whether ProcessRegion() leaves the commands alone.
    virtual bool DefersCommands() const { return false; }
    /// After a round of polling; `any`: whether a value had changed. [ui]
    virtual void OnParamsChanged(bool /*any*/) {}
    virtual void OnUIIdle() {}
    virtual void OnCommandsProcessed() {}
    virtual void OnSuspend() {}
    virtual void OnResume() {}
    /// The block before the fade to the dry signal, and the dry signal itself. [process]
    virtual void OnWetBlock(uint32_t /*frames*/, float* const* /*channels*/) {}
    virtual void OnDryBlock(uint32_t /*frames*/, float* const* /*channels*/) {}
    virtual std::size_t GetOwnProcessingMemorySize() const { return 0; }

    BlockAssembler& GetTail(uint32_t region = 0) { return *tails[region]; }
    const BlockAssembler& GetTail(uint32_t region = 0) const { return *tails[region]; }

private:
    class DryBlock;

    std::unique_ptr<BlockAssembler> MakeTail() const;
    std::unique_ptr<BypassFader> MakeFader() const;
    void MakeDryLines();
    void RunBlock(uint32_t region, uint32_t frames, float* const* channels, const DryBlock& dry);
    void
    FillDryBlock(uint32_t region, uint32_t frames, float* const* channels, const DryBlock& dry);
    void RunTail(uint32_t region, uint32_t frames, float* const* channels);
    void RunPieces(uint32_t region, uint32_t frames, float* const* channels);
    void ProcessPiece(uint32_t region, uint32_t frames, float* const* channels);
    void FadeToDry(uint32_t frames, float* const* channels, const DryBlock& dry);
    void SendOrRun(DSPCommand* command);
    void RunDirectly(DSPCommand* command);
    void ServiceReturned();
    void ServiceWithoutAudio();
    void Finish(DSPCommand* command);
    void Drain(DSPCommandFifo& fifo);

    ElementHost& host;
    const String name;
    float sampleRate;
    uint32_t channelConfig;
    uint32_t channelCount;
    std::vector<std::unique_ptr<BlockAssembler>> tails; // one a region
    std::vector<float*> pieceChannels; // a passing block's channels, advanced piece by piece
    bool initialised = false;          // set by Reset(), cleared by a processed block
    bool commandsDisabled = false;
    bool runsOffline = false;
    int suspendCount = 0;
    uint32_t blockOffset = 0; // frames
    std::optional<uint32_t> nextInputPosition;
    std::optional<uint32_t> nextOutputPosition;
    std::vector<Element*> children; // not owned
    ChildMap childrenByName;
    ChildMap namedChildren;
    Element* parent = nullptr;  // not owned
    DSPCommandFifo processFifo; // UI side to process side
    DSPCommandFifo uiFifo;      // process side to UI side
    bool dryHistoryEnabled = false;
    std::vector<std::vector<DelayLine>> dryDelay; // [region][channel]
    std::unique_ptr<BypassFader> bypassFader;
    bool lastActive = true;
};

} // namespace DSP

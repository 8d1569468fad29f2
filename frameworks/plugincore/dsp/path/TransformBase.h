// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/DSPSet.h"
#include "frameworks/plugincore/dsp/path/ParamSet.h"
#include "frameworks/plugincore/dsp/signal/DelayLine.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/qobase/util/CriticalSection.h"

#include <atomic>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace DSP {

/// The signal path of an instance: owns the set, sends each chunk through the product's element,
/// and keeps a copy of the input, late by the reported latency, for bypass.
///
/// The operations that a product may answer and this one doesn't are empty here.
class TransformBase {
public:
    /// Reports an element's reset: see PluginCoreElementObserver.
    struct ElementObserver {
        PluginCoreElementObserver function = nullptr;
        void* context = nullptr;
    };

    /// `newAutomatableRows` is the text that ParamSetImpl reads.
    TransformBase(ElementHost& newHost,
                  std::unique_ptr<DSPSet> newSet,
                  std::string_view newAutomatableRows);
    TransformBase(const TransformBase&) = delete;
    TransformBase& operator=(const TransformBase&) = delete;
    virtual ~TransformBase() = default;

    /// Makes the elements, or brings them to a new format, and the list of automatable parameters
    /// of what there is then. Under the process lock. [setup]
    void SetFormat(float sampleRate, uint32_t channelConfig);

    /// Sizes the dry lines by the largest latency of the set, or by the delay that is wanted now if
    /// that is larger, and clears them. After SetFormat(), once the latency is known. When memory
    /// is short it throws and leaves the lines as they were. [setup]
    void PlanDryDelay();

    DSPSet& GetSet() const { return *set; }
    /// Made anew by SetFormat().
    const ParamSetBase& GetParamSet() const { return *paramSet; }

    /// Of the present format. [process]
    uint32_t GetChannelCount() const { return channelCount; }

    /// Works on one chunk of at most the host's largest block, in place. Null channels are skipped.
    /// [process]
    void ProcessChunk(uint32_t frames, float* const* channels);

    /// Resets all elements, clears the dry lines and starts counting samples anew. [process]
    void Settle();
    /// Resets all elements; also what ends a bypass. [process]
    virtual void Reset();

    /// Samples processed since the last settling. [process]
    uint64_t GetSamplesProcessed() const { return samplesProcessed; }

    /// Heard at the next settling; an empty one ends it. [any]
    void SetElementObserver(ElementObserver observer);

    /// Whether the element's latency counts on the way from input to output. [any]
    virtual bool IsInPath(const String& /*elementName*/, Context /*context*/) const { return true; }

    /// When the host has made the instance ready, and when it is done with it. [ui]
    virtual void Start() {}
    virtual void Stop() {}
    /// Every idle tick, after the elements' own work. [ui]
    virtual void Idle() {}
    /// A message of the host's that the instance doesn't know, of `length` bytes from whichever
    /// side. True when it was understood.
    virtual bool HostMessage(Context /*context*/,
                             uint32_t /*message*/,
                             uint32_t /*length*/,
                             const void* /*data*/)
    {
        return false;
    }

    /// Around the saving and loading of a state. [ui]
    virtual void BeforeSave() {}
    virtual void AfterStateLoaded() {}
    /// A state from before there were versions: its text, as it was compressed. True when it has
    /// been loaded. [ui]
    virtual bool LoadLegacyChunk(std::span<const uint8_t> /*text*/, uint32_t /*version*/)
    {
        return false;
    }
    /// Around a new stream format, under both locks. [setup]
    virtual void BeforeFormatChange() {}
    virtual void AfterFormatChange() {}

    /// The plug-in host starts or stops the processing. [process] in context 0, else [ui]
    virtual void ProcessingStateChanged(Context /*context*/, bool /*active*/) {}

    virtual void BeforeProcess(uint32_t /*eventCount*/, const uint8_t* /*events*/) {}
    virtual void AfterProcess() {}
    virtual void ProcessSidePass(uint32_t /*frames*/, void* /*first*/, void* /*second*/) {}
    /// In and out, see PluginCoreTransformQuery; untouched when there is nothing to ask. [any]
    virtual void Query(uint32_t& value);
    /// See PluginCoreTransformNotice. [any]
    virtual void Notify(uint32_t value);
    /// True when the request was understood. [any]
    virtual bool Read(TransformReadRecord& /*record*/) { return false; }
    /// False when the data can't be used.
    virtual bool LoadData(uint32_t /*size*/, const void* /*data*/) { return false; }

protected:
    ElementHost& GetHost() const { return host; }

private:
    void SizeDryLines(uint32_t maxLength);
    bool IsPassedBy() const;
    uint32_t GetDryDelay() const;
    void FollowDelay();
    void RunDryPath(uint32_t frames, float* const* channels);
    void CopyDry(uint32_t frames, float* const* channels) const;

    ElementHost& host;
    const std::unique_ptr<DSPSet> set;
    const std::string automatableRows;
    std::unique_ptr<const ParamSetBase> paramSet;
    uint32_t channelCount = 0;
    std::vector<DelayLine> dryLines;            // a channel each; empty while there is no delay
    std::vector<std::vector<float>> dryBuffers; // [channel][largest chunk]
    std::atomic<uint32_t> way{TransformNoticeFollowBypass};
    bool wasBypassed = false;
    uint64_t samplesProcessed = 0;
    // The call that sets an observer holds no lock of the instance, so that the process side takes
    // the pointer as it comes; former observers are kept, since it may still be at work with one.
    Util::CriticalSection observersLock{"Element Observers"};
    std::vector<std::unique_ptr<const ElementObserver>> observers UTIL_GUARDED_BY(observersLock);
    std::atomic<const ElementObserver*> elementObserver{nullptr};
};

} // namespace DSP

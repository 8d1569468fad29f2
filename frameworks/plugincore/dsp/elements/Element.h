// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/DSPCommand.h"
#include "frameworks/plugincore/dsp/elements/ElementParam.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>

namespace DSP {

class OfflineJob;
enum class OfflineResult;

/// One node of the signal chain. It lives as long as the instance; what depends on the stream
/// format follows SetFormat().
class Element : public DSPCommandMailbox {
public:
    Element() = default;
    Element(const Element&) = delete;
    Element& operator=(const Element&) = delete;
    ~Element() override = default;

    /// The element's key in every file; never changes. [any]
    virtual String GetName() const = 0;

    /// Finishes commands that came back from the process side; every idle tick. [ui]
    virtual void ServiceCommands() = 0;
    /// Takes values that the process side changed over to the UI side; every idle tick. [ui]
    virtual void SyncParams() = 0;
    /// Takes in waiting commands. Under the process lock. [process, locks]
    virtual void ProcessCommands() = 0;

    virtual uint32_t GetChildCount() const = 0;
    /// Null past the end.
    virtual Element* GetChild(uint32_t index) const = 0;
    virtual Element* GetParent() const = 0;
    using ChildMap = std::map<String, Element*>;
    /// The children by their own names, as they are now. [ui]
    virtual ChildMap CopyChildMap() const = 0;
    /// Those that the element has a name for by what they do in it. [ui]
    virtual const ChildMap& GetNamedChildren() const = 0;
    /// For the parent only.
    virtual void SetParent(Element* newParent) = 0;

    /// Whether SetFormat() has an effect.
    virtual bool IsConfigurable() const = 0;
    /// Rate in Hz and layout code. Under the process lock. [setup]
    virtual void SetFormat(float newSampleRate, uint32_t newChannelConfig) = 0;
    virtual float GetSampleRate() const = 0;
    virtual uint32_t GetChannelConfig() const = 0;
    virtual uint32_t GetChannelCount() const = 0;

    /// Samples by which the output is late: as that side knows it, and at most. [any]
    virtual uint32_t GetLatency(Context context) const = 0;
    virtual uint32_t GetMaxLatency() const = 0;
    /// Samples that come on top when the element works alone on a recording, for what it has to
    /// hear in advance; no part of what a host is given. [any]
    virtual uint32_t GetExtraLatency() const = 0;

    /// Frames of the present block that the element has already seen: like the host's offset,
    /// which the element's children move as well. [process]
    virtual void SetBlockOffset(uint32_t frames) = 0;
    virtual uint32_t GetBlockOffset() const = 0;

    /// Number of time regions that state is kept for.
    virtual uint32_t GetRegionCount() const = 0;

    virtual uint32_t GetParamCount() const = 0;
    /// Version of the parameter table, written with saved parameters.
    virtual uint32_t GetParamVersion() const = 0;
    /// Empty for an unknown name.
    virtual std::optional<uint32_t> FindParamIndex(const String& name) const = 0;
    /// Name of the parameter at this place of the table; empty past the end.
    virtual String GetParamName(uint32_t index) const = 0;
    virtual const ParamMap& GetParamMap() const = 0;
    /// The parameter at this place of the table; null past the end and before the table is built.
    virtual const ParamObject* FindParam(uint32_t index) const = 0;
    /// A static empty record for an unknown name.
    virtual const ParamInfo& GetParamInfoByName(const String& name) const = 0;

    /// The session parameters whose value on the UI side isn't the default. [ui]
    virtual ChangedParams CollectChangedParams() const = 0;

    /// The parameters for the user interface, made at the first call; the set may not be kept
    /// longer than the element. Throws std::logic_error when it is called while the set is being
    /// made. [ui]
    virtual std::shared_ptr<Controller::ControllerSet> GetControllerSet() = 0;

    /// State beside the parameters that is saved with them as bytes. [ui]
    virtual bool HasExtraBytes() const = 0;
    virtual uint32_t GetExtraBytesCount() const = 0;
    /// Fills bytes to be saved; as many as GetExtraBytesSize() returns.
    virtual void WriteExtraBytes(std::span<uint8_t> bytes) const = 0;
    /// GetExtraBytesCount(), but 0 while there are none.
    virtual uint32_t GetExtraBytesSize() const = 0;
    /// Takes saved bytes over, which come from a file and may be anything.
    virtual void ReadExtraBytes(std::span<const uint8_t> bytes) = 0;
    /// Takes over that there were none.
    virtual void ClearExtraBytes() = 0;

    /// Nested; the first Suspend and the last Resume reach the element and its children. [setup]
    virtual void Suspend() = 0;
    virtual void Resume() = 0;

    /// Restarts the signal path. Takes the process lock. [process, locks]
    virtual void Reset() = 0;
    /// Reset() that also restarts an element that has seen no audio since its last reset.
    virtual void ClearState() = 0;
    /// Empties the block assemblers only. [process, locks]
    virtual void ResetTails() = 0;

    /// ProcessRegion() of region 0. [process, locks]
    virtual void Process(uint32_t frames, float* const* channels) = 0;
    /// Takes in commands, then works on the block in place. With 0 frames or null channels only
    /// the commands run. Holds the process lock. [process, locks]
    virtual void ProcessRegion(uint32_t region, uint32_t frames, float* const* channels) = 0;

    /// Works on regions of a recording, from the state after a reset each, and leaves the element
    /// in that state. Holds the process lock from begin to end. Not on the audio thread. [setup]
    virtual OfflineResult RunOffline(OfflineJob& job) = 0;

    /// Whether the element changes the signal; a change is faded over 10 ms. [process]
    virtual bool IsActive(uint32_t region) const = 0;
    /// Keeps a copy of the input, late by the latency, to fade to. Ignored on a child. [setup]
    virtual void SetDryHistoryEnabled(bool enabled) = 0;

    /// Bytes that the element and its children may take from the pool at once. [setup]
    virtual std::size_t GetProcessingMemorySize() const = 0;
};

} // namespace DSP

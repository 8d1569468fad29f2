// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementHost.h"
#include "frameworks/plugincore/dsp/elements/ElementParam.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/instance/HostCallback.h"
#include "frameworks/plugincore/instance/ThreadController.h"
#include "frameworks/plugincore/product/PluginDefinition.h"
#include "frameworks/qobase/util/Bytes.h"

#include <functional>
#include <optional>
#include <span>

/// What CreatePlugin is given, and what an instance keeps of it.
struct PluginSetup {
    PluginCoreHostFunction hostCallback = nullptr;
    void* hostRefcon = nullptr;
    String modulePath;
    PluginIdentity identity{};
    float sampleRate = 0;       ///< Hz
    uint32_t channelConfig = 0; ///< layout code
    bool traceAllocations = false;
};

/// What the entry asks of an instance: one operation for each selector that reaches it. The entry
/// has taken the lock of the context that an operation is called with, and has tested the record.
///
/// Answers are codes of PluginCoreResult.
struct PluginCore {
    PluginCore(const PluginDefinition& newDefinition, const PluginSetup& setup);
    PluginCore(const PluginCore&) = delete;
    PluginCore& operator=(const PluginCore&) = delete;
    virtual ~PluginCore();

    ThreadController& GetThreadController() { return threadController; }
    const PluginDefinition& GetDefinition() const { return definition; }

    /// "VST3" and the like; "?" for a number that names none.
    String GetFormatName() const;
    const String& GetModulePath() const { return modulePath; }
    /// Interface language that the wrapper forces, when it is one that there are texts for.
    const std::optional<String>& GetForcedLanguage() const { return forcedLanguage; }
    /// For a renderer of files: the user's settings and saved values neither change the instance
    /// nor are changed by it, and it writes no file by itself. [any]
    bool IsOffline() const { return isOffline; }

    virtual void Initialize() = 0;
    virtual void Terminate() = 0;
    /// Stack top at construction, 0 unless tracing was asked for.
    virtual uint64_t GetConstructStart() const = 0;

    virtual uint32_t GetAutomatableParamCount() const = 0;
    virtual void GetAutomatableParamList(ParamInfoRecord* records) const = 0;
    virtual uint32_t GetAutomatableParam(DSP::Context context, ParamValueRecord& record) const = 0;
    virtual uint32_t SetAutomatableParam(DSP::Context context, const ParamValueRecord& record) = 0;
    /// Is asked for each parameter that the host sets, on that side: true keeps the set value out.
    using ParamOverride = std::function<bool(DSP::Context context)>;
    /// An empty one, as at first, keeps nothing out. [setup]
    virtual void SetParamOverride(ParamOverride newOverride) = 0;
    virtual uint32_t GetElementParamCount() const = 0;
    virtual void GetElementParamList(ElementParamInfoRecord* records) const = 0;
    virtual uint32_t GetElementParam(DSP::Context context, ParamValueRecord& record) const = 0;
    virtual uint32_t SetElementParam(DSP::Context context, const ParamValueRecord& record) = 0;

    // The state as bytes that a host keeps; see StateRecord. [ui]

    /// Bytes that the state takes now. A later change of a value may change them.
    virtual uint32_t GetStateSize() = 0;
    /// False when the chunk doesn't take the place exactly; what fits is written.
    virtual bool GetChunk(std::span<uint8_t> chunk) = 0;
    /// The same without what is no difference between two states.
    virtual bool GetCompareChunk(std::span<uint8_t> chunk) = 0;
    /// `version` is that of the program that saved the chunk, or of its states; `source` goes with
    /// each changed value. False, and nothing changed, when the chunk can't be read.
    virtual bool SetChunk(Util::ByteSpan chunk, uint32_t version, DSP::ValueSource source) = 0;
    /// Whether the chunk's values are those of now. False when they can't be compared.
    virtual bool CompareChunk(Util::ByteSpan chunk, bool& equal) = 0;
    /// The host has saved or loaded: the instance is not as it was created.
    virtual void ClearDefaultState() = 0;

    /// Whether the caller is a host callback that runs within the signal path. [any]
    virtual bool IsInSignalPath() const = 0;
    /// Ignored from within the signal path.
    virtual void SetStreamFormat(float sampleRate, uint32_t channelConfig) = 0;
    /// The same, also for the format of now: the signal path starts anew with all that is bound to
    /// it.
    virtual void ForceReconfigure(float sampleRate, uint32_t channelConfig) = 0;
    /// Samples.
    virtual uint32_t GetLatency(DSP::Context context) const = 0;
    virtual uint32_t ResetProcessing(DSP::Context context) = 0;
    virtual void SetProcessingState(DSP::Context context, bool active, bool hold) = 0;

    virtual void onSettle() = 0;
    virtual void beforeProcess(uint32_t eventCount, const uint8_t* events) = 0;
    virtual void process(const ProcessRecord& record) = 0;
    virtual void afterProcess() = 0;
    virtual void ProcessSidePass(const SidePassRecord& record) = 0;

    virtual void TransformQuery(uint32_t& value) = 0;
    virtual void TransformNotify(uint32_t value) = 0;
    virtual void TransformReset() = 0;
    virtual bool TransformRead(TransformReadRecord& record) = 0;
    virtual bool LoadTransformData(uint32_t size, const void* data) = 0;

    /// Renders regions of a recording: comes without a lock, on a thread of the host's own.
    virtual uint32_t Render(RenderRecord& record) = 0;
    virtual uint32_t HostMessage(DSP::Context context, const HostMessageRecord& record) = 0;
    virtual uint32_t ElementCommand(ElementRecord& record) = 0;
    virtual void SetHostTrackValue(uint64_t value) = 0;

    /// Opens the editor at the place that the record names; true when it is open, also when it was
    /// before. [ui]
    virtual bool OpenEditor(const EditorRecord& record) = 0;
    virtual void CloseEditor() = 0;

protected:
    HostCallback& GetHostCallback() { return hostCallback; }
    const HostCallback& GetHostCallback() const { return hostCallback; }
    int32_t GetFormat() const { return identity.format; }

private:
    PluginIdentity identity;
    std::optional<String> forcedLanguage;
    const bool isOffline;
    const PluginDefinition& definition;
    HostCallback hostCallback;
    const String modulePath;
    ThreadController threadController;
};

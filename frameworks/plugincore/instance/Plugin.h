// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/Trackable.h"
#include "frameworks/plugincore/instance/EditorLink.h"
#include "frameworks/plugincore/instance/GestureReport.h"
#include "frameworks/plugincore/instance/HistoryKeeper.h"
#include "frameworks/plugincore/instance/HostFacts.h"
#include "frameworks/plugincore/instance/HostParams.h"
#include "frameworks/plugincore/instance/IdleTimer.h"
#include "frameworks/plugincore/instance/InstanceMessages.h"
#include "frameworks/plugincore/instance/LatencyReport.h"
#include "frameworks/plugincore/instance/PluginElementHost.h"
#include "frameworks/plugincore/instance/PluginFactory.h"
#include "frameworks/plugincore/instance/PluginSettings.h"
#include "frameworks/plugincore/instance/Preferences.h"
#include "frameworks/plugincore/instance/ReinstantiateWatch.h"
#include "frameworks/plugincore/instance/Rendering.h"
#include "frameworks/plugincore/instance/StateKeeper.h"
#include "frameworks/plugincore/instance/StreamFormat.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryDelegate.h"

#include <memory>
#include <optional>

/// One instance: joins the signal path and what belongs to it, each an object of its own, to what
/// the entry, the elements and the history call.
///
/// Threads: a processing thread (context 0) and a UI thread (context 1), each under its lock, and
/// the module's timer, which is a UI thread that comes when the UI lock is free. What both sides
/// touch is atomic; each part names its lock.
class Plugin final : public PluginCore,
                     public PluginElementHost,
                     public Util::HistoryDelegate,
                     public Trackable {
public:
    /// `newFactory` outlives the instance.
    Plugin(const PluginFactory& newFactory, const PluginSetup& setup);
    ~Plugin() override;

    // PluginCore
    void Initialize() override;
    void Terminate() override;
    uint64_t GetConstructStart() const override { return constructStart; }
    uint32_t GetAutomatableParamCount() const override { return params.GetAutomatableCount(); }
    void GetAutomatableParamList(ParamInfoRecord* records) const override;
    uint32_t GetAutomatableParam(DSP::Context context, ParamValueRecord& record) const override;
    uint32_t SetAutomatableParam(DSP::Context context, const ParamValueRecord& record) override;
    void SetParamOverride(ParamOverride newOverride) override;
    uint32_t GetElementParamCount() const override { return params.GetElementParamCount(); }
    void GetElementParamList(ElementParamInfoRecord* records) const override;
    uint32_t GetElementParam(DSP::Context context, ParamValueRecord& record) const override;
    uint32_t SetElementParam(DSP::Context context, const ParamValueRecord& record) override;
    uint32_t GetStateSize() override { return state.GetSize(); }
    bool GetChunk(std::span<uint8_t> chunk) override { return state.GetChunk(chunk); }
    bool GetCompareChunk(std::span<uint8_t> chunk) override { return state.GetCompareChunk(chunk); }
    bool SetChunk(Util::ByteSpan chunk, uint32_t version, DSP::ValueSource source) override;
    bool CompareChunk(Util::ByteSpan chunk, bool& equal) override;
    void ClearDefaultState() override { state.ClearDefaultFlag(); }
    bool IsInSignalPath() const override;
    void SetStreamFormat(float newSampleRate, uint32_t newChannelConfig) override;
    void ForceReconfigure(float newSampleRate, uint32_t newChannelConfig) override;
    uint32_t GetLatency(DSP::Context context) const override;
    uint32_t ResetProcessing(DSP::Context context) override;
    void SetProcessingState(DSP::Context context, bool active, bool hold) override;
    void onSettle() override;
    void beforeProcess(uint32_t eventCount, const uint8_t* events) override;
    void process(const ProcessRecord& record) override;
    void afterProcess() override;
    void ProcessSidePass(const SidePassRecord& record) override;
    void TransformQuery(uint32_t& value) override;
    void TransformNotify(uint32_t value) override { transform->Notify(value); }
    void TransformReset() override;
    bool TransformRead(TransformReadRecord& record) override { return transform->Read(record); }
    bool LoadTransformData(uint32_t size, const void* data) override;
    uint32_t Render(RenderRecord& record) override { return rendering.Answer(record); }
    uint32_t HostMessage(DSP::Context context, const HostMessageRecord& record) override;
    uint32_t ElementCommand(ElementRecord& record) override;
    void SetHostTrackValue(uint64_t value) override { hostFacts.SetTrackValue(value); }
    bool OpenEditor(const EditorRecord& record) override;
    void CloseEditor() override;

    // DSP::ElementHost, what PluginElementHost leaves
    uint64_t GetProcessPosition() const override;
    void LatencyChanged(DSP::Context context) override { latency.onElementChanged(context); }
    uint32_t GetProcessingSystemDelaySamples() const override;
    bool HasNativeWindow() const override;
    void ParamGrabbed(DSP::Element& element, const String& name) override;
    void ParamReleased(DSP::Element& element, const String& name) override;
    void ParamChanged(DSP::Element& element, const String& name) override;

    // Util::HistoryDelegate
    uint32_t GetStateVersion() const override { return GetDefinition().GetStateVersion(); }
    bool GetState(uint32_t size, void* buffer) override;
    void AddTime(Util::Bytes& chunk) override { state.AddTime(chunk); }
    bool SetState(uint32_t size, const void* buffer, uint32_t version) override;
    bool GetStateForFile(uint32_t size, void* buffer) override;
    void GetHistoryFilePath(String& path) override;
    void StateChanged() override { editor.StateChanged(); }
    Util::Expected<void> SaveHistory(const HistoryModel& model) override;
    void LoadHistory(HistoryModel& model) override;

    /// True once after the editor was notified by StateChanged(), which comes again then. [ui]
    bool TakeStateChange() { return editor.TakeStateChange(); }
    /// Null when the product has no history. [ui]
    HistoryManager* GetHistory() const { return history.Get(); }

    DSP::DSPSet& GetSet() const { return transform->GetSet(); }
    /// The user's settings for this product, also of an offline instance, which looks at them only
    /// for what it is asked to do. [ui]
    Util::ConfigFile& GetConfigFile() { return settings.GetProductFile(); }
    /// The settings that products share; null when there are none. [ui]
    Util::ConfigFile* GetSharedConfigFile() { return settings.GetSharedFile(); }
    const Util::Uuid& GetSessionUuid() const { return state.GetSessionUuid(); }

    /// What the host is; known from Initialize() on. [ui]
    const HostFacts& GetHostFacts() const { return hostFacts; }
    /// Seconds that the host has measured of that side; empty when it measures none. Asks the host.
    /// [ui]
    std::optional<float> AskHostSeconds(DSP::Context side) const;
    /// While it is off, neither changes nor gestures are reported to the host. [any]
    void SetAutomationEnabled(bool isEnabled) { GetPhase().automationEnabled = isEnabled; }

    /// The open editor, of the calling thread from now on; it stays the caller's. Null: there is
    /// none. Under the UI lock. [ui]
    void AttachEditor(Editor* newEditor);
    Editor* GetEditor() const { return editor.Get(); }
    /// For what the user does in one go. [ui]
    GestureReport& GetGestures() { return gestures; }

private:
    IdleTimer::Setup MakeTimerSetup();
    InstanceMessages MakeMessages();
    void RunIdleWork();
    uint32_t
    SetParam(const std::optional<HostParams::Place>& place, DSP::Context context, float value);
    bool MayReport() const;
    void Reconfigure(const StreamFormat& wanted);

    const PluginFactory& factory;
    const uint64_t constructStart;
    HostFacts hostFacts;
    PluginSettings settings;
    StreamFormat format;
    LatencyReport latency;
    ParamOverride paramOverride;
    ReinstantiateWatch reinstantiateWatch;
    EditorLink editor;
    GestureReport gestures;
    const std::unique_ptr<DSP::TransformBase> transform; // when made, may call what stands above it
    const std::unique_ptr<const Translator> translator;
    HostParams params;
    Preferences preferences;
    HistoryKeeper history;
    StateKeeper state;
    Rendering rendering;
    InstanceMessages messages;
    std::unique_ptr<Editor> ownEditor; // what OpenEditor() has made; null: none
    IdleTimer timer;
};

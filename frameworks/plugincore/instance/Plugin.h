// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/PersistentParamsLink.h"
#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "frameworks/plugincore/dsp/signal/MemoryPool.h"
#include "frameworks/plugincore/instance/BlockRunner.h"
#include "frameworks/plugincore/instance/EditorLink.h"
#include "frameworks/plugincore/instance/GestureBook.h"
#include "frameworks/plugincore/instance/HistoryKeeper.h"
#include "frameworks/plugincore/instance/HostFacts.h"
#include "frameworks/plugincore/instance/LatencyReport.h"
#include "frameworks/plugincore/instance/PluginFactory.h"
#include "frameworks/plugincore/instance/PluginSettings.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryDelegate.h"
#include "frameworks/qobase/util/TaskQueue.h"
#include "frameworks/qobase/util/Timer.h"
#include "frameworks/qobase/util/Uuid.h"

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace Preset {
class PresetManager;
}

/// One instance: owns the signal path, keeps a latency for each side and tells the host when they
/// change, and brings everything to a new stream format.
///
/// Threads: a processing thread (context 0) and a UI thread (context 1), each under its lock, and
/// the module's timer, which is a UI thread that comes when the UI lock is free. What both sides
/// touch is atomic.
class Plugin final : public PluginCore, public DSP::ElementHost, public Util::HistoryDelegate {
public:
    Plugin(const PluginFactory& factory, const PluginSetup& setup);
    ~Plugin() override;

    // PluginCore
    void Initialize() override;
    void Terminate() override;
    uint64_t GetConstructStart() const override { return constructStart; }
    uint32_t GetAutomatableParamCount() const override;
    void GetAutomatableParamList(ParamInfoRecord* records) const override;
    uint32_t GetAutomatableParam(DSP::Context context, ParamValueRecord& record) const override;
    uint32_t SetAutomatableParam(DSP::Context context, const ParamValueRecord& record) override;
    uint32_t GetElementParamCount() const override;
    void GetElementParamList(ElementParamInfoRecord* records) const override;
    uint32_t GetElementParam(DSP::Context context, ParamValueRecord& record) const override;
    uint32_t SetElementParam(DSP::Context context, const ParamValueRecord& record) override;
    uint32_t GetStateSize() override;
    bool GetChunk(std::span<uint8_t> chunk) override;
    bool GetCompareChunk(std::span<uint8_t> chunk) override;
    bool SetChunk(Util::ByteSpan chunk, uint32_t version, DSP::ValueSource source) override;
    bool CompareChunk(Util::ByteSpan chunk, bool& equal) override;
    void ClearDefaultState() override { defaultStateFlag = false; }
    bool IsInSignalPath() const override;
    void SetStreamFormat(float newSampleRate, uint32_t newChannelConfig) override;
    uint32_t GetLatency(DSP::Context context) const override
    {
        return latency.GetWithHostDelay(context);
    }
    uint32_t ResetProcessing(DSP::Context context) override;
    void SetProcessingState(DSP::Context context, bool active, bool hold) override;
    void onSettle() override;
    void beforeProcess(uint32_t eventCount, const uint8_t* events) override;
    void process(const ProcessRecord& record) override;
    void afterProcess() override;
    void ProcessSidePass(const SidePassRecord& record) override;
    void TransformQuery(uint32_t& value) override { transform->Query(value); }
    void TransformNotify(uint32_t value) override { transform->Notify(value); }
    void TransformReset() override;
    bool TransformRead(TransformReadRecord& record) override { return transform->Read(record); }
    bool LoadTransformData(uint32_t size, const void* data) override
    {
        return transform->LoadData(size, data);
    }
    uint32_t HostMessage(DSP::Context context, const HostMessageRecord& record) override;
    uint32_t ElementCommand(ElementRecord& record) override;
    void SetHostTrackValue(uint64_t value) override { hostFacts.SetTrackValue(value); }

    // DSP::ElementHost
    void ReserveProcessingMemory(std::size_t bytes) override { memoryPool.Reserve(bytes); }
    void* AllocProcessingMemory(std::size_t bytes) override { return memoryPool.Allocate(bytes); }
    void FreeProcessingMemory(void* block, std::size_t bytes) override
    {
        memoryPool.Free(block, bytes);
    }
    std::size_t GetProcessingMemoryMark() override { return memoryPool.GetMark(); }
    void SetProcessingMemoryMark(std::size_t mark) override { memoryPool.SetMark(mark); }
    void PrepareFFT(uint32_t order) override { fftPool.PrepareFFT(order); }
    DSP::FFTImpl<float>* GetFFT(uint32_t order) override { return fftPool.GetFFT(order); }
    bool IsProcessing() const override { return blocks.IsProcessing(); }
    Util::CriticalSection& GetProcessLock() override
    {
        return GetThreadController().GetProcessLock();
    }
    bool IsPositionless() const override { return blocks.GetRenderFlagB(); }
    bool GetRenderFlagA() const override { return blocks.GetRenderFlagA(); }
    uint32_t GetMaxBlockFrames() const override { return blocks.GetMaxFrames(); }
    void SetProcessBlockOffset(uint32_t frames) override { blocks.SetBlockOffset(frames); }
    uint32_t GetProcessBlockOffset() const override { return blocks.GetBlockOffset(); }
    uint64_t GetProcessPosition() const override;
    std::optional<int64_t> GetTransportPosition() const override
    {
        return blocks.GetTransportPosition();
    }
    void LatencyChanged(DSP::Context context) override { latency.onElementChanged(context); }
    uint32_t GetProcessingSystemDelaySamples() const override
    {
        return latency.GetReported(DSP::Context::Process);
    }
    bool IsUIThread() const override { return !blocks.IsCallerInside(); }
    bool MayChangeDSP() const override;
    bool IsReconfiguring() const override { return reconfiguring; }
    bool IsSuspended() const override { return suspended; }
    void MarkProcessDirty() override { processDirty = true; }
    Util::TaskQueue& GetTaskQueue() override { return taskQueue; }
    void CommandPosted(DSP::Element& element, DSP::DSPCommand& command) override;
    void CommandFinished(DSP::Element& element, DSP::DSPCommand& command) override;
    void ParamGrabbed(DSP::Element& element, const String& name) override;
    void ParamReleased(DSP::Element& element, const String& name) override;
    void ParamChanged(DSP::Element& element, const String& name) override;
    std::shared_ptr<Controller::ControllerSet>
    CreateControllerSet(DSP::ElementDispatcher& element) override;

    // Util::HistoryDelegate
    uint32_t GetStateVersion() const override { return GetDefinition().GetStateVersion(); }
    bool GetState(uint32_t size, void* buffer) override;
    bool SetState(uint32_t size, const void* buffer, uint32_t version) override;
    bool GetStateForFile(uint32_t size, void* buffer) override;
    void GetHistoryFilePath(String& path) override;
    void StateChanged() override { editor.StateChanged(); }
    Util::Expected<void> SaveHistory(const HistoryModel& model) override;
    void LoadHistory(HistoryModel& model) override;

    /// True once after the editor was told by StateChanged(); it isn't told again before. [ui]
    bool TakeStateChange() { return editor.TakeStateChange(); }
    /// Null when the product has no history. [ui]
    HistoryManager* GetHistory() const { return history.Get(); }

    /// IsProcessing() without the present call: a block came in the last 2500 ms. [any]
    bool RecentlyProcessed() const { return blocks.RecentlyProcessed(); }

    DSP::DSPSet& GetSet() const { return transform->GetSet(); }
    /// The user's settings for this product, also of an offline instance, which looks at them only
    /// for what it is asked to do. [ui]
    Util::ConfigFile& GetConfigFile() { return settings.GetProductFile(); }
    /// The settings that products share; null when there are none. [ui]
    Util::ConfigFile* GetSharedConfigFile() { return settings.GetSharedFile(); }
    const Util::Uuid& GetSessionUuid() const { return sessionUuid; }

    /// The open editor, of the calling thread from now on; it stays the caller's. Null: there is
    /// none. Under the UI lock. [ui]
    void AttachEditor(Editor* newEditor);
    Editor* GetEditor() const { return editor.Get(); }

    /// Tells the host that the user has changed the instance's state. [ui]
    void NotifyDirty() { GetHostCallback().NotifyDirty(); }

    /// Something that the user does in one go, from here to the end of the scope: the host hears
    /// once, at the end, that the state has changed, if it has. [ui]
    class UserAction {
    public:
        explicit UserAction(Plugin& newPlugin);
        UserAction(const UserAction&) = delete;
        UserAction& operator=(const UserAction&) = delete;
        ~UserAction();

        /// What changes is no parameter.
        void MarkChanged();

    private:
        Plugin& plugin;
    };

private:
    // One row of the flat list of all elements' parameters.
    struct ElementParam {
        String elementName;
        uint32_t elementIndex;
        DSP::Element* element;
        DSP::ParamObject param;
    };

    // Plugin.cpp
    void Tick();
    void RunIdleWork();
    void RefreshEvent(ParamEventRecord& event);

    // PluginParams.cpp
    void BuildElementParamList();
    void SetParam(DSP::Element& element,
                  const DSP::ParamObject& param,
                  DSP::Context context,
                  float value);

    // PluginGestures.cpp
    bool MayReport() const;
    void ReportParam(uint32_t kind, const DSP::Element& element, const String& name);
    void StorePersistentParams();
    void LoadPersistentParams();

    // PluginState.cpp
    Util::Dictionary BuildCommonDictionary() const;
    Util::Dictionary BuildStateDictionary() const;
    Util::Dictionary BuildCompareDictionary() const;
    String WriteText(const Util::Dictionary& dictionary);
    bool WriteStateChunk(const Util::Dictionary& dictionary, std::span<uint8_t> chunk);
    void ApplyStateDictionary(Util::ByteSpan text, DSP::ValueSource source);
    void ApplyLegacyDictionary(const Util::Dictionary& state, DSP::ValueSource source);
    void ApplyVersion1Dictionary(const Util::Dictionary& state, DSP::ValueSource source);
    void LoadPendingChunks();

    // PluginPresets.cpp
    uint32_t PresetMessage(DSP::Context context, const HostMessageRecord& record);
    bool MakePresets();

    // PluginFormat.cpp
    void Reconfigure(float newSampleRate, uint32_t newChannelConfig);
    void TakeFormat(float newSampleRate, uint32_t newChannelConfig);
    void FollowFormat(const Util::Bytes& state);
    void ReturnToFormat(float formerRate, uint32_t formerConfig, const Util::Bytes& state) noexcept;
    Util::Bytes SaveState();
    void RestoreState(const Util::Bytes& state);

    float sampleRate;       // Hz
    uint32_t channelConfig; // layout code
    const uint64_t constructStart;
    HostFacts hostFacts;
    PluginSettings settings;
    LatencyReport latency;
    Util::Uuid sessionUuid; // UI side
    const std::unique_ptr<Util::DictionaryReader> reader;
    const std::unique_ptr<Util::DictionaryWriter> writer;
    const std::unique_ptr<Context::ContextBase> sessionContext;
    bool defaultStateFlag = true;          // the host has neither saved nor loaded a state; UI side
    std::atomic<bool> reconfiguring{true}; // until construction is done, then during a new format
    std::atomic<bool> initialized{false};
    std::atomic<bool> suspended{false};
    std::atomic<bool> switching{false};
    std::atomic<bool> processDirty{false}; // the tick has to finish something
    DSP::MemoryPool memoryPool;
    DSP::FFTPool fftPool;
    Util::TaskQueue taskQueue;
    std::vector<DSP::DSPCommand*> liveCommands; // under way; UI side
    BlockRunner blocks;                         // before the transform, whose elements ask it
    EditorLink editor;
    std::vector<Util::Bytes> pendingChunks; // states for the tick to load; UI side
    GestureBook gestures;                   // UI side
    std::unique_ptr<DSP::TransformBase> transform;
    std::unique_ptr<Preset::PresetManager> presets; // made at its first use; UI side
    std::unique_ptr<Controller::PersistentParamsLink> persistentParams; // null offline
    HistoryKeeper history;
    std::vector<ElementParam> elementParamList;
    std::unique_ptr<Util::PeriodicTimer> timer; // last: its end waits for a running tick
};

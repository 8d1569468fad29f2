// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/Plugin.h"

#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"
#include "frameworks/plugincore/instance/StreamFormat.h"
#include "frameworks/plugincore/preset/manager/PresetManager.h"
#include "frameworks/plugincore/product/PluginInfo.h"
#include "frameworks/qobase/util/Process.h"
#include "frameworks/qobase/util/Tick.h"

#include <algorithm>
#include <exception>
#include <mutex>
#include <utility>

namespace {

// Gaps in the stream that are shorter than this don't hand the signal path to the UI side.
constexpr uint32_t ProcessingHoldMilliseconds = 2500;

constexpr uint32_t IgnoredHostMessage = 0x8070A002;
constexpr uint32_t EditorTextMessage = 0x800523BC;

// No host delays by more than this, a minute and a half at the highest rate; a dry line that long
// can still be had.
constexpr int32_t LongestFrozenDelay = 1 << 24;

String SettingsPath(const String& vendor, const String& identifier)
{
    return String("SOFTWARE/%1/%2").arg(vendor).arg(identifier);
}

String ProductSettingsPath(const PluginDefinition& definition)
{
    return definition.GetConfigPath().value_or(
        SettingsPath(definition.GetVendor(), definition.GetShortName()));
}

std::unique_ptr<Util::ConfigFile> MakeSharedConfigFile(const PluginDefinition& definition)
{
    const String identifier = definition.GetSharedConfigId();
    return identifier.IsEmpty() ? nullptr
                                : std::make_unique<Util::ConfigFile>(
                                      SettingsPath(definition.GetVendor(), identifier));
}

std::optional<uint32_t> ReadFrozenDelay(const Util::ConfigFile& settings)
{
    const int32_t samples = settings.ReadInt("FrozenSystemDelay", -1);
    const bool isUsable = samples >= 0 && samples <= LongestFrozenDelay;
    return isUsable ? std::optional<uint32_t>(static_cast<uint32_t>(samples)) : std::nullopt;
}

uint64_t StackTop()
{
    return reinterpret_cast<uint64_t>(__builtin_frame_address(0));
}

} // namespace

Plugin::Plugin(const PluginFactory& factory, const PluginSetup& setup)
    : PluginCore(factory.GetDefinition(), setup)
    , sampleRate(IsServableRate(setup.sampleRate) ? setup.sampleRate : FallbackSampleRate)
    , channelConfig(IsServableLayout(setup.channelConfig) ? setup.channelConfig
                                                          : FallbackChannelConfig)
    , channelCount(DSP::GetChannelCount(channelConfig))
    , maxBlockFrames(factory.GetDefinition().GetMaxBlockFrames())
    , constructStart(setup.traceAllocations ? StackTop() : 0)
    , hostIdentity(IdentifyHost(Util::GetExecutablePath()))
    , configFile(ProductSettingsPath(factory.GetDefinition()))
    , sharedConfigFile(MakeSharedConfigFile(factory.GetDefinition()))
    , delayCompensationEnabled(IsOffline() || configFile.ReadBool("DelayCompensationEnable", true))
    , frozenSystemDelay(IsOffline() ? std::nullopt : ReadFrozenDelay(configFile))
    , sessionUuid(Util::MakeUuid())
    , reader(factory.CreateReader())
    , writer(factory.CreateWriter())
    , sessionContext(factory.CreateContext())
    , memoryPool("PluginMemoryPool")
    , fftPool("PluginFFTPool")
    , taskQueue(1)
{
    // In the body, so that elements under construction find a null pointer in its place.
    transform = factory.CreateTransform(*this, sampleRate, channelConfig);
    // The host has no instance yet that it could be told about.
    UpdateLatency(DSP::Context::UI, Notify::No);
    UpdateLatency(DSP::Context::Process, Notify::No);
    transform->PlanDryDelay();
    BuildElementParamList();
    history = factory.CreateHistory(*this);
    if (const uint32_t period = GetDefinition().GetTimerPeriod()) {
        timer = std::make_unique<Util::PeriodicTimer>(period, [this] { Tick(); });
    }
    if (!IsOffline()) {
        persistentParams = std::make_unique<Controller::PersistentParamsLink>(
            Controller::PersistentParamsHolder::Share(configFile.GetKeyPath()));
        LoadPersistentParams();
    }
    reconfiguring = false;
}

Plugin::~Plugin()
{
    suspended = true;
    timer.reset();
    FlushHistoryAtEnd();
    history.reset();
    persistentParams.reset();
    presets.reset();
    transform.reset(); // its elements give back the commands that they still hold
    // What is left was lost to a full ring.
    for (DSP::DSPCommand* command : liveCommands) {
        delete command;
    }
}

void Plugin::Initialize()
{
    WindowHintRecord hint{};
    if (GetHostCallback().Ask(HostOpcodeGetWindowHint, DSP::Context::Process, &hint)) {
        hostWindowHint = hint;
    }
    initialized = true;
}

void Plugin::Terminate()
{
    initialized = false;
    if (IsInSignalPath()) {
        return; // the end of the instance writes what is left
    }
    const Util::CriticalSectionGuard guard(GetThreadController().GetUILock());
    FlushHistory();
}

bool Plugin::RecentlyProcessed() const
{
    const uint32_t last = lastProcessTick;
    return last != 0 && Util::GetTickCount() - last < ProcessingHoldMilliseconds;
}

bool Plugin::IsProcessing() const
{
    return processing || RecentlyProcessed();
}

bool Plugin::IsUIThread() const
{
    return processThread.load() != std::this_thread::get_id();
}

bool Plugin::MayChangeDSP() const
{
    const std::thread::id caller = std::this_thread::get_id();
    if (caller == processThread.load() || caller == audioThread.load()) {
        return true;
    }
    const bool exempt = GetFormat() == FormatDPMAudioSuite || GetFormat() == FormatAU;
    return exempt || !IsUIThread() || suspended || reconfiguring || !IsProcessing();
}

uint64_t Plugin::GetProcessPosition() const
{
    return transform->GetSamplesProcessed() + processBlockOffset;
}

void Plugin::AttachEditor(Editor* newEditor)
{
    // A new editor finds what a change of format has left to be done already done.
    editorPending = false;
    LoadPendingChunks();
    editor = newEditor;
    editorThread = newEditor != nullptr ? std::this_thread::get_id() : std::thread::id();
    FollowEditor();
}

void Plugin::CommandPosted(DSP::Element& /*element*/, DSP::DSPCommand& command)
{
    liveCommands.push_back(&command);
}

void Plugin::CommandFinished(DSP::Element& /*element*/, DSP::DSPCommand& command)
{
    const auto found = std::find(liveCommands.begin(), liveCommands.end(), &command);
    if (found != liveCommands.end()) {
        *found = liveCommands.back();
        liveCommands.pop_back();
    }
}

uint32_t Plugin::HostMessage(DSP::Context context, const HostMessageRecord& record)
{
    switch (record.message) {
    case IgnoredHostMessage:
        return PluginCoreSuccess;
    case EditorTextMessage:
        return PluginCoreNoEditor;
    case PLUGIN_CORE_MESSAGE_PRESET:
        return PresetMessage(context, record);
    default:
        return PluginCoreUnsupported;
    }
}

uint32_t Plugin::ElementCommand(ElementRecord& record)
{
    const auto& elements = transform->GetSet().GetElements();
    switch (record.op) {
    case ElementOpGetCount:
        record.count = static_cast<uint32_t>(elements.size());
        return PluginCoreSuccess;
    case ElementOpGetElement: {
        if (record.count != elements.size() || record.index >= elements.size()) {
            return PluginCoreUnsupported;
        }
        const auto entry = std::next(elements.begin(), record.index);
        CopyText(record.name, entry->first);
        record.element = entry->second.get();
        return PluginCoreSuccess;
    }
    case ElementOpSetObserver:
        transform->SetElementObserver({record.observer, record.observerContext});
        return PluginCoreSuccess;
    default:
        return PluginCoreUnsupported;
    }
}

void Plugin::SetHostTrackValue(uint64_t value)
{
    hostTrackValue = value;
    hasHostTrackValue = true;
}

void Plugin::Tick()
{
    if (!initialized || !GetThreadController().GetUILock().TryEnter()) {
        return;
    }
    std::vector<HostCallback::Notification> notifications;
    std::exception_ptr failure;
    {
        const std::unique_lock guard(GetThreadController().GetUILock(), std::adopt_lock);
        if (!initialized) {
            return; // the lock came with the end of the instance's work
        }
        GetHostCallback().Hold();
        try {
            RunIdleWork();
        } catch (...) {
            failure = std::current_exception(); // the host still hears of what was done
        }
        notifications = GetHostCallback().TakeHeld();
    }
    // With the lock free again: the host may answer with calls of its own, on any thread.
    for (HostCallback::Notification& notification : notifications) {
        // What counts is what there is now: audio may have started meanwhile and changed a latency,
        // the host may have set a parameter.
        if (notification.opcode == HostOpcodeLatencyChanged) {
            notification.latency = GetLatencyOf(notification.context).reported;
        } else if (notification.opcode == HostOpcodeParamEvent) {
            RefreshEvent(notification.event);
        }
        GetHostCallback().Send(notification);
    }
    if (failure) {
        std::rethrow_exception(failure); // to the timer, which notes it
    }
}

void Plugin::RefreshEvent(ParamEventRecord& event)
{
    // Whoever has the lock may be at the disk, and all instances share the timer.
    if (!GetThreadController().GetUILock().TryEnter()) {
        return;
    }
    const std::unique_lock guard(GetThreadController().GetUILock(), std::adopt_lock);
    ParamValueRecord now{event.index, event.value};
    if (GetAutomatableParam(DSP::Context::UI, now) == PluginCoreSuccess) {
        event.value = now.value;
    }
}

void Plugin::RunIdleWork()
{
    FinishEditor();
    if (processDirty.exchange(false)) {
        NotifyHistory();
    }
    transform->GetSet().OnUIIdle();
    transform->GetSet().OnSyncParams();
    if (persistentParams) {
        persistentParams->ApplyChanges();
    }
    if (history) {
        history->onIdle();
    }
    CheckLatency(DSP::Context::UI);
}

void Plugin::FinishEditor()
{
    if (!editorPending) {
        return;
    }
    if (editor != nullptr) {
        editor->AttachControllers();
    }
    editorPending = false; // not before: what fails is tried again at the next tick
    LoadPendingChunks();
}

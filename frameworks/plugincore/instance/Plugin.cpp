// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/Plugin.h"

#include "frameworks/plugincore/instance/ChangedParams.h"
#include "frameworks/plugincore/instance/ParamRecords.h"
#include "frameworks/plugincore/product/PluginInfo.h"
#include "frameworks/qobase/util/Realtime.h"

#include <iterator>

namespace {

constexpr uint32_t IgnoredHostMessage = 0x8070A002;
constexpr uint32_t EditorTextMessage = 0x800523BC;

uint32_t
ReadParam(const std::optional<HostParams::Place>& place, DSP::Context context, float& value)
{
    if (!place) {
        return PluginCoreUnsupported;
    }
    value = GetNormalised(*place->param, context);
    return PluginCoreSuccess;
}

uint64_t StackTop()
{
    return reinterpret_cast<uint64_t>(__builtin_frame_address(0));
}

} // namespace

Plugin::Plugin(const PluginFactory& newFactory, const PluginSetup& setup)
    : PluginCore(newFactory.GetDefinition(), setup)
    , PluginElementHost({GetThreadController().GetProcessLock(),
                         newFactory.GetDefinition().GetMaxBlockFrames(),
                         GetFormat() == FormatDPMAudioSuite || GetFormat() == FormatAU})
    , factory(newFactory)
    , constructStart(setup.traceAllocations ? StackTop() : 0)
    , settings(newFactory.GetDefinition(), IsOffline())
    , format(StreamFormat{setup.sampleRate, setup.channelConfig}.WithFallbacks())
    , latency(settings.ReadLatencySettings(), *this, GetHostCallback())
    , reinstantiateWatch(settings.ReadResourceOverride())
    , gestures({GetHostCallback(), editor, params, history})
    , transform(factory.CreateTransform(*this, format.sampleRate, format.channelConfig))
    , translator(newFactory.CreateTranslator(GetForcedLanguage()))
    , params(*transform, *translator)
    , preferences(GetSet(), settings.GetProductFile(), IsOffline())
    , history(factory.GetDefinition(), IsOffline())
    , state({*transform, editor, history}, factory, hostFacts.GetNumber() == HostIdentity::ProTools)
    , rendering({factory, *transform, format, state, GetThreadController().GetUILock()})
    , messages(MakeMessages())
    , timer(MakeTimerSetup())
{
    latency.Attach(transform.get());
    // Without notice: the host has no instance yet.
    latency.Update(DSP::Context::UI, LatencyReport::Notify::No);
    latency.Update(DSP::Context::Process, LatencyReport::Notify::No);
    transform->PlanDryDelay();
    history.Adopt(factory.CreateHistory(*this));
    timer.Start(GetDefinition().GetTimerPeriod());
    preferences.Load();
    GetPhase().reconfiguring = false;
}

Plugin::~Plugin()
{
    rendering.End();
    GetPhase().suspended = true;
    timer.Stop();
    {
        const Util::CriticalSectionGuard guard(GetThreadController().GetUILock());
        CloseEditor();
    }
    history.FlushAtEnd(GetThreadController().GetUILock());
    latency.Attach(nullptr);
}

InstanceMessages Plugin::MakeMessages()
{
    const auto onChanged = [this] {
        latency.Check(DSP::Context::UI);
        history.onStateChanged();
    };
    return {{GetDefinition(),
             GetModulePath(),
             settings.GetProductFile(),
             !IsOffline(),
             GetSet(),
             state,
             gestures,
             onChanged},
            {history, *this, GetSet(), state, gestures, onChanged},
            params};
}

IdleTimer::Setup Plugin::MakeTimerSetup()
{
    return {GetThreadController().GetUILock(),
            GetHostCallback(),
            GetPhase().initialized,
            [this] { RunIdleWork(); },
            [this](ParamEventRecord& event) {
                ReadParam(params.GetAutomatable(event.index), DSP::Context::UI, event.value);
            },
            [this](DSP::Context context) { return latency.GetReported(context); }};
}

void Plugin::Initialize()
{
    transform->Start();
    hostFacts.Ask(GetHostCallback());
    GetPhase().initialized = true;
}

void Plugin::Terminate()
{
    GetPhase().initialized = false;
    transform->Stop();
    if (IsInSignalPath()) {
        return; // the end of the instance writes what is left
    }
    const Util::CriticalSectionGuard guard(GetThreadController().GetUILock());
    history.Flush();
}

void Plugin::AttachEditor(Editor* newEditor)
{
    // A new editor finds what a change of format has left to be done already done.
    editor.DropPending();
    state.LoadPending();
    editor.Attach(newEditor);
    history.onEditorAttached(editor.IsOpen());
}

bool Plugin::OpenEditor(const EditorRecord& record)
{
    if (editor.IsOpen()) {
        return true;
    }
    ownEditor = factory.MakeEditor(*this, {record.parentWindow, record.x, record.y, record.scale});
    if (ownEditor) {
        AttachEditor(ownEditor.get());
    }
    return ownEditor != nullptr;
}

void Plugin::CloseEditor()
{
    if (ownEditor) {
        AttachEditor(nullptr);
        ownEditor.reset();
    }
}

bool Plugin::HasNativeWindow() const
{
    return editor.IsOpen() && editor.Get()->GetNativeWindow() != 0;
}

std::optional<float> Plugin::AskHostSeconds(DSP::Context side) const
{
    const auto opcode =
        side == DSP::Context::UI ? HostOpcodeGetUISeconds : HostOpcodeGetProcessSeconds;
    float seconds = 0;
    return GetHostCallback().Ask(opcode, DSP::Context::UI, &seconds) ? std::optional<float>(seconds)
                                                                     : std::nullopt;
}

void Plugin::SetParamOverride(ParamOverride newOverride)
{
    paramOverride = std::move(newOverride);
}

void Plugin::GetAutomatableParamList(ParamInfoRecord* records) const
{
    params.ListAutomatable(records);
}

uint32_t Plugin::GetAutomatableParam(DSP::Context context, ParamValueRecord& record) const
{
    return ReadParam(params.GetAutomatable(record.index), context, record.value);
}

uint32_t Plugin::SetAutomatableParam(DSP::Context context, const ParamValueRecord& record)
{
    return SetParam(params.GetAutomatable(record.index), context, record.value);
}

void Plugin::GetElementParamList(ElementParamInfoRecord* records) const
{
    params.ListElementParams(records);
}

uint32_t Plugin::GetElementParam(DSP::Context context, ParamValueRecord& record) const
{
    return ReadParam(params.GetElementParam(record.index), context, record.value);
}

uint32_t Plugin::SetElementParam(DSP::Context context, const ParamValueRecord& record)
{
    return SetParam(params.GetElementParam(record.index), context, record.value);
}

uint32_t
Plugin::SetParam(const std::optional<HostParams::Place>& place, DSP::Context context, float value)
{
    if (!place) {
        return PluginCoreUnsupported;
    }
    if (paramOverride && paramOverride(context)) {
        return PluginCoreSuccess;
    }
    // Only around the set: the history and the host have their own arithmetic.
    const auto set = [&] {
        const Util::ScopedDenormalGuard denormalGuard;
        return SetNormalised(*place->param, value, context, DSP::SourceHost);
    };
    if (context == DSP::Context::Process) {
        const BlockRunner::Inside inside(GetBlocks());
        if (set()) {
            MarkProcessDirty();
        }
    } else {
        // The process side may have moved on: the comparison is with what it has now.
        state.LoadPending();
        place->element->SyncParams();
        if (set()) {
            history.onStateChanged();
        }
    }
    latency.Check(context);
    return PluginCoreSuccess;
}

bool Plugin::MayReport() const
{
    return !GetPhase().switching && !IsReconfiguring() && !state.HasPending() &&
           GetPhase().automationEnabled;
}

void Plugin::ParamGrabbed(DSP::Element& element, const String& name)
{
    preferences.Grabbed(element, name);
    gestures.Grabbed(element, name, MayReport());
}

void Plugin::ParamReleased(DSP::Element& element, const String& name)
{
    gestures.Released(element, name);
    preferences.Released(element, name);
}

void Plugin::ParamChanged(DSP::Element& element, const String& name)
{
    if (MayReport()) {
        gestures.Changed(element, name);
    }
}

bool Plugin::SetChunk(Util::ByteSpan chunk, uint32_t version, DSP::ValueSource source)
{
    return state.SetChunk(chunk, version, source);
}

bool Plugin::CompareChunk(Util::ByteSpan chunk, bool& equal)
{
    return state.CompareChunk(chunk, equal);
}

bool Plugin::GetState(uint32_t size, void* buffer)
{
    return GetChunk({static_cast<uint8_t*>(buffer), size});
}

bool Plugin::GetStateForFile(uint32_t size, void* buffer)
{
    return GetCompareChunk({static_cast<uint8_t*>(buffer), size});
}

bool Plugin::SetState(uint32_t size, const void* buffer, uint32_t version)
{
    const GestureReport::UserAction action(gestures); // one for all that comes back
    return SetChunk({static_cast<const uint8_t*>(buffer), size}, version, DSP::SourceController);
}

void Plugin::GetHistoryFilePath(String& path)
{
    path = history.MakeFilePath(GetSessionUuid());
}

Util::Expected<void> Plugin::SaveHistory(const HistoryModel& model)
{
    return history.Save(*this, history.MakeFilePath(GetSessionUuid()), model);
}

void Plugin::LoadHistory(HistoryModel& model)
{
    history.Load(*this, history.MakeFilePath(GetSessionUuid()), model);
}

bool Plugin::LoadTransformData(uint32_t size, const void* data)
{
    return transform->LoadData(size, data);
}

uint32_t Plugin::HostMessage(DSP::Context context, const HostMessageRecord& record)
{
    switch (record.message) {
    case IgnoredHostMessage:
        return PluginCoreSuccess;
    case EditorTextMessage:
        return PluginCoreNoEditor;
    case PLUGIN_CORE_MESSAGE_CHANGED_PARAMS:
        if (context != DSP::Context::UI || record.data == nullptr ||
            record.length < sizeof(ChangedParamsRecord)) {
            return PluginCoreUnsupported;
        }
        AnswerChangedParams(GetSet(), *static_cast<ChangedParamsRecord*>(record.data));
        return PluginCoreSuccess;
    default:
        if (messages.Answer(context, record) == PluginCoreSuccess) {
            return PluginCoreSuccess;
        }
        return transform->HostMessage(context, record.message, record.length, record.data)
                   ? PluginCoreSuccess
                   : PluginCoreUnsupported;
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

void Plugin::RunIdleWork()
{
    if (editor.FinishFormat()) {
        state.LoadPending();
    }
    if (GetPhase().processDirty.exchange(false)) {
        history.onStateChanged();
    }
    transform->GetSet().OnUIIdle();
    transform->GetSet().OnSyncParams();
    preferences.ApplyChanges();
    settings.WriteWaiting();
    transform->Idle();
    messages.onIdle();
    history.onIdle();
    if (reinstantiateWatch.TakeChange()) {
        GetHostCallback().NotifyReinstantiate();
    }
    latency.Check(DSP::Context::UI);
}

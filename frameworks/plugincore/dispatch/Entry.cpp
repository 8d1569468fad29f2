// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dispatch/Entry.h"

#include "frameworks/plugincore/dispatch/EntryHandlers.h"
#include "frameworks/plugincore/product/PluginInfo.h"

#include <array>
#include <exception>
#include <iterator>

namespace {

/// Which contexts a selector takes.
enum class Side { Any, Either, Process, UI };

/// When a null record is refused.
enum class Record {
    None,      ///< there is none
    Required,  ///< before the context is looked at
    UnderLock, ///< last of all
    Untested   ///< the caller's duty
};

/// What runs under which lock.
enum class Lock {
    None,
    Own,             ///< of the context; anything but the UI side is the processing side
    ProcessingFirst, ///< the operation will wait for the processing lock: it comes before the UI's
    Both,            ///< the same, and from the processing side it will wait for the UI's
};

struct Rule {
    PluginCoreSelector selector;
    Side side;
    Record record;
    Lock lock;
    EntryHandlers::Handler handler;
};

namespace H = EntryHandlers;

// Of most: either side brings a record, under its own lock.
constexpr Rule WithRecord(PluginCoreSelector selector, EntryHandlers::Handler handler)
{
    return {selector, Side::Either, Record::Required, Lock::Own, handler};
}

constexpr std::array<Rule, 38> Rules{{
    {SelectorGetAllocationTrace, Side::Either, Record::UnderLock, Lock::Own, H::GetAllocationTrace},
    {SelectorUnassigned3, Side::Either, Record::None, Lock::Own, H::DoNothing},
    {SelectorUnassigned4, Side::Either, Record::None, Lock::Own, H::DoNothing},
    {SelectorInitialize, Side::Either, Record::None, Lock::Own, H::Initialize},
    {SelectorTerminate, Side::Either, Record::None, Lock::Both, H::Terminate},
    {SelectorDestroyPlugin, Side::Any, Record::None, Lock::None, H::DestroyPlugin},
    WithRecord(SelectorGetAutomatableParamCount, H::GetAutomatableParamCount),
    WithRecord(SelectorGetAutomatableParamList, H::GetAutomatableParamList),
    WithRecord(SelectorGetAutomatableParamValue, H::GetAutomatableParamValue),
    WithRecord(SelectorSetAutomatableParamValue, H::SetAutomatableParamValue),
    WithRecord(SelectorGetElementParamCount, H::GetElementParamCount),
    WithRecord(SelectorGetElementParamList, H::GetElementParamList),
    WithRecord(SelectorGetElementParamValue, H::GetElementParamValue),
    WithRecord(SelectorSetElementParamValue, H::SetElementParamValue),
    // Without an editor there is nothing to look under, so that not even the UI lock is asked for.
    WithRecord(SelectorGetParamAtPoint, H::GetParamAtPoint),
    {SelectorSetStreamFormat, Side::Either, Record::Required, Lock::Both, H::SetStreamFormat},
    WithRecord(SelectorGetLatency, H::GetLatency),
    {SelectorResetProcessing,
     Side::Either,
     Record::Required,
     Lock::ProcessingFirst,
     H::ResetProcessing},
    {SelectorSetProcessingState,
     Side::Either,
     Record::Required,
     Lock::ProcessingFirst,
     H::SetProcessingState},
    {SelectorSettle, Side::Process, Record::None, Lock::Own, H::Settle},
    {SelectorProcess, Side::Process, Record::Required, Lock::Own, H::Process},
    {SelectorProcessSidePass, Side::Process, Record::Required, Lock::Own, H::ProcessSidePass},
    {SelectorTransformQuery, Side::Any, Record::UnderLock, Lock::Own, H::TransformQuery},
    {SelectorTransformNotify, Side::Any, Record::Untested, Lock::Own, H::TransformNotify},
    {SelectorTransformReset, Side::Any, Record::None, Lock::ProcessingFirst, H::TransformReset},
    {SelectorTransformRead, Side::Any, Record::Required, Lock::Own, H::TransformRead},
    {SelectorEditorCommand, Side::UI, Record::Required, Lock::Own, H::EditorCommand},
    {SelectorEditorKey, Side::UI, Record::Required, Lock::Own, H::EditorKey},
    {SelectorEditorMouse, Side::UI, Record::Required, Lock::Own, H::EditorMouse},
    {SelectorStateCommand, Side::UI, Record::Required, Lock::Own, H::StateCommand},
    {SelectorLoadTransformData, Side::UI, Record::Required, Lock::Own, H::LoadTransformData},
    WithRecord(SelectorModuleListQuery, H::ModuleListQuery),
    WithRecord(SelectorGetExtensionCount, H::GetExtensionCount),
    {SelectorUnsupported35, Side::Either, Record::Required, Lock::None, H::AnswerUnsupported},
    {SelectorUnsupported36, Side::Either, Record::Required, Lock::None, H::AnswerUnsupported},
    {SelectorElementCommand, Side::Either, Record::Required, Lock::None, H::ElementCommand},
    {SelectorSetHostTrackValue, Side::Either, Record::Required, Lock::None, H::SetHostTrackValue},
    WithRecord(SelectorHostMessage, H::HostMessage),
}};

constexpr uint32_t FirstRule = SelectorGetAllocationTrace;

constexpr bool RulesStandAtTheirPlace()
{
    for (uint32_t i = 0; i < Rules.size(); ++i) {
        if (Rules[i].selector != FirstRule + i) {
            return false;
        }
    }
    return true;
}
static_assert(RulesStandAtTheirPlace());

// It takes long, and would keep the user interface waiting.
constexpr Rule RenderRule{
    SelectorHostMessage, Side::Either, Record::Required, Lock::None, H::Render};

const Rule& FindRule(uint32_t selector, const void* data)
{
    const bool isRender =
        selector == SelectorHostMessage && data != nullptr &&
        static_cast<const HostMessageRecord*>(data)->message == PLUGIN_CORE_MESSAGE_RENDER;
    return isRender ? RenderRule : Rules[selector - FirstRule];
}

bool Takes(Side side, uint32_t context)
{
    switch (side) {
    case Side::Either:
        return context == ContextProcess || context == ContextUI;
    case Side::Process:
        return context == ContextProcess;
    case Side::UI:
        return context == ContextUI;
    default:
        return true;
    }
}

uint32_t GetPluginInfo(PluginFactory& factory, void* data)
{
    auto* request = static_cast<PluginInfoRequest*>(data);
    if (request == nullptr || request->info == nullptr) {
        return PluginCoreNullRecord;
    }
    char(&options)[1024] = request->identity.options;
    options[std::size(options) - 1] = '\0';
    FillPluginInfo(factory.GetDefinition(), *request->info);
    return PluginCoreSuccess;
}

PluginSetup ReadSetup(const CreateRecord& record)
{
    PluginSetup setup;
    setup.hostCallback = record.hostCallback;
    setup.hostRefcon = record.hostRefcon;
    // The field need not be terminated.
    const std::string_view path(record.modulePath, std::size(record.modulePath));
    setup.modulePath = String(path.substr(0, path.find('\0')));
    setup.identity = record.identity;
    setup.sampleRate = record.sampleRate;
    setup.channelConfig = record.channelConfig;
    setup.traceAllocations = record.traceAllocations != 0;
    return setup;
}

uint32_t CreatePlugin(PluginFactory& factory, void* data)
{
    const auto* record = static_cast<const CreateRecord*>(data);
    if (record == nullptr || record->instance == nullptr) {
        return PluginCoreNullRecord;
    }
    *record->instance = nullptr;
    *record->instance = factory.CreatePlugin(ReadSetup(*record)).release();
    return PluginCoreSuccess;
}

uint32_t RunLocked(const Rule& rule, PluginCore& instance, DSP::Context context, void* data)
{
    if (rule.record == Record::UnderLock && data == nullptr) {
        return PluginCoreNullRecord;
    }
    return rule.handler(instance, context, data);
}

/// Owns both locks of an instance, the processing one taken first. While another thread has the UI
/// lock, this one waits without the processing lock: that thread may be at the disk, and the audio
/// would wait with it.
class BothLocksGuard {
public:
    explicit BothLocksGuard(ThreadController& newLocks) UTIL_NO_THREAD_SAFETY_ANALYSIS
        : locks(newLocks)
    {
        for (;;) {
            locks.GetProcessLock().Enter();
            if (locks.GetUILock().TryEnter()) {
                return;
            }
            locks.GetProcessLock().Leave();
            const Util::CriticalSectionGuard untilFree(locks.GetUILock());
        }
    }
    BothLocksGuard(const BothLocksGuard&) = delete;
    BothLocksGuard(BothLocksGuard&&) = delete;
    BothLocksGuard& operator=(const BothLocksGuard&) = delete;
    BothLocksGuard& operator=(BothLocksGuard&&) = delete;
    ~BothLocksGuard() UTIL_NO_THREAD_SAFETY_ANALYSIS
    {
        locks.GetUILock().Leave();
        locks.GetProcessLock().Leave();
    }

private:
    ThreadController& locks;
};

uint32_t Run(const Rule& rule, PluginCore& instance, uint32_t context, void* data)
{
    const bool isUI = context == ContextUI;
    const auto side = isUI ? DSP::Context::UI : DSP::Context::Process;
    if (rule.lock == Lock::None) {
        return RunLocked(rule, instance, side, data);
    }
    ThreadController& locks = instance.GetThreadController();
    if (isUI && rule.lock == Lock::Own) {
        const Util::CriticalSectionGuard guard(locks.GetUILock());
        return RunLocked(rule, instance, side, data);
    }
    // From within the signal path this thread has the processing lock, and can't give it back while
    // it waits for the UI's. The operation knows: it does then what needs no more.
    if (isUI || (rule.lock == Lock::Both && !instance.IsInSignalPath())) {
        const BothLocksGuard guard(locks);
        return RunLocked(rule, instance, side, data);
    }
    const Util::CriticalSectionGuard guard(locks.GetProcessLock());
    return RunLocked(rule, instance, side, data);
}

uint32_t Dispatch(
    PluginFactory& factory, uint32_t selector, uint32_t context, PluginCore* instance, void* data)
{
    if (selector == SelectorGetPluginInfo) {
        return GetPluginInfo(factory, data);
    }
    if (selector == SelectorCreatePlugin) {
        return CreatePlugin(factory, data);
    }
    if (selector - FirstRule >= Rules.size()) {
        return PluginCoreUnknownSelector;
    }
    const Rule& rule = FindRule(selector, data);
    if (instance == nullptr) {
        return PluginCoreNullInstance;
    }
    if (rule.record == Record::Required && data == nullptr) {
        return PluginCoreNullRecord;
    }
    if (!Takes(rule.side, context)) {
        return PluginCoreWrongContext;
    }
    return Run(rule, *instance, context, data);
}

} // namespace

uint32_t DispatchEntryCall(PluginFactory& factory,
                           uint32_t magic,
                           uint32_t selector,
                           uint32_t context,
                           PluginCore* instance,
                           void* data) noexcept
{
    if (magic != PLUGIN_CORE_MAGIC) {
        return PluginCoreWrongMagic;
    }
    try {
        return Dispatch(factory, selector, context, instance, data);
    } catch (...) {
        return PluginCoreUnsupported;
    }
}

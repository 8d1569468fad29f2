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
    uint32_t selector;
    Side side;
    Record record;
    Lock lock;
    EntryHandlers::Handler handler;
};

namespace H = EntryHandlers;

constexpr std::array<Rule, 38> Rules{{
    {2, Side::Either, Record::UnderLock, Lock::Own, H::GetAllocationTrace},
    {3, Side::Either, Record::None, Lock::Own, H::DoNothing},
    {4, Side::Either, Record::None, Lock::Own, H::DoNothing},
    {5, Side::Either, Record::None, Lock::Own, H::Initialize},
    {6, Side::Either, Record::None, Lock::Both, H::Terminate},
    {7, Side::Any, Record::None, Lock::None, H::DestroyPlugin},
    {8, Side::Either, Record::Required, Lock::Own, H::GetAutomatableParamCount},
    {9, Side::Either, Record::Required, Lock::Own, H::GetAutomatableParamList},
    {10, Side::Either, Record::Required, Lock::Own, H::GetAutomatableParamValue},
    {11, Side::Either, Record::Required, Lock::Own, H::SetAutomatableParamValue},
    {12, Side::Either, Record::Required, Lock::Own, H::GetElementParamCount},
    {13, Side::Either, Record::Required, Lock::Own, H::GetElementParamList},
    {14, Side::Either, Record::Required, Lock::Own, H::GetElementParamValue},
    {15, Side::Either, Record::Required, Lock::Own, H::SetElementParamValue},
    // Without an editor there is nothing to look under, so that not even the UI lock is asked for.
    {16, Side::Either, Record::Required, Lock::Own, H::GetParamAtPoint},
    {17, Side::Either, Record::Required, Lock::Both, H::SetStreamFormat},
    {18, Side::Either, Record::Required, Lock::Own, H::GetLatency},
    {19, Side::Either, Record::Required, Lock::ProcessingFirst, H::ResetProcessing},
    {20, Side::Either, Record::Required, Lock::ProcessingFirst, H::SetProcessingState},
    {21, Side::Process, Record::None, Lock::Own, H::Settle},
    {22, Side::Process, Record::Required, Lock::Own, H::Process},
    {23, Side::Process, Record::Required, Lock::Own, H::ProcessSidePass},
    {24, Side::Any, Record::UnderLock, Lock::Own, H::TransformQuery},
    {25, Side::Any, Record::Untested, Lock::Own, H::TransformNotify},
    {26, Side::Any, Record::None, Lock::ProcessingFirst, H::TransformReset},
    {27, Side::Any, Record::Required, Lock::Own, H::TransformRead},
    {28, Side::UI, Record::Required, Lock::Own, H::EditorCommand},
    {29, Side::UI, Record::Required, Lock::Own, H::EditorKey},
    {30, Side::UI, Record::Required, Lock::Own, H::EditorMouse},
    {31, Side::UI, Record::Required, Lock::Own, H::StateCommand},
    {32, Side::UI, Record::Required, Lock::Own, H::LoadTransformData},
    {33, Side::Either, Record::Required, Lock::Own, H::ModuleListQuery},
    {34, Side::Either, Record::Required, Lock::Own, H::GetExtensionCount},
    {35, Side::Either, Record::Required, Lock::None, H::AnswerUnsupported},
    {36, Side::Either, Record::Required, Lock::None, H::AnswerUnsupported},
    {37, Side::Either, Record::Required, Lock::None, H::ElementCommand},
    {38, Side::Either, Record::Required, Lock::None, H::SetHostTrackValue},
    {39, Side::Either, Record::Required, Lock::Own, H::HostMessage},
}};

constexpr uint32_t FirstRule = 2;

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

bool Takes(Side side, uint32_t context)
{
    switch (side) {
    case Side::Either:
        return context <= 1;
    case Side::Process:
        return context == 0;
    case Side::UI:
        return context == 1;
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
    const bool isUI = context == 1;
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
    const Rule& rule = Rules[selector - FirstRule];
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

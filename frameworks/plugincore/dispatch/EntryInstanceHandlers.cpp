// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dispatch/EntryHandlers.h"

#include <atomic>

namespace EntryHandlers {
namespace {

// Values that a host may set for the scheduling of workers, one set for the whole module.
struct ModuleTuning {
    std::atomic<uint32_t> word{0};
    std::atomic<bool> flag{false};
    std::atomic<uint64_t> first{0};
    std::atomic<uint64_t> second{0};
};
ModuleTuning moduleTuning;

constexpr uint32_t TraceStride = 200;

uint32_t TestList(const ParamListRecord& record, uint32_t count)
{
    if (record.params == nullptr) {
        return PluginCoreNullRecord;
    }
    return record.count == count ? PluginCoreSuccess : PluginCoreUnsupported;
}

} // namespace

uint32_t DoNothing(PluginCore& /*plugin*/, DSP::Context /*context*/, void* /*data*/)
{
    return PluginCoreSuccess;
}

uint32_t AnswerUnsupported(PluginCore& /*plugin*/, DSP::Context /*context*/, void* /*data*/)
{
    return PluginCoreUnsupported;
}

uint32_t GetAllocationTrace(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    const auto& record = As<AllocationTraceRecord>(data);
    if (record.traceCount == nullptr || record.stride == nullptr || record.wordCount == nullptr ||
        record.constructStart == nullptr || record.editorStart == nullptr) {
        return PluginCoreNullRecord;
    }
    *record.traceCount = 0;
    *record.stride = TraceStride;
    *record.wordCount = 0;
    *record.constructStart = plugin.GetConstructStart();
    *record.editorStart = 0;
    return PluginCoreSuccess;
}

uint32_t Initialize(PluginCore& plugin, DSP::Context /*context*/, void* /*data*/)
{
    plugin.Initialize();
    return PluginCoreSuccess;
}

uint32_t Terminate(PluginCore& plugin, DSP::Context /*context*/, void* /*data*/)
{
    plugin.Terminate();
    return PluginCoreSuccess;
}

uint32_t DestroyPlugin(PluginCore& plugin, DSP::Context /*context*/, void* /*data*/)
{
    delete &plugin;
    return PluginCoreSuccess;
}

uint32_t GetAutomatableParamCount(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    As<uint32_t>(data) = plugin.GetAutomatableParamCount();
    return PluginCoreSuccess;
}

uint32_t GetAutomatableParamList(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    const auto& record = As<ParamListRecord>(data);
    const uint32_t result = TestList(record, plugin.GetAutomatableParamCount());
    if (result == PluginCoreSuccess) {
        plugin.GetAutomatableParamList(static_cast<ParamInfoRecord*>(record.params));
    }
    return result;
}

uint32_t GetAutomatableParamValue(PluginCore& plugin, DSP::Context context, void* data)
{
    return plugin.GetAutomatableParam(context, As<ParamValueRecord>(data));
}

uint32_t SetAutomatableParamValue(PluginCore& plugin, DSP::Context context, void* data)
{
    return plugin.SetAutomatableParam(context, As<ParamValueRecord>(data));
}

uint32_t GetElementParamCount(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    As<uint32_t>(data) = plugin.GetElementParamCount();
    return PluginCoreSuccess;
}

uint32_t GetElementParamList(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    const auto& record = As<ParamListRecord>(data);
    const uint32_t result = TestList(record, plugin.GetElementParamCount());
    if (result == PluginCoreSuccess) {
        plugin.GetElementParamList(static_cast<ElementParamInfoRecord*>(record.params));
    }
    return result;
}

uint32_t GetElementParamValue(PluginCore& plugin, DSP::Context context, void* data)
{
    return plugin.GetElementParam(context, As<ParamValueRecord>(data));
}

uint32_t SetElementParamValue(PluginCore& plugin, DSP::Context context, void* data)
{
    return plugin.SetElementParam(context, As<ParamValueRecord>(data));
}

uint32_t GetParamAtPoint(PluginCore& /*plugin*/, DSP::Context /*context*/, void* data)
{
    As<ParamAtPointRecord>(data).found = 0;
    return PluginCoreSuccess;
}

uint32_t ElementCommand(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    auto& record = As<ElementRecord>(data);
    switch (record.op) {
    case ElementOpSetTuningWord:
        moduleTuning.word = record.tuningWord;
        return PluginCoreSuccess;
    case ElementOpSetTuningFlag:
        moduleTuning.flag = record.tuningFlag != 0;
        return PluginCoreSuccess;
    case ElementOpSetTuningRange:
        moduleTuning.first = record.tuningFirst;
        moduleTuning.second = record.tuningSecond;
        return PluginCoreSuccess;
    default:
        return plugin.ElementCommand(record);
    }
}

uint32_t SetHostTrackValue(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    plugin.SetHostTrackValue(As<uint32_t>(data));
    return PluginCoreSuccess;
}

uint32_t HostMessage(PluginCore& plugin, DSP::Context context, void* data)
{
    return plugin.HostMessage(context, As<HostMessageRecord>(data));
}

uint32_t Render(PluginCore& plugin, DSP::Context context, void* data)
{
    const auto& message = As<HostMessageRecord>(data);
    if (context != DSP::Context::UI || message.data == nullptr ||
        message.length < sizeof(RenderRecord)) {
        return PluginCoreUnsupported;
    }
    return plugin.Render(*static_cast<RenderRecord*>(message.data));
}

} // namespace EntryHandlers

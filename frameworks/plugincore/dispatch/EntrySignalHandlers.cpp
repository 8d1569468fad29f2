// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dispatch/EntryHandlers.h"

namespace EntryHandlers {

uint32_t SetStreamFormat(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    const auto& record = As<StreamFormatRecord>(data);
    plugin.SetStreamFormat(record.sampleRate, record.channelConfig);
    return PluginCoreSuccess;
}

uint32_t GetLatency(PluginCore& plugin, DSP::Context context, void* data)
{
    As<uint32_t>(data) = plugin.GetLatency(context);
    return PluginCoreSuccess;
}

uint32_t ResetProcessing(PluginCore& plugin, DSP::Context context, void* data)
{
    As<uint32_t>(data) = plugin.ResetProcessing(context);
    return PluginCoreSuccess;
}

uint32_t SetProcessingState(PluginCore& plugin, DSP::Context context, void* data)
{
    const auto& record = As<ProcessingStateRecord>(data);
    plugin.SetProcessingState(context, record.active != 0, record.hold != 0);
    return PluginCoreSuccess;
}

uint32_t Settle(PluginCore& plugin, DSP::Context /*context*/, void* /*data*/)
{
    plugin.onSettle();
    return PluginCoreSuccess;
}

uint32_t Process(PluginCore& plugin, DSP::Context /*context*/, void* data) UTIL_NONBLOCKING
{
    const auto& record = As<ProcessRecord>(data);
    if (record.frames == 0) {
        return PluginCoreSuccess;
    }
    if (record.channels == nullptr || record.channels[0] == nullptr) {
        return PluginCoreNullRecord;
    }
    plugin.beforeProcess(record.eventCount, record.events);
    plugin.process(record);
    plugin.afterProcess();
    return PluginCoreSuccess;
}

uint32_t ProcessSidePass(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    const auto& record = As<SidePassRecord>(data);
    if (record.frames != 0) {
        plugin.ProcessSidePass(record);
    }
    return PluginCoreSuccess;
}

uint32_t TransformQuery(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    plugin.TransformQuery(As<uint32_t>(data));
    return PluginCoreSuccess;
}

uint32_t TransformNotify(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    plugin.TransformNotify(As<uint32_t>(data));
    return PluginCoreSuccess;
}

uint32_t TransformReset(PluginCore& plugin, DSP::Context /*context*/, void* /*data*/)
{
    plugin.TransformReset();
    return PluginCoreSuccess;
}

uint32_t TransformRead(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    auto& record = As<TransformReadRecord>(data);
    record.answered = plugin.TransformRead(record) ? 1 : 0;
    return PluginCoreSuccess;
}

uint32_t LoadTransformData(PluginCore& plugin, DSP::Context /*context*/, void* data)
{
    auto& record = As<TransformDataRecord>(data);
    record.failed = plugin.LoadTransformData(record.size, record.data) ? 0 : 1;
    return PluginCoreSuccess;
}

} // namespace EntryHandlers

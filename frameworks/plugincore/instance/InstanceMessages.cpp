// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/InstanceMessages.h"

#include <utility>

namespace {

// Null when the message doesn't carry a whole one.
template <typename Record>
Record* Get(const HostMessageRecord& message)
{
    return message.length >= sizeof(Record) ? static_cast<Record*>(message.data) : nullptr;
}

template <typename Record, typename Part>
uint32_t AnswerBy(Part& part, const HostMessageRecord& message)
{
    auto* record = Get<Record>(message);
    return record != nullptr ? part.Answer(*record) : uint32_t{PluginCoreUnsupported};
}

} // namespace

InstanceMessages::InstanceMessages(PresetMessages::Setup presetSetup,
                                   HistoryMessages::Setup historySetup,
                                   const HostParams& params)
    : hostGestures(params, historySetup.history)
    , presets(std::move(presetSetup))
    , history(std::move(historySetup))
{
}

uint32_t InstanceMessages::Answer(DSP::Context context, const HostMessageRecord& message)
{
    if (context != DSP::Context::UI) {
        return PluginCoreUnsupported;
    }
    switch (message.message) {
    case PLUGIN_CORE_MESSAGE_PRESET:
        return AnswerBy<PresetRecord>(presets, message);
    case PLUGIN_CORE_MESSAGE_HISTORY:
        return AnswerBy<HistoryRecord>(history, message);
    case PLUGIN_CORE_MESSAGE_GESTURE:
        return AnswerBy<ParamEventRecord>(hostGestures, message);
    default:
        return PluginCoreUnsupported;
    }
}

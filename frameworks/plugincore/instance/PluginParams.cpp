// SPDX-License-Identifier: ISC
// Parameters of an instance as the host sees them: the automatable ones in the order of their list,
// and those of all elements in one flat list.
#include "frameworks/plugincore/instance/ParamRecords.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/qobase/util/Realtime.h"

void Plugin::BuildElementParamList()
{
    elementParamList.clear();
    uint32_t elementIndex = 0;
    for (const auto& [name, element] : transform->GetSet().GetOrder()) {
        for (uint32_t index = 0; index < element->GetParamCount(); ++index) {
            if (const DSP::ParamObject* param = element->FindParam(index)) {
                elementParamList.push_back({name, elementIndex, element, *param});
            }
        }
        ++elementIndex;
    }
}

uint32_t Plugin::GetAutomatableParamCount() const
{
    return static_cast<uint32_t>(transform->GetParamSet().GetParams().size());
}

void Plugin::GetAutomatableParamList(ParamInfoRecord* records) const
{
    for (const DSP::AutomatableParam& entry : transform->GetParamSet().GetParams()) {
        FillParamInfo(entry.param, entry.elementName, entry.displayName, *records++);
    }
}

uint32_t Plugin::GetAutomatableParam(DSP::Context context, ParamValueRecord& record) const
{
    const auto& params = transform->GetParamSet().GetParams();
    if (record.index >= params.size()) {
        return PluginCoreUnsupported;
    }
    record.value = GetNormalised(params[record.index].param, context);
    return PluginCoreSuccess;
}

uint32_t Plugin::SetAutomatableParam(DSP::Context context, const ParamValueRecord& record)
{
    const auto& params = transform->GetParamSet().GetParams();
    if (record.index >= params.size()) {
        return PluginCoreUnsupported;
    }
    const DSP::AutomatableParam& entry = params[record.index];
    SetParam(*entry.element, entry.param, context, record.value);
    return PluginCoreSuccess;
}

uint32_t Plugin::GetElementParamCount() const
{
    return static_cast<uint32_t>(elementParamList.size());
}

void Plugin::GetElementParamList(ElementParamInfoRecord* records) const
{
    const DSP::ParamSetBase& automatable = transform->GetParamSet();
    for (const ElementParam& entry : elementParamList) {
        const String paramName =
            std::visit([](const auto& object) { return object->GetName(); }, entry.param);
        ParamInfoRecord& info = records->info;
        FillParamInfo(entry.param,
                      entry.elementName,
                      String("%1 %2").arg(entry.elementName).arg(paramName),
                      info);
        if (const auto index = automatable.FindIndex(*entry.element, paramName)) {
            info.isAutomatable = 1;
            info.isAutomatable2 = 1;
            info.automatableIndex = *index;
        }
        records->elementIndex = entry.elementIndex;
        ++records;
    }
}

uint32_t Plugin::GetElementParam(DSP::Context context, ParamValueRecord& record) const
{
    if (record.index >= elementParamList.size()) {
        return PluginCoreUnsupported;
    }
    record.value = GetNormalised(elementParamList[record.index].param, context);
    return PluginCoreSuccess;
}

uint32_t Plugin::SetElementParam(DSP::Context context, const ParamValueRecord& record)
{
    if (record.index >= elementParamList.size()) {
        return PluginCoreUnsupported;
    }
    const ElementParam& entry = elementParamList[record.index];
    SetParam(*entry.element, entry.param, context, record.value);
    return PluginCoreSuccess;
}

void Plugin::SetParam(DSP::Element& element,
                      const DSP::ParamObject& param,
                      DSP::Context context,
                      float value)
{
    // Only around the set: the history and the host have their own arithmetic.
    const auto set = [&] {
        const Util::ScopedDenormalGuard denormalGuard;
        return SetNormalised(param, value, context, DSP::SourceHost);
    };
    if (context == DSP::Context::Process) {
        const BlockRunner::Inside inside(blocks);
        if (set()) {
            processDirty = true;
        }
    } else {
        // The process side may have moved on: the comparison is with what it has now.
        LoadPendingChunks();
        element.SyncParams();
        if (set()) {
            history.onStateChanged();
        }
    }
    latency.Check(context);
}

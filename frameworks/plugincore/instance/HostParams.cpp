// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HostParams.h"

#include "frameworks/plugincore/instance/ParamRecords.h"

HostParams::HostParams(const DSP::TransformBase& newPath, const Translator& newTranslator)
    : path(newPath)
    , translator(newTranslator)
{
    Rebuild();
}

void HostParams::Rebuild()
{
    elementParams.clear();
    uint32_t elementIndex = 0;
    for (const auto& [name, element] : path.GetSet().GetOrder()) {
        for (uint32_t index = 0; index < element->GetParamCount(); ++index) {
            if (const DSP::ParamObject* param = element->FindParam(index)) {
                elementParams.push_back({name, elementIndex, element, *param});
            }
        }
        ++elementIndex;
    }
}

uint32_t HostParams::GetAutomatableCount() const
{
    return static_cast<uint32_t>(path.GetParamSet().GetParams().size());
}

void HostParams::ListAutomatable(ParamInfoRecord* records) const
{
    for (const DSP::AutomatableParam& entry : path.GetParamSet().GetParams()) {
        FillParamInfo(entry.param, entry.elementName, entry.displayName, translator, *records++);
    }
}

std::optional<HostParams::Place> HostParams::GetAutomatable(uint32_t index) const
{
    const auto& params = path.GetParamSet().GetParams();
    if (index >= params.size()) {
        return std::nullopt;
    }
    return Place{params[index].element, &params[index].param};
}

std::optional<uint32_t> HostParams::FindAutomatable(const DSP::Element& element,
                                                    const String& name) const
{
    return path.GetParamSet().FindIndex(element, name);
}

uint32_t HostParams::GetElementParamCount() const
{
    return static_cast<uint32_t>(elementParams.size());
}

void HostParams::ListElementParams(ElementParamInfoRecord* records) const
{
    for (const ElementParam& entry : elementParams) {
        FillElementParam(entry, *records++);
    }
}

void HostParams::FillElementParam(const ElementParam& entry, ElementParamInfoRecord& record) const
{
    const String paramName =
        std::visit([](const auto& object) { return object->GetName(); }, entry.param);
    ParamInfoRecord& info = record.info;
    FillParamInfo(entry.param,
                  entry.elementName,
                  String("%1 %2").arg(entry.elementName).arg(paramName),
                  translator,
                  info);
    if (const auto index = FindAutomatable(*entry.element, paramName)) {
        info.isAutomatable = 1;
        info.isAutomatable2 = 1;
        info.automatableIndex = *index;
    }
    record.elementIndex = entry.elementIndex;
}

std::optional<HostParams::Place> HostParams::GetElementParam(uint32_t index) const
{
    if (index >= elementParams.size()) {
        return std::nullopt;
    }
    return Place{elementParams[index].element, &elementParams[index].param};
}

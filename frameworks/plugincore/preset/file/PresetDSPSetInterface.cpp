// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/PresetDSPSetInterface.h"

#include "frameworks/plugincore/dsp/path/ElementState.h"
#include "frameworks/plugincore/preset/file/PresetErrors.h"

namespace Preset {
namespace {

using FloatParam = DSP::ElementParamImplBase<float>;
using EnumParam = DSP::ElementParamEnumImplBase;
using BoolParam = DSP::ElementParamImplBase<bool>;

enum class Values { Present, Default };

template <typename Param>
auto GetValue(const Param& param, Values values)
{
    return values == Values::Present ? param.GetWantedValue() : param.GetDefault();
}

ParamRecord MakeRecord(const FloatParam& param, Values values)
{
    FloatRecord record;
    record.value = GetValue(param, values);
    record.units = param.GetParamInfo().units;
    record.range = param.GetRange();
    return record;
}

ParamRecord MakeRecord(const EnumParam& param, Values values)
{
    return EnumRecord{GetValue(param, values), param.GetRange()};
}

ParamRecord MakeRecord(const BoolParam& param, Values values)
{
    BoolRecord record;
    record.value = GetValue(param, values);
    return record;
}

template <typename Visit>
void VisitSessionParams(const DSP::Element& element, Visit visit)
{
    for (const auto& [name, object] : element.GetParamMap()) {
        std::visit(
            [&, &paramName = name](const auto& param) {
                if (param->GetParamInfo().persistence == DSP::Persistence::Session) {
                    visit(paramName, *param);
                }
            },
            object);
    }
}

Util::Bytes GetBytes(const DSP::Element& element)
{
    Util::Bytes bytes(element.GetExtraBytesSize());
    element.WriteExtraBytes(bytes);
    return bytes;
}

Snapshot Take(const DSP::DSPSetBase& set, Values values)
{
    Snapshot snapshot;
    for (const auto& [registeredName, element] : set.GetElements()) {
        const String elementName = element->GetName();
        ElementSnapshot& record = snapshot.elements[elementName];
        VisitSessionParams(*element, [&](const String& paramName, const auto& param) {
            record.params[{elementName, paramName}] = MakeRecord(param, values);
        });
        if (values == Values::Present) {
            record.extraBytes = GetBytes(*element);
        }
    }
    return snapshot;
}

std::optional<float> FindValue(const ParamRecord& record, const FloatParam& /*param*/)
{
    const auto* found = std::get_if<FloatRecord>(&record);
    return found != nullptr ? std::optional<float>(found->value) : std::nullopt;
}

std::optional<uint32_t> FindValue(const ParamRecord& record, const EnumParam& /*param*/)
{
    const auto* found = std::get_if<EnumRecord>(&record);
    return found != nullptr ? found->value : std::nullopt;
}

std::optional<bool> FindValue(const ParamRecord& record, const BoolParam& /*param*/)
{
    const auto* found = std::get_if<BoolRecord>(&record);
    return found != nullptr ? std::optional<bool>(found->value) : std::nullopt;
}

// The first of the records that no parameter of the element takes; null when there is none.
const ParamKey* FindMisfit(const DSP::Element& element, const ElementSnapshot& values)
{
    for (const auto& [key, record] : values.params) {
        const auto found = element.GetParamMap().find(key.second);
        const bool fits =
            found != element.GetParamMap().end() &&
            std::visit(
                [&rec = record](const auto& param) { return FindValue(rec, *param).has_value(); },
                found->second);
        if (!fits) {
            return &key;
        }
    }
    return nullptr;
}

void ApplyElement(DSP::Element& element, const ElementSnapshot& values)
{
    // The process side may have moved on: a value here that is equal but stale must not swallow
    // the change.
    element.SyncParams();
    VisitSessionParams(element, [&](const String& name, auto& param) {
        const auto record = values.params.find({element.GetName(), name});
        if (record != values.params.end()) {
            param.SetValue(
                *FindValue(record->second, param), DSP::Context::UI, DSP::SourceController);
        }
    });
    if (values.extraBytes == GetBytes(element)) {
        return;
    }
    if (values.extraBytes.empty()) {
        element.ClearExtraBytes();
    } else {
        element.ReadExtraBytes(values.extraBytes);
    }
}

} // namespace

Snapshot PresetDSPSetInterface::TakeSnapshot()
{
    return Take(set, Values::Present);
}

Snapshot PresetDSPSetInterface::TakeDefaults()
{
    return Take(set, Values::Default);
}

Util::Expected<void> PresetDSPSetInterface::Apply(const Snapshot& snapshot)
{
    for (const auto& [name, values] : snapshot.elements) {
        const DSP::Element* element = DSP::FindElementByEitherName(set, name);
        if (element == nullptr) {
            return MakeValueError("Unknown element: " + name);
        }
        if (const ParamKey* misfit = FindMisfit(*element, values)) {
            return MakeValueError("Unknown parameter: " + misfit->first + ", " + misfit->second);
        }
    }
    for (const auto& [name, values] : snapshot.elements) {
        ApplyElement(*DSP::FindElementByEitherName(set, name), values);
    }
    return {};
}

Util::Bytes PresetDSPSetInterface::GetExtraBytes(const String& element)
{
    const DSP::Element* found = DSP::FindElementByEitherName(set, element);
    return found != nullptr ? GetBytes(*found) : Util::Bytes();
}

} // namespace Preset

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/path/ElementState.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <variant>

namespace DSP {
namespace {

using FloatParam = ElementParamImplBase<float>;
using BoolParam = ElementParamImplBase<bool>;
using EnumParam = ElementParamEnumImplBase;

const String ElementsKey("DSP Elements");
const String NameKey("Element Name");
const String VersionKey("Param Version");
const String ExtraBytesKey("Extra Bytes");

// Calls `visit` with each parameter that belongs to a session, in name order.
template <typename Visit>
void VisitSessionParams(const Element& element, Visit visit)
{
    for (const auto& [name, object] : element.GetParamMap()) {
        std::visit(
            [&, &paramName = name](const auto& param) {
                if (param->GetParamInfo().persistence == Persistence::Session) {
                    visit(paramName, *param);
                }
            },
            object);
    }
}

Util::DictionaryValue ToValue(float value)
{
    return {static_cast<double>(value)};
}

Util::DictionaryValue ToValue(bool value)
{
    return {value};
}

Util::DictionaryValue ToValue(uint32_t value)
{
    return {value};
}

// Values that no float holds end at the largest; the parameter's own range is narrower.
float ToFloat(double value)
{
    constexpr auto Largest = static_cast<double>(std::numeric_limits<float>::max());
    return static_cast<float>(std::isnan(value) ? value : std::clamp(value, -Largest, Largest));
}

std::optional<float>
FindSaved(const ElementParamData& data, const String& name, const FloatParam& /*param*/)
{
    return data.FindFloat(name);
}

std::optional<bool>
FindSaved(const ElementParamData& data, const String& name, const BoolParam& /*param*/)
{
    return data.FindBool(name);
}

std::optional<uint32_t>
FindSaved(const ElementParamData& data, const String& name, const EnumParam& /*param*/)
{
    return data.FindEnum(name);
}

// One entry of an element's dictionary.
struct EntryReader {
    const String& key;
    ElementParamData& data;

    void operator()(uint32_t value) const
    {
        if (key == VersionKey) {
            data.SetParamVersion(static_cast<int32_t>(value));
        } else {
            data.SetEnum(key, value);
        }
    }
    void operator()(int32_t value) const
    {
        if (key == VersionKey) {
            data.SetParamVersion(value);
        } else {
            data.SetEnum(key, static_cast<uint32_t>(std::max(value, 0)));
        }
    }
    void operator()(double value) const { data.SetFloat(key, ToFloat(value)); }
    void operator()(bool value) const { data.SetBool(key, value); }
    void operator()(const Util::Bytes& value) const
    {
        if (key == ExtraBytesKey) {
            data.SetExtraBytes(value);
        }
    }
    template <typename T>
    void operator()(const T& /*value*/) const
    {
    }
};

ElementParamData ReadElement(const String& key, const Util::Dictionary& saved)
{
    const auto* name = saved.Find<String>(NameKey);
    ElementParamData data(name != nullptr ? *name : key);
    for (const auto& [entryKey, entry] : saved) {
        std::visit(EntryReader{entryKey, data}, entry.value);
    }
    return data;
}

} // namespace

Element* FindElementByEitherName(const DSPSetBase& set, const String& name)
{
    for (const auto& [registeredName, element] : set.GetElements()) {
        if (element->GetName() == name) {
            return element.get();
        }
    }
    return set.GetElement(name);
}

Util::Dictionary BuildElementDictionary(const Element& element)
{
    Util::Dictionary result;
    VisitSessionParams(element, [&result](const String& name, const auto& param) {
        result.Set(name, ToValue(param.GetWantedValue()));
    });
    Util::Bytes extraBytes(element.GetExtraBytesSize());
    element.WriteExtraBytes(extraBytes);
    result.Set(NameKey, {element.GetName()});
    result.Set(VersionKey, {static_cast<int32_t>(element.GetParamVersion())});
    result.Set(ExtraBytesKey, {std::move(extraBytes)});
    return result;
}

Util::Dictionary BuildElements(const DSPSetBase& set)
{
    Util::Dictionary elements;
    for (const auto& [registeredName, element] : set.GetElements()) {
        elements.Set(element->GetName(), {BuildElementDictionary(*element)});
    }
    Util::Dictionary result;
    result.Set(ElementsKey, {std::move(elements)});
    return result;
}

std::vector<ElementParamData> ReadElements(const Util::Dictionary& dictionary)
{
    std::vector<ElementParamData> result;
    const auto* elements = dictionary.Find<Util::Dictionary>(ElementsKey);
    if (elements == nullptr) {
        return result;
    }
    for (const auto& [key, entry] : *elements) {
        if (const auto* saved = std::get_if<Util::Dictionary>(&entry.value)) {
            result.push_back(ReadElement(key, *saved));
        }
    }
    return result;
}

void ApplyElement(Element& element, const ElementParamData& data, ValueSource source)
{
    // The process side may have moved on: what is saved is compared with what it has now, so that
    // an equal but stale value here can't swallow the change.
    element.SyncParams();
    VisitSessionParams(element, [&](const String& name, auto& param) {
        if (const auto saved = FindSaved(data, name, param)) {
            param.SetValue(*saved, Context::UI, source);
        }
    });
    if (data.GetExtraBytes().empty()) {
        element.ClearExtraBytes();
    } else {
        element.ReadExtraBytes(data.GetExtraBytes());
    }
}

void ApplyElements(const DSPSetBase& set,
                   const std::vector<ElementParamData>& elements,
                   ValueSource source)
{
    for (const ElementParamData& data : elements) {
        if (Element* element = FindElementByEitherName(set, data.GetElementName())) {
            ApplyElement(*element, data, source);
        }
    }
}

std::optional<bool> IsSameState(const Element& element, const ElementParamData& data)
{
    if (data.GetParamVersion() &&
        *data.GetParamVersion() != static_cast<int32_t>(element.GetParamVersion())) {
        return std::nullopt;
    }
    bool isSame = true;
    VisitSessionParams(element, [&](const String& name, const auto& param) {
        const auto saved = FindSaved(data, name, param);
        isSame = isSame && (!saved || *saved == param.GetWantedValue());
    });
    return isSame;
}

} // namespace DSP

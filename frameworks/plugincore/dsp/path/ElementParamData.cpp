// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/path/ElementParamData.h"

namespace DSP {
namespace {

template <typename T>
std::optional<T> Find(const std::map<String, T>& values, const String& name)
{
    const auto found = values.find(name);
    return found != values.end() ? std::optional<T>(found->second) : std::nullopt;
}

template <typename T>
void Merge(const std::map<String, T>& values, std::map<String, T>& target)
{
    for (const auto& [name, value] : values) {
        target[name] = value;
    }
}

} // namespace

std::optional<bool> ElementParamData::FindBool(const String& name) const
{
    return Find(bools, name);
}

std::optional<float> ElementParamData::FindFloat(const String& name) const
{
    return Find(floats, name);
}

std::optional<uint32_t> ElementParamData::FindEnum(const String& name) const
{
    return Find(enums, name);
}

void ElementParamData::RemoveParam(const String& name)
{
    floats.erase(name);
    bools.erase(name);
    enums.erase(name);
}

void ElementParamData::CopyTo(ElementParamData& other) const
{
    Merge(floats, other.floats);
    Merge(bools, other.bools);
    Merge(enums, other.enums);
    other.paramVersion = paramVersion;
    other.extraBytes = extraBytes;
}

} // namespace DSP

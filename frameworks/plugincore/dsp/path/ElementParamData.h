// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <map>
#include <optional>

namespace DSP {

/// What was saved of one element, apart from any element: values by name, each type in a map of
/// its own, and the element's extra bytes. Nothing here is known to be in range. [ui]
class ElementParamData {
public:
    explicit ElementParamData(String newElementName)
        : elementName(std::move(newElementName))
    {
    }

    const String& GetElementName() const { return elementName; }
    /// Of the parameter table that the values were saved from; empty when that isn't known.
    const std::optional<int32_t>& GetParamVersion() const { return paramVersion; }
    void SetParamVersion(int32_t version) { paramVersion = version; }

    /// A value that isn't there, or is of another type, is empty or reads as the default.
    void SetBool(const String& name, bool value) { bools[name] = value; }
    bool GetBool(const String& name, bool defaultValue) const
    {
        return FindBool(name).value_or(defaultValue);
    }
    std::optional<bool> FindBool(const String& name) const;
    void SetFloat(const String& name, float value) { floats[name] = value; }
    float GetFloat(const String& name, float defaultValue) const
    {
        return FindFloat(name).value_or(defaultValue);
    }
    std::optional<float> FindFloat(const String& name) const;
    void SetEnum(const String& name, uint32_t value) { enums[name] = value; }
    uint32_t GetEnum(const String& name, uint32_t defaultValue) const
    {
        return FindEnum(name).value_or(defaultValue);
    }
    std::optional<uint32_t> FindEnum(const String& name) const;

    void SetExtraBytes(Util::Bytes bytes) { extraBytes = std::move(bytes); }
    const Util::Bytes& GetExtraBytes() const { return extraBytes; }

    /// Whatever its type.
    void RemoveParam(const String& name);
    /// Values of this name and type replace those of `other`; what only `other` has stays. Version
    /// and extra bytes go along.
    void CopyTo(ElementParamData& other) const;

private:
    String elementName;
    std::optional<int32_t> paramVersion;
    std::map<String, float> floats;
    std::map<String, bool> bools;
    std::map<String, uint32_t> enums;
    Util::Bytes extraBytes;
};

} // namespace DSP

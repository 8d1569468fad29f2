// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/XmlDocument.h"

#include <cstdint>
#include <map>

namespace Preset {

class PresetFileBase;

/// Reads a preset of an older form into the snapshot of a preset file. This one accepts no older
/// form; a subclass states which it knows, and what its names and values have become. [ui]
class LegacyPresetFileHandlerBase {
public:
    /// Older names of elements with their present ones; others are kept.
    using Renames = std::map<String, String>;

    /// The file owns the handler.
    LegacyPresetFileHandlerBase(PresetFileBase& newFile, Renames newRenames);
    LegacyPresetFileHandlerBase(const LegacyPresetFileHandlerBase&) = delete;
    LegacyPresetFileHandlerBase& operator=(const LegacyPresetFileHandlerBase&) = delete;
    virtual ~LegacyPresetFileHandlerBase() = default;

    /// Reads what is below the root: categories, then the macro controls, which have kept their
    /// form. They count as categories too, ones without parameters.
    virtual Util::Expected<void> ReadDocument(const Util::XmlNode& root);
    /// Whether parameters of this version can be read.
    virtual bool IsLegacyParamsVersion(uint32_t /*version*/) const { return false; }
    /// Whether files of this type can be read, besides those of the program's own.
    virtual bool AcceptsType(const String& /*type*/) const { return false; }
    /// Whether extra bytes of the older form still mean the same.
    virtual bool HasExtraBytes() const { return true; }
    virtual Util::Expected<void> ReadCategories(const Util::XmlNode& root);
    /// Present name of an element.
    virtual String MapElementName(const String& name) const;
    /// Each takes a value under the element's present and the parameter's older name, and returns
    /// whether it knows the parameter as one of this type. What none knows is dropped.
    virtual bool MapBoolParam(const String& element, const String& param, bool value);
    virtual bool MapEnumParam(const String& element, const String& param, uint32_t value);
    virtual bool MapFloatParam(const String& element, const String& param, float value);
    /// After everything has been read.
    virtual void FinishRead(uint32_t /*version*/) {}

protected:
    PresetFileBase& GetFile() { return file; }

private:
    Util::Expected<void> ReadCategory(const Util::XmlNode& category);
    void ReadParam(const Util::XmlNode& param);

    PresetFileBase& file;
    const Renames renames;
};

/// Families of presets that older programs wrote.
enum class LegacyFamily { ChannelOps, Declicker, Denoiser, Gain, Deconstruct, Other };

/// By the first word of a table that the type holds anywhere. [any]
LegacyFamily FindLegacyFamily(const String& type);

} // namespace Preset

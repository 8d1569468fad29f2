// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/XmlDocument.h"

#include <cstdint>
#include <map>
#include <optional>

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
    /// Around the reading of what is below the root.
    virtual void beforeBody(const Util::XmlNode& /*root*/) {}
    virtual void afterBody(const Util::XmlNode& /*root*/) {}
    virtual Util::Expected<void> ReadCategories(const Util::XmlNode& root);
    /// Present name of an element.
    virtual String MapElementName(const String& name) const;
    /// Each takes a value under the element's present and the parameter's older name, and returns
    /// whether it knows the parameter as one of this type. What none knows is dropped.
    virtual bool MapBoolParam(const String& element, const String& param, bool value);
    /// The same of a number that macro slider `sliderId` moved, which is asked before the others.
    virtual bool
    MapSliderParam(const String& element, const String& param, uint32_t sliderId, float value);
    virtual bool MapEnumParam(const String& element, const String& param, uint32_t value);
    virtual bool MapFloatParam(const String& element, const String& param, float value);
    /// What a parameter, by the names as above, has when the file names it without a number that
    /// can be read; empty: it is dropped.
    virtual std::optional<float> GetDefaultValue(const String& element, const String& param) const;
    /// After everything has been read.
    virtual void FinishRead(uint32_t /*version*/) {}
    /// Whether a parameter follows a macro check box of the older form, which then has its value:
    /// the parameter's own isn't read.
    virtual bool IsCheckboxBound(const String& element, const String& param) const;

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

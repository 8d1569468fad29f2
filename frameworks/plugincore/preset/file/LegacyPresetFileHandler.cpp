// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/LegacyPresetFileHandler.h"

#include "frameworks/plugincore/preset/file/PresetErrors.h"
#include "frameworks/plugincore/preset/file/PresetFileBase.h"
#include "frameworks/qobase/util/Base64.h"
#include "frameworks/qobase/util/NumberText.h"

#include <utility>

namespace Preset {

LegacyFamily FindLegacyFamily(const String& type)
{
    // The first match decides.
    static constexpr std::pair<const char*, LegacyFamily> Words[] = {
        {"ChannelOps", LegacyFamily::ChannelOps},
        {"LMDeclick", LegacyFamily::Declicker},
        {"LMDecrackle", LegacyFamily::Declicker},
        {"LMInterpolate", LegacyFamily::Declicker},
        {"LMDenoiser", LegacyFamily::Denoiser},
        {"Gain", LegacyFamily::Gain},
        {"Fade", LegacyFamily::Gain},
        {"Normalize", LegacyFamily::Gain},
        {"Deconstruct", LegacyFamily::Deconstruct},
        {"AdditiveDecomposition", LegacyFamily::Deconstruct},
    };
    for (const auto& [word, family] : Words) {
        if (type.Find(word)) {
            return family;
        }
    }
    return LegacyFamily::Other;
}

LegacyPresetFileHandlerBase::LegacyPresetFileHandlerBase(PresetFileBase& newFile,
                                                         Renames newRenames)
    : file(newFile)
    , renames(std::move(newRenames))
{
}

Util::Expected<void> LegacyPresetFileHandlerBase::ReadDocument(const Util::XmlNode& root)
{
    beforeBody(root);
    if (auto result = ReadCategories(root); !result) {
        return result;
    }
    if (auto result = file.ReadMacroControls(root); !result) {
        return result;
    }
    afterBody(root);
    return {};
}

Util::Expected<void> LegacyPresetFileHandlerBase::ReadCategories(const Util::XmlNode& root)
{
    for (const Util::XmlNode& category : root.GetElements()) {
        if (auto result = ReadCategory(category); !result) {
            return result;
        }
    }
    return {};
}

Util::Expected<void> LegacyPresetFileHandlerBase::ReadCategory(const Util::XmlNode& category)
{
    for (const Util::XmlNode& param : category.GetChildren("Param")) {
        if (!param.IsElement()) {
            return MakeParseError("Parameter was not a valid XML element.");
        }
        ReadParam(param);
    }
    for (const Util::XmlNode& extra : category.GetChildren("ExtraBytes")) {
        if (!extra.IsElement()) {
            return MakeParseError("Extra bytes was not a valid XML element.");
        }
        auto bytes = Util::DecodeBase64(extra.GetAttribute("Data"));
        if (bytes && HasExtraBytes()) {
            file.SetExtraBytes(MapElementName(extra.GetAttribute("ElementID")), std::move(*bytes));
        }
    }
    return {};
}

void LegacyPresetFileHandlerBase::ReadParam(const Util::XmlNode& param)
{
    const String element = MapElementName(param.GetAttribute("ElementID"));
    const String name = param.GetAttribute("ParamID");
    const String text = param.GetAttribute("Value");
    if (IsCheckboxBound(element, name)) {
        return;
    }
    const auto value = Util::ParseFloat(text);
    const auto sliderId = Util::ParseUInt(param.GetAttribute("SliderID"));
    if (sliderId && value && MapSliderParam(element, name, *sliderId, *value)) {
        return;
    }
    if (MapBoolParam(element, name, text == "1")) {
        return;
    }
    const auto number = Util::ParseUInt(text);
    if (number && MapEnumParam(element, name, *number)) {
        return;
    }
    if (const auto known = value ? value : GetDefaultValue(element, name)) {
        MapFloatParam(element, name, *known);
    }
}

String LegacyPresetFileHandlerBase::MapElementName(const String& name) const
{
    const auto found = renames.find(name);
    return found != renames.end() ? found->second : name;
}

bool LegacyPresetFileHandlerBase::MapBoolParam(const String& /*element*/,
                                               const String& /*param*/,
                                               bool /*value*/)
{
    return false;
}

bool LegacyPresetFileHandlerBase::MapSliderParam(const String& /*element*/,
                                                 const String& /*param*/,
                                                 uint32_t /*sliderId*/,
                                                 float /*value*/)
{
    return false;
}

std::optional<float> LegacyPresetFileHandlerBase::GetDefaultValue(const String& /*element*/,
                                                                  const String& /*param*/) const
{
    return std::nullopt;
}

bool LegacyPresetFileHandlerBase::IsCheckboxBound(const String& /*element*/,
                                                  const String& /*param*/) const
{
    return false;
}

bool LegacyPresetFileHandlerBase::MapEnumParam(const String& /*element*/,
                                               const String& /*param*/,
                                               uint32_t /*value*/)
{
    return false;
}

bool LegacyPresetFileHandlerBase::MapFloatParam(const String& /*element*/,
                                                const String& /*param*/,
                                                float /*value*/)
{
    return false;
}

} // namespace Preset

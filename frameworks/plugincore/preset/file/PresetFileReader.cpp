// SPDX-License-Identifier: ISC
// The reading half of a preset file.
#include "frameworks/plugincore/preset/file/LegacyPresetFileHandler.h"
#include "frameworks/plugincore/preset/file/MacroControls.h"
#include "frameworks/plugincore/preset/file/PresetErrors.h"
#include "frameworks/plugincore/preset/file/PresetFileBase.h"
#include "frameworks/qobase/util/Base64.h"

namespace Preset {
namespace {

constexpr const char* AcceptedXmlVersion = "1.0";

String ToText(std::optional<uint32_t> version)
{
    return version ? String("%1").arg(*version) : String("");
}

Util::Expected<void> RefuseParamsVersion(std::optional<uint32_t> version)
{
    return MakeParseError("Invalid params version, " + ToText(version));
}

Util::Expected<void> RefusePluginVersion(std::optional<uint32_t> version)
{
    return MakeParseError("Invalid plugin version, " + ToText(version));
}

} // namespace

Util::Expected<void> PresetFileBase::ReadDocument(const Util::XmlDocument& document)
{
    const auto root = document.GetRoot();
    if (!root) {
        return MakeParseError("Missing root element.");
    }
    head = GetHead(document, *root);
    legacyHandler = MakeLegacyHandler(head.type);
    if (head.xmlVersion != AcceptedXmlVersion) {
        return MakeParseError("Invalid xml version, " + head.xmlVersion + ". Expected " +
                              AcceptedXmlVersion + ".");
    }
    if (IsCurrentFormat(*root)) {
        auto result = ReadCurrent(*root);
        wasLegacy = wasLegacy && !result;
        return result;
    }
    if (head.type == GetType() || legacyHandler->AcceptsType(head.type)) {
        auto result = ReadLegacy(head.paramsVersion, head.pluginVersion, *root);
        wasLegacy = wasLegacy || result;
        return result;
    }
    return RefuseFormat();
}

Util::Expected<void> PresetFileBase::RefuseFormat() const
{
    if (!IsTypeValid(head.type)) {
        return MakeParseError("Invalid preset file type, " + head.type);
    }
    if (!IsPluginVersionValid(head.pluginVersion)) {
        return RefusePluginVersion(head.pluginVersion);
    }
    if (!IsParamsVersionValid(head.paramsVersion)) {
        return RefuseParamsVersion(head.paramsVersion);
    }
    return MakeParseError("Invalid preset file.");
}

bool PresetFileBase::IsCurrentFormat(const Util::XmlNode& root)
{
    return IsParamsVersionValid(head.paramsVersion) && IsPluginVersionValid(head.pluginVersion) &&
           IsTypeValid(root.GetName());
}

Util::Expected<void> PresetFileBase::ReadCurrent(const Util::XmlNode& root)
{
    metadata = head.metadata;
    if (auto result = ReadCategories(root); !result) {
        return result;
    }
    return ReadMacroControls(root);
}

Util::Expected<void> PresetFileBase::ReadMacroControls(const Util::XmlNode& root)
{
    if (auto result = ReadSliders(root, snapshot.sliders); !result) {
        return result;
    }
    if (auto result = ReadCheckBoxes(root, snapshot.checkBoxes); !result) {
        return result;
    }
    ListBoundParams(snapshot);
    return {};
}

Util::Expected<void> PresetFileBase::ReadLegacy(std::optional<uint32_t> version,
                                                std::optional<uint32_t> pluginVersion,
                                                const Util::XmlNode& root)
{
    constexpr uint32_t VersionsOfMajor = 1000;
    if (!version || !legacyHandler->IsLegacyParamsVersion(*version)) {
        return RefuseParamsVersion(version);
    }
    if (!pluginVersion ||
        *pluginVersion / VersionsOfMajor != GetPluginVersion() / VersionsOfMajor) {
        return RefusePluginVersion(pluginVersion);
    }
    metadata = head.metadata;
    if (auto result = legacyHandler->ReadDocument(root); !result) {
        return result;
    }
    legacyHandler->FinishRead(*version);
    return {};
}

Util::Expected<void> PresetFileBase::ReadCategories(const Util::XmlNode& root)
{
    for (auto& [element, values] : snapshot.elements) {
        if (!values.enabled) {
            continue;
        }
        const auto category = root.FindChild(element);
        if (!category) {
            if (IsCategoryRequired(element)) {
                return MakeParseError("Missing category: " + element);
            }
            continue;
        }
        if (!category->IsElement()) {
            return MakeParseError("Category was not a valid XML element.");
        }
        // Says what the file's writer had switched on; the values are read in either case.
        values.enabled = category->GetAttribute("Enabled") == "1";
        if (auto result = ReadCategory(*category); !result) {
            return result;
        }
    }
    return {};
}

Util::Expected<void> PresetFileBase::ReadCategory(const Util::XmlNode& category)
{
    for (const Util::XmlNode& param : category.GetChildren("Param")) {
        if (!param.IsElement()) {
            return MakeParseError("Parameter was not a valid XML element.");
        }
        const String element = param.GetAttribute("ElementID");
        const String paramName = param.GetAttribute("ParamID");
        SetTextValue(element, paramName, param.GetAttribute("Value"));
        if (ParamRecord* record = snapshot.FindParam(element, paramName)) {
            ReadBinding(param, *record);
        }
    }
    for (const Util::XmlNode& extra : category.GetChildren("ExtraBytes")) {
        if (!extra.IsElement()) {
            return MakeParseError("Extra bytes was not a valid XML element.");
        }
        if (auto bytes = Util::DecodeBase64(extra.GetAttribute("Data"))) {
            SetExtraBytes(extra.GetAttribute("ElementID"), std::move(*bytes));
        }
    }
    return {};
}

} // namespace Preset

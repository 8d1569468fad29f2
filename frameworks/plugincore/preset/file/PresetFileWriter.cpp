// SPDX-License-Identifier: ISC
// The writing half of a preset file.
#include "frameworks/plugincore/preset/file/PresetFileBase.h"
#include "frameworks/qobase/util/Base64.h"
#include "frameworks/qobase/util/NumberText.h"

#include <algorithm>

namespace Preset {
namespace {

String ToText(uint32_t number)
{
    return String("%1").arg(number);
}

String ToText(int32_t number)
{
    return String("%1").arg(number);
}

String ToText(bool value)
{
    return value ? "1" : "0";
}

enum class Verbose { No, Yes };

void WriteValue(FloatRecord& record, Verbose verbose, Util::XmlNode& node)
{
    if (verbose == Verbose::Yes) {
        node.AddAttribute("Units", record.units);
        node.AddAttribute("Min", Util::FormatFloat(record.range.min));
        node.AddAttribute("Max", Util::FormatFloat(record.range.max));
    }
    if (record.sliderId) {
        node.AddAttribute("SliderID", ToText(*record.sliderId));
        node.AddAttribute("Start", Util::FormatFloat(record.start.value_or(record.range.min)));
        node.AddAttribute("End", Util::FormatFloat(record.end.value_or(record.range.max)));
        node.AddAttribute("Scale", ToText(record.scale.value_or(0)));
    }
    record.value = std::clamp(record.value, record.range.min, record.range.max);
    node.AddAttribute("Value", Util::FormatFloat(record.value));
}

void WriteValue(EnumRecord& record, Verbose verbose, Util::XmlNode& node)
{
    if (verbose == Verbose::Yes) {
        node.AddAttribute("Min", ToText(record.range.min));
        node.AddAttribute("Max", ToText(record.range.max));
    }
    record.value =
        std::clamp(record.value.value_or(record.range.min), record.range.min, record.range.max);
    node.AddAttribute("Value", ToText(*record.value));
}

void WriteValue(BoolRecord& record, Verbose /*verbose*/, Util::XmlNode& node)
{
    if (record.checkboxId) {
        node.AddAttribute("CheckboxID", ToText(*record.checkboxId));
        node.AddAttribute("Invert", ToText(record.invert.value_or(false)));
    }
    node.AddAttribute("Value", ToText(record.value));
}

void WriteSliders(const std::vector<SliderRecord>& sliders, Util::XmlNode& root)
{
    if (sliders.empty()) {
        return;
    }
    Util::XmlNode list = root.AddElement("Sliders");
    for (const SliderRecord& slider : sliders) {
        Util::XmlNode node = list.AddElement("Slider");
        node.AddAttribute("Name", slider.name);
        node.AddAttribute("SliderID", ToText(slider.sliderId));
        node.AddAttribute("Min", Util::FormatFloat(slider.min));
        node.AddAttribute("Max", Util::FormatFloat(slider.max));
        node.AddAttribute("Default", Util::FormatFloat(slider.defaultValue));
        node.AddAttribute("Value", Util::FormatFloat(slider.value));
        node.AddAttribute("Scale", ToText(slider.scale));
        node.AddAttribute("BiDirectional", ToText(slider.biDirectional));
    }
}

void WriteCheckBoxes(const std::vector<CheckBoxRecord>& checkBoxes, Util::XmlNode& root)
{
    if (checkBoxes.empty()) {
        return;
    }
    Util::XmlNode list = root.AddElement("CheckBoxes");
    for (const CheckBoxRecord& checkBox : checkBoxes) {
        Util::XmlNode node = list.AddElement("CheckBox");
        node.AddAttribute("Name", checkBox.name);
        node.AddAttribute("CheckboxID", ToText(checkBox.checkboxId));
        node.AddAttribute("Value", ToText(checkBox.value));
    }
}

} // namespace

void PresetFileBase::WriteDocument(Util::XmlDocument& document, Snapshot& values)
{
    Util::XmlNode root = document.Start("1.0", GetType());
    root.AddAttribute("PresetVer", ToText(GetParamsVersion()));
    root.AddAttribute("PluginVer", ToText(GetPluginVersion()));
    root.AddAttribute("PluginBuild", ToText(GetPluginBuild()));
    for (const char* textName : MetadataName::All) {
        const auto text = metadata.find(textName);
        if (text != metadata.end() && !text->second.IsEmpty()) {
            root.AddAttribute(textName, text->second);
        }
    }
    WriteSliders(values.sliders, root);
    WriteCheckBoxes(values.checkBoxes, root);
    for (auto& [element, record] : values.elements) {
        WriteCategory(element, record, root);
    }
}

void PresetFileBase::WriteCategory(const String& element,
                                   ElementSnapshot& values,
                                   Util::XmlNode& root)
{
    Util::XmlNode category = root.AddElement(element);
    category.AddAttribute("Enabled", ToText(values.enabled));
    for (auto& [key, record] : values.params) {
        Util::XmlNode node = category.AddElement("Param");
        node.AddAttribute("ElementID", key.first);
        node.AddAttribute("ParamID", key.second);
        const bool isVerbose = IsVerbose() || IsAlwaysVerbose(key);
        std::visit(
            [&](auto& typed) { WriteValue(typed, isVerbose ? Verbose::Yes : Verbose::No, node); },
            record);
    }
    // What the element has anyway needs no place in the file.
    if (values.extraBytes != dsp.GetExtraBytes(element)) {
        Util::XmlNode node = category.AddElement("ExtraBytes");
        node.AddAttribute("ElementID", element);
        node.AddAttribute("Data", Util::EncodeBase64(values.extraBytes));
    }
}

} // namespace Preset

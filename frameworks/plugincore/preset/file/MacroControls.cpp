// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/MacroControls.h"

#include "frameworks/plugincore/preset/file/PresetErrors.h"
#include "frameworks/qobase/util/NumberText.h"

#include <utility>

namespace Preset {
namespace {

// How one kind of control stands in a file.
struct ListWords {
    const char* list;
    const char* control;
    const char* listFault;
    const char* controlFault;
};
constexpr ListWords SliderWords{"Sliders",
                                "Slider",
                                "Sliders was not a valid XML element.",
                                "Slider was not a valid XML element."};
constexpr ListWords CheckBoxWords{"CheckBoxes",
                                  "CheckBox",
                                  "CheckBoxes was not a valid XML element.",
                                  "Checkbox was not a valid XML element."};

std::optional<int32_t> ReadScale(const Util::XmlNode& node)
{
    const auto scale = Util::ParseInt(node.GetAttribute("Scale"));
    return scale && *scale >= 0 && *scale <= HighestScale ? scale : std::nullopt;
}

std::optional<int32_t> ReadId(const Util::XmlNode& node, const char* attribute)
{
    const auto id = Util::ParseInt(node.GetAttribute(attribute));
    return id && *id >= 0 ? id : std::nullopt;
}

Util::Expected<SliderRecord> ReadSlider(const Util::XmlNode& node)
{
    SliderRecord slider;
    slider.name = node.GetAttribute("Name");
    const auto id = ReadId(node, "SliderID");
    if (!id) {
        return MakeValueError("Invalid slider ID.");
    }
    slider.sliderId = *id;
    const struct {
        const char* attribute;
        float& value;
        const char* fault;
    } numbers[] = {{"Min", slider.min, "Invalid min."},
                   {"Max", slider.max, "Invalid max."},
                   {"Default", slider.defaultValue, "Invalid default."},
                   {"Value", slider.value, "Invalid value."}};
    for (const auto& [attribute, value, fault] : numbers) {
        const auto number = Util::ParseFloat(node.GetAttribute(attribute));
        if (!number) {
            return MakeValueError(fault);
        }
        value = *number;
    }
    const auto scale = ReadScale(node);
    if (!scale) {
        return MakeValueError("Invalid scale type.");
    }
    slider.scale = *scale;
    slider.biDirectional = Util::ParseInt(node.GetAttribute("BiDirectional")).value_or(0) != 0;
    return slider;
}

Util::Expected<CheckBoxRecord> ReadCheckBox(const Util::XmlNode& node)
{
    CheckBoxRecord checkBox;
    checkBox.name = node.GetAttribute("Name");
    const auto id = ReadId(node, "CheckboxID");
    if (!id) {
        return MakeValueError("Invalid checkbox ID.");
    }
    checkBox.checkboxId = *id;
    const String value = node.GetAttribute("Value");
    if (value != "1" && value != "0") {
        return MakeValueError("Invalid boolean value.");
    }
    checkBox.value = value == "1";
    return checkBox;
}

template <typename Record>
Util::Expected<void> ReadList(const Util::XmlNode& root,
                              const ListWords& words,
                              Util::Expected<Record> (*readControl)(const Util::XmlNode&),
                              std::vector<Record>& controls)
{
    const auto lists = root.GetChildren(words.list);
    if (lists.empty()) {
        return {};
    }
    if (!lists.front().IsElement()) {
        return MakeParseError(words.listFault);
    }
    std::vector<Record> result;
    for (const Util::XmlNode& node : lists.front().GetChildren(words.control)) {
        if (!node.IsElement()) {
            return MakeParseError(words.controlFault);
        }
        auto control = readControl(node);
        if (!control) {
            return control.GetError();
        }
        result.push_back(std::move(*control));
    }
    controls = std::move(result);
    return {};
}

void ReadTypedBinding(const Util::XmlNode& node, FloatRecord& record)
{
    record.sliderId = ReadId(node, "SliderID");
    record.start = Util::ParseFloat(node.GetAttribute("Start"));
    record.end = Util::ParseFloat(node.GetAttribute("End"));
    record.scale = ReadScale(node);
}

void ReadTypedBinding(const Util::XmlNode& /*node*/, EnumRecord& /*record*/) {} // has none

void ReadTypedBinding(const Util::XmlNode& node, BoolRecord& record)
{
    record.checkboxId = ReadId(node, "CheckboxID");
    record.invert = node.GetAttribute("Invert") == "1";
}

/// The keys of all parameters with this control's number in `id`.
template <typename Record>
std::vector<ParamKey>
FindBound(const Snapshot& snapshot, std::optional<int32_t> Record::*id, int32_t wanted)
{
    std::vector<ParamKey> bound;
    for (const auto& [element, values] : snapshot.elements) {
        for (const auto& [key, param] : values.params) {
            const auto* record = std::get_if<Record>(&param);
            if (record != nullptr && record->*id == wanted) {
                bound.push_back(key);
            }
        }
    }
    return bound;
}

} // namespace

void ReadBinding(const Util::XmlNode& node, ParamRecord& record)
{
    std::visit([&](auto& typed) { ReadTypedBinding(node, typed); }, record);
}

void ListBoundParams(Snapshot& snapshot)
{
    for (SliderRecord& slider : snapshot.sliders) {
        slider.params = FindBound(snapshot, &FloatRecord::sliderId, slider.sliderId);
    }
    for (CheckBoxRecord& checkBox : snapshot.checkBoxes) {
        checkBox.params = FindBound(snapshot, &BoolRecord::checkboxId, checkBox.checkboxId);
    }
}

Util::Expected<void> ReadSliders(const Util::XmlNode& root, std::vector<SliderRecord>& sliders)
{
    return ReadList(root, SliderWords, ReadSlider, sliders);
}

Util::Expected<void> ReadCheckBoxes(const Util::XmlNode& root,
                                    std::vector<CheckBoxRecord>& checkBoxes)
{
    return ReadList(root, CheckBoxWords, ReadCheckBox, checkBoxes);
}

} // namespace Preset

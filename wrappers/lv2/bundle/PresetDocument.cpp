// SPDX-License-Identifier: ISC
#include "wrappers/lv2/bundle/PresetDocument.h"

#include "wrappers/lv2/bundle/Turtle.h"

namespace Lv2 {

namespace {

std::string PresetUri(const Variant& variant, const PresetValues& preset)
{
    return TurtleUri(std::string(variant.uri) + "#preset_" + TurtleSymbol(preset.name));
}

std::string PresetHead(const Variant& variant, const PresetValues& preset)
{
    return PresetUri(variant, preset) + "\n\ta pset:Preset ;\n\tlv2:appliesTo " +
           TurtleUri(variant.uri) + " ;\n\trdfs:label " + TurtleText(preset.name);
}

std::string PresetPorts(const Description& description, const PresetValues& preset)
{
    std::string text;
    for (size_t i = 0; i < preset.values.size(); ++i) {
        if (description.bypassIndex != i) {
            text += std::string(text.empty() ? "" : " ,") + " [\n\t\tlv2:symbol " +
                    TurtleText(PortSymbol(description, i)) + " ;\n\t\tpset:value " +
                    TurtleNumber(preset.values[i]) + "\n\t]";
        }
    }
    return text;
}

} // namespace

std::string PresetList(std::span<const PresetValues> presets, const Variant& variant)
{
    std::string text;
    for (const PresetValues& preset : presets) {
        text += PresetHead(variant, preset) + " ;\n\trdfs:seeAlso " +
                TurtleUri(std::string(variant.symbol) + "-presets.ttl") + " .\n\n";
    }
    return text;
}

std::string PresetDocument(const Description& description,
                           std::span<const PresetValues> presets,
                           const Variant& variant)
{
    std::string text = TurtlePrefixes();
    for (const PresetValues& preset : presets) {
        text += PresetHead(variant, preset) +
                (preset.comment.empty() ? "" : " ;\n\trdfs:comment " + TurtleText(preset.comment)) +
                " ;\n\tlv2:port" + PresetPorts(description, preset) + " ;\n\tstate:state [\n\t\t" +
                TurtleUri(StateUri) + " " + TurtleBytes(preset.state) + "\n\t] .\n\n";
    }
    return text;
}

} // namespace Lv2

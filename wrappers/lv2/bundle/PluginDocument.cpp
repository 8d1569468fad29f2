// SPDX-License-Identifier: ISC
#include "wrappers/lv2/bundle/PluginDocument.h"

#include "wrappers/common/ProductWords.h"
#include "wrappers/lv2/Ports.h"
#include "wrappers/lv2/bundle/Turtle.h"

namespace Lv2 {

namespace {

// 6.00 is 6000.
constexpr uint32_t MinorUnit = 1000;

std::string GroupUri(const Variant& variant, const char* direction)
{
    return TurtleUri(std::string(variant.uri) + "#" + direction);
}

std::string Group(const Variant& variant, const char* direction, const char* name)
{
    const bool isInput = std::string_view(direction) == "in";
    return GroupUri(variant, direction) + "\n\ta pg:" + variant.group +
           (isInput ? " , pg:InputGroup" : " , pg:OutputGroup") + " ;\n" +
           (isInput ? "" : "\tpg:source " + GroupUri(variant, "in") + " ;\n") + "\tlv2:name \"" +
           name + "\" ;\n\tlv2:symbol \"" + direction + "\" .\n\n";
}

std::string
PortHead(const char* classes, uint32_t index, std::string_view symbol, std::string_view name)
{
    return "[\n\t\ta " + std::string(classes) + " ;\n\t\tlv2:index " + std::to_string(index) +
           " ;\n\t\tlv2:symbol " + TurtleText(symbol) + " ;\n\t\tlv2:name " + TurtleText(name);
}

std::string Property(std::string_view text)
{
    return " ;\n\t\t" + std::string(text);
}

std::string Range(double minimum, double maximum, double defaultValue)
{
    return Property("lv2:minimum " + TurtleNumber(minimum)) +
           Property("lv2:maximum " + TurtleNumber(maximum)) +
           Property("lv2:default " + TurtleNumber(defaultValue));
}

std::string Unit(const std::string& unit)
{
    if (unit.empty()) {
        return {};
    }
    if (unit == "Hz") {
        return Property("units:unit units:hz");
    }
    return Property("units:unit [\n\t\t\ta units:Unit ;\n\t\t\tunits:symbol " + TurtleText(unit) +
                    " ;\n\t\t\tunits:render " + TurtleText("%f " + unit) + "\n\t\t]");
}

std::string Choices(const Wrapper::Parameter& parameter)
{
    std::string text = Property("lv2:portProperty lv2:integer , lv2:enumeration");
    for (size_t i = 0; i < parameter.labels.size(); ++i) {
        text += Property("lv2:scalePoint [ rdfs:label " + TurtleText(parameter.labels[i]) +
                         " ; rdf:value " +
                         TurtleNumber(parameter.minimum + static_cast<double>(i)) + " ]");
    }
    return text;
}

std::string EnabledPort(uint32_t index)
{
    return PortHead("lv2:InputPort , lv2:ControlPort", index, "enabled", "Enabled") +
           Range(0, 1, 1) + Property("lv2:designation lv2:enabled") +
           Property("lv2:portProperty lv2:toggled , lv2:connectionOptional\n\t]");
}

std::string ParameterPort(const Description& description, size_t number)
{
    const auto index = static_cast<uint32_t>(number);
    if (description.bypassIndex == number) {
        return EnabledPort(index);
    }
    const Wrapper::Parameter& parameter = description.parameters[number];
    std::string text = PortHead("lv2:InputPort , lv2:ControlPort",
                                index,
                                PortSymbol(description, number),
                                parameter.name) +
                       Range(parameter.minimum, parameter.maximum, parameter.defaultValue) +
                       Unit(parameter.unit);
    if (parameter.kind == Wrapper::Parameter::Kind::Switch) {
        text += Property("lv2:portProperty lv2:toggled");
    } else if (parameter.kind == Wrapper::Parameter::Kind::Choice) {
        text += Choices(parameter);
    } else if (parameter.isLogarithmic) {
        text += Property("lv2:portProperty pprops:logarithmic");
    }
    return text + Property("lv2:portProperty lv2:connectionOptional\n\t]");
}

std::string LatencyPort(uint32_t index)
{
    return PortHead("lv2:OutputPort , lv2:ControlPort", index, "latency", "Latency") +
           Property("lv2:minimum 0") + Property("lv2:designation lv2:latency") +
           Property("lv2:portProperty lv2:reportsLatency , lv2:integer , lv2:connectionOptional , "
                    "pprops:notOnGUI") +
           Property("units:unit units:frame\n\t]");
}

std::string AudioPort(const Variant& variant, uint32_t index, uint32_t number, bool isInput)
{
    const Channel channel = GetChannel(variant.layout->speakers[number]);
    const std::string direction = isInput ? "in" : "out";
    return PortHead(isInput ? "lv2:InputPort , lv2:AudioPort" : "lv2:OutputPort , lv2:AudioPort",
                    index,
                    direction + "_" + channel.symbol,
                    std::string(isInput ? "In " : "Out ") + channel.name) +
           Property("pg:group " + GroupUri(variant, direction.c_str())) +
           Property("lv2:designation pg:" + std::string(channel.designation) + "\n\t]");
}

std::string AllPorts(const Description& description, const Variant& variant)
{
    const Ports ports = {static_cast<uint32_t>(description.parameters.size()),
                         variant.ChannelCount()};
    std::string text = "\tlv2:port ";
    for (uint32_t i = 0; i < ports.parameters; ++i) {
        text += ParameterPort(description, i) + " , ";
    }
    text += LatencyPort(ports.Latency());
    for (uint32_t i = 0; i < ports.channels; ++i) {
        text += " , " + AudioPort(variant, ports.Input(i), i, true);
    }
    for (uint32_t i = 0; i < ports.channels; ++i) {
        text += " , " + AudioPort(variant, ports.Output(i), i, false);
    }
    return text + " .\n";
}

std::string Head(const Wrapper::Product& product, const Variant& variant)
{
    return TurtleUri(variant.uri) + "\n\ta lv2:Plugin , lv2:SpectralPlugin , " +
           "doap:Project ;\n\tdoap:name " +
           TurtleText(product.displayName + " (" + variant.layout->name + ")") +
           " ;\n\tdoap:license <https://spdx.org/licenses/ISC> ;\n\tdoap:maintainer [ a "
           "foaf:Organization ; foaf:name " +
           TurtleText(product.vendorLong) + " ] ;\n\tdoap:shortdesc " +
           TurtleText(Wrapper::ShortDescription) + " ;\n\trdfs:comment " +
           TurtleText(Wrapper::LongDescription) + " ;\n\tlv2:minorVersion " +
           std::to_string(product.versionNumber / MinorUnit) + " ;\n\tlv2:microVersion " +
           std::to_string(product.versionNumber % MinorUnit) +
           " ;\n\tlv2:optionalFeature lv2:hardRTCapable , urid:map , log:log , "
           "state:threadSafeRestore ;\n\tlv2:extensionData state:interface ;\n";
}

// Readers that check documents want to know every property.
std::string StateProperty()
{
    return TurtleUri(StateUri) + "\n\ta rdf:Property ;\n\trdfs:label \"State\" ;\n\trdfs:domain "
                                 "state:State ;\n\trdfs:range xsd:base64Binary .\n\n";
}

} // namespace

std::string PortSymbol(const Description& description, size_t index)
{
    if (description.bypassIndex == index) {
        return "enabled";
    }
    // Names for people may change; the identifier doesn't, and sessions hold symbols.
    const std::string& identifier = description.parameters[index].identifier;
    return TurtleSymbol(std::string_view(identifier).substr(identifier.find('.') + 1));
}

std::string PluginDocument(const Description& description, const Variant& variant)
{
    return TurtlePrefixes() + StateProperty() + Group(variant, "in", "Input") +
           Group(variant, "out", "Output") + Head(description.product, variant) +
           "\tpg:mainInput " + GroupUri(variant, "in") + " ;\n\tpg:mainOutput " +
           GroupUri(variant, "out") + " ;\n" + AllPorts(description, variant);
}

} // namespace Lv2

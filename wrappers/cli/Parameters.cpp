// SPDX-License-Identifier: ISC
#include "wrappers/cli/Parameters.h"

#include "wrappers/cli/Module.h"
#include "wrappers/cli/TextTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Cli {

namespace {

std::vector<std::string> SplitAtTabs(std::string_view text)
{
    std::vector<std::string> parts;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\t'), text.size());
        parts.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

// The way through a normalised float costs up to 3e-8 of the range, and the float in the module as
// much of the value: what is below a millionth of the range says nothing.
double Tidy(double value, double range)
{
    const double digits = std::floor(std::log10(range));
    const double scale = std::pow(10.0, 6.0 - digits);
    return std::round(value * scale) / scale;
}

std::string FormatRange(const Parameter& parameter)
{
    if (parameter.type == ParamTypeFloat) {
        return fmt::format("{} to {}",
                           FormatValue(parameter, parameter.minimum),
                           FormatValue(parameter, parameter.maximum));
    }
    std::string range;
    const auto last = std::lround(parameter.maximum);
    for (auto value = std::lround(parameter.minimum); value <= last; ++value) {
        range += (range.empty() ? "" : ", ") + FormatValue(parameter, static_cast<double>(value));
    }
    return range;
}

} // namespace

Parameter MakeParameter(const ParamInfoRecord& info)
{
    Parameter parameter;
    parameter.identifier = TextOf(info.identifier);
    parameter.displayName = TextOf(info.displayName);
    parameter.unit = TextOf(info.units);
    parameter.labels = SplitAtTabs(TextOf(info.labels));
    parameter.type = static_cast<PluginCoreParamType>(info.type);
    parameter.minimum = static_cast<double>(info.minimum);
    parameter.maximum = static_cast<double>(info.maximum);
    parameter.defaultValue = static_cast<double>(info.defaultValue);
    parameter.value = parameter.defaultValue;
    return parameter;
}

float Normalised(const Parameter& parameter, double value)
{
    const double range = parameter.maximum - parameter.minimum;
    const double inside = std::clamp(value, parameter.minimum, parameter.maximum);
    return static_cast<float>(range > 0 ? (inside - parameter.minimum) / range : 0.0);
}

double FromNormalised(const Parameter& parameter, float normalised)
{
    const double range = parameter.maximum - parameter.minimum;
    const double value = parameter.minimum + static_cast<double>(normalised) * range;
    if (parameter.type != ParamTypeFloat) {
        return std::round(value);
    }
    return range > 0 ? Tidy(value, range) : value;
}

std::string FormatValue(const Parameter& parameter, double value)
{
    if (parameter.type == ParamTypeBool) {
        return value >= 0.5 ? "on" : "off";
    }
    const auto label = static_cast<size_t>(std::lround(value - parameter.minimum));
    if (parameter.type == ParamTypeEnum && label < parameter.labels.size()) {
        return parameter.labels[label];
    }
    // Defaults and limits come as floats, values through one.
    return fmt::format("{}", static_cast<float>(value));
}

std::string ParameterTable(const std::vector<Parameter>& parameters)
{
    TextTable table({"NAME", "VALUE", "RANGE", "DEFAULT", "UNIT"});
    for (const Parameter& parameter : parameters) {
        table.Add({parameter.identifier,
                   FormatValue(parameter, parameter.value),
                   FormatRange(parameter),
                   FormatValue(parameter, parameter.defaultValue),
                   parameter.unit});
    }
    return table.Format();
}

} // namespace Cli

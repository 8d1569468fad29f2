// SPDX-License-Identifier: ISC
#include "wrappers/cli/effect/Parameters.h"

#include "wrappers/cli/text/TextTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Cli {

namespace {

using Kind = Wrapper::Parameter::Kind;

// The way through a normalised float costs up to 3e-8 of the range, and the float in the module as
// much of the value: what is below a millionth of the range means nothing.
double Tidy(double value, double range)
{
    const double digits = std::floor(std::log10(range));
    const double scale = std::pow(10.0, 6.0 - digits);
    return std::round(value * scale) / scale;
}

std::string FormatRange(const Wrapper::Parameter& parameter)
{
    if (parameter.kind == Kind::Number) {
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

double TidyValue(const Wrapper::Parameter& parameter, float normalised)
{
    const double range = parameter.maximum - parameter.minimum;
    const double value = parameter.FromNormalised(normalised);
    return parameter.kind == Kind::Number && range > 0 ? Tidy(value, range) : value;
}

std::string FormatValue(const Wrapper::Parameter& parameter, double value)
{
    if (parameter.kind == Kind::Switch) {
        return value >= 0.5 ? "on" : "off";
    }
    const auto label = static_cast<size_t>(std::lround(value - parameter.minimum));
    if (parameter.kind == Kind::Choice && label < parameter.labels.size()) {
        return parameter.labels[label];
    }
    // Defaults and limits come as floats, values through one.
    return fmt::format("{}", static_cast<float>(value));
}

std::string ParameterTable(const std::vector<ParameterValue>& parameters)
{
    TextTable table({"NAME", "VALUE", "RANGE", "DEFAULT", "UNIT", "CHANGED"});
    for (const auto& [parameter, value, isChanged] : parameters) {
        table.Add({parameter.identifier,
                   FormatValue(parameter, value),
                   FormatRange(parameter),
                   FormatValue(parameter, parameter.defaultValue),
                   parameter.unit,
                   isChanged ? "*" : ""});
    }
    return table.Format();
}

} // namespace Cli

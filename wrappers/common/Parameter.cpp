// SPDX-License-Identifier: ISC
#include "wrappers/common/Parameter.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace Wrapper {

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

// Hosts show the unit in a place of its own.
std::string WithoutUnit(std::string name, const std::string& unit)
{
    const std::string ending = " [" + unit + "]";
    if (name.ends_with(ending)) {
        name.resize(name.size() - ending.size());
    }
    return name;
}

Parameter::Kind KindOf(uint32_t type)
{
    switch (type) {
    case ParamTypeBool:
        return Parameter::Kind::Switch;
    case ParamTypeEnum:
        return Parameter::Kind::Choice;
    default:
        return Parameter::Kind::Number;
    }
}

bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words)
{
    return std::any_of(
        words.begin(), words.end(), [&](std::string_view one) { return IsSameText(word, one); });
}

std::string_view Trim(std::string_view text)
{
    constexpr std::string_view Blanks = " \t\r\n";
    const size_t begin = std::min(text.find_first_not_of(Blanks), text.size());
    text.remove_prefix(begin);
    return text.substr(0, text.find_last_not_of(Blanks) + 1);
}

// A thousandth of the range is as fine as a control is set by hand.
int Decimals(const Parameter& parameter)
{
    const double range = parameter.maximum - parameter.minimum;
    return range > 0 ? std::clamp(3 - static_cast<int>(std::floor(std::log10(range))), 0, 6) : 0;
}

std::string FormatNumber(double value, int decimals)
{
    std::array<char, 64> text{};
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
    return end.ec == std::errc() ? std::string(text.data(), end.ptr) : std::string();
}

std::optional<double> ParseNumber(std::string_view text, std::string_view unit)
{
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    double value = 0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end.ec != std::errc() || !std::isfinite(value)) {
        return std::nullopt;
    }
    const std::string_view rest = Trim(text.substr(static_cast<size_t>(end.ptr - text.data())));
    return rest.empty() || IsSameText(rest, unit) ? std::optional(value) : std::nullopt;
}

std::optional<double> ParseSwitch(std::string_view text)
{
    if (IsOneOf(text, {"on", "yes", "true", "1"})) {
        return 1.0;
    }
    return IsOneOf(text, {"off", "no", "false", "0"}) ? std::optional(0.0) : std::nullopt;
}

std::optional<double> ParseValue(const Parameter& parameter, std::string_view text)
{
    for (size_t i = 0; i < parameter.labels.size(); ++i) {
        if (IsSameText(text, parameter.labels[i])) {
            return parameter.minimum + static_cast<double>(i);
        }
    }
    return parameter.kind == Parameter::Kind::Switch ? ParseSwitch(text)
                                                     : ParseNumber(text, parameter.unit);
}

} // namespace

float Parameter::ToNormalised(double value) const noexcept
{
    const double range = maximum - minimum;
    const double inside = std::clamp(value, minimum, maximum);
    return range > 0 ? static_cast<float>((inside - minimum) / range) : 0.0F;
}

double Parameter::FromNormalised(float normalised) const noexcept
{
    const double value = minimum + static_cast<double>(normalised) * (maximum - minimum);
    return kind == Kind::Number ? value : std::round(value);
}

std::string Parameter::Format(float normalised) const
{
    // Hosts ask for the text of anything.
    const double value = FromNormalised(std::clamp(normalised, 0.0F, 1.0F));
    if (kind == Kind::Switch) {
        return value >= 0.5 ? "on" : "off";
    }
    const auto label = static_cast<size_t>(std::max(0.0, value - minimum));
    if (kind == Kind::Choice && label < labels.size()) {
        return labels[label];
    }
    const std::string number = FormatNumber(value, Decimals(*this));
    return unit.empty() ? number : number + " " + unit;
}

std::optional<float> Parameter::Parse(std::string_view text) const
{
    const std::optional<double> value = ParseValue(*this, Trim(text));
    return value ? std::optional(ToNormalised(*value)) : std::nullopt;
}

Parameter MakeParameter(const ParamInfoRecord& record)
{
    Parameter parameter;
    parameter.identifier = TextOf(record.identifier);
    parameter.unit = TextOf(record.units);
    parameter.name = WithoutUnit(TextOf(record.displayName), parameter.unit);
    parameter.labels = SplitAtTabs(TextOf(record.labels));
    parameter.kind = KindOf(record.type);
    parameter.isLogarithmic = (record.flags & ParamFlagLogarithmic) != 0;
    parameter.minimum = static_cast<double>(record.minimum);
    parameter.maximum = static_cast<double>(record.maximum);
    parameter.defaultValue = static_cast<double>(record.defaultValue);
    return parameter;
}

} // namespace Wrapper

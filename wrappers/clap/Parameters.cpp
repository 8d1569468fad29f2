// SPDX-License-Identifier: ISC
#include "wrappers/clap/Parameters.h"

#include "wrappers/common/Text.h"
#include "wrappers/common/Utf8.h"

#include <algorithm>
#include <cmath>

namespace Clap {

namespace {

clap_param_info_flags FlagsOf(const Wrapper::Parameter& parameter, bool isBypass)
{
    clap_param_info_flags flags = CLAP_PARAM_IS_AUTOMATABLE;
    if (parameter.kind != Wrapper::Parameter::Kind::Number) {
        flags |= CLAP_PARAM_IS_STEPPED;
    }
    if (parameter.kind == Wrapper::Parameter::Kind::Choice) {
        flags |= Abi::ParamIsEnum;
    }
    return isBypass ? flags | CLAP_PARAM_IS_BYPASS : flags;
}

// What is in range, and whole where it has to be. The format's rule is that a value of steps is
// cut, but one that comes back from a normalised number, here or in a host, may lie just below its
// step.
double NearestValue(const Wrapper::Parameter& parameter, double value) noexcept
{
    const double inside = std::clamp(value, parameter.minimum, parameter.maximum);
    return parameter.kind == Wrapper::Parameter::Kind::Number ? inside : std::round(inside);
}

} // namespace

Parameters::Parameters(Wrapper::Instance& newInstance)
    : parameters(newInstance)
    , values(parameters.Count())
{
    for (uint32_t index = 0; index < Count(); ++index) {
        values[index] = At(index).defaultValue;
    }
}

bool Parameters::Describe(uint32_t index, clap_param_info_t& info) const
{
    if (index >= Count()) {
        return false;
    }
    const Wrapper::Parameter& parameter = At(index);
    info = {};
    info.id = GetId(index);
    info.flags = FlagsOf(parameter, parameters.IsBypass(index));
    Wrapper::CopyText(parameter.name, info.name);
    const std::string_view identifier = parameter.identifier;
    Wrapper::CopyText(identifier.substr(0, identifier.find('.')), info.module);
    info.min_value = parameter.minimum;
    info.max_value = parameter.maximum;
    info.default_value = parameter.defaultValue;
    return true;
}

bool Parameters::ToText(uint32_t index, double value, std::span<char> text) const
{
    if (text.empty() || std::isnan(value)) {
        return false;
    }
    const Wrapper::Parameter& parameter = At(index);
    const std::string whole = parameter.Format(parameter.ToNormalised(value));
    text[Wrapper::Utf8::Cut(whole, text.size() - 1).copy(text.data(), text.size())] = '\0';
    return true;
}

std::optional<double> Parameters::FromText(uint32_t index, std::string_view text) const
{
    const std::optional<float> normalised = At(index).Parse(text);
    return normalised ? std::optional(At(index).FromNormalised(*normalised)) : std::nullopt;
}

void Parameters::Set(Wrapper::Side side, uint32_t index, double value) noexcept
{
    if (std::isnan(value)) {
        return;
    }
    const double nearest = NearestValue(At(index), value);
    values[index] = nearest;
    parameters.Set(side, index, At(index).ToNormalised(nearest));
}

void Parameters::Keep(uint32_t index, float normalised) noexcept
{
    TakeOver(index, normalised);
    parameters.NoteChange(index, normalised);
}

bool Parameters::Load(std::span<const uint8_t> session)
{
    return parameters.Load(
        session, [this](uint32_t index, float normalised) { TakeOver(index, normalised); });
}

void Parameters::Refresh()
{
    parameters.ReadAll([this](uint32_t index, float normalised) { TakeOver(index, normalised); });
}

void Parameters::TakeOver(uint32_t index, float normalised) noexcept
{
    // A default, or what the host has set, is finer than a normalised value.
    if (At(index).ToNormalised(values[index]) != normalised) {
        values[index] = NearestValue(At(index), At(index).FromNormalised(normalised));
    }
}

} // namespace Clap

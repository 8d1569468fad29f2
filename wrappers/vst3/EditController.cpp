// SPDX-License-Identifier: ISC
#include "wrappers/vst3/EditController.h"

#include "wrappers/vst3/Stream.h"
#include "wrappers/vst3/Utf16.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

namespace Vst3 {

namespace {

constexpr size_t TextLength = 128; // of every text that a host takes

using Wrapper::Parameter;

float ToFraction(double normalised)
{
    return std::isnan(normalised) ? 0.0F : static_cast<float>(std::clamp(normalised, 0.0, 1.0));
}

int32_t StepsOf(const Parameter& parameter)
{
    return parameter.kind == Parameter::Kind::Number
               ? 0
               : static_cast<int32_t>(std::lround(parameter.maximum - parameter.minimum));
}

// Hosts write the unit behind the text themselves.
std::string TextWithoutUnit(const Parameter& parameter, float normalised)
{
    std::string text = parameter.Format(normalised);
    const std::string ending = " " + parameter.unit;
    if (!parameter.unit.empty() && text.ends_with(ending)) {
        text.resize(text.size() - ending.size());
    }
    return text;
}

} // namespace

const v3_edit_controller_cpp EditController::Functions = {
    UnknownTable,
    {Slot<&EditController::Initialize>, Slot<&EditController::Terminate>},
    {Slot<&EditController::SetComponentState>,
     Slot<&EditController::SetState>,
     Slot<&EditController::GetState>,
     Slot<&EditController::GetParameterCount>,
     Slot<&EditController::GetParameterInfo>,
     Slot<&EditController::GetParameterStringForValue>,
     Slot<&EditController::GetParameterValueForString>,
     Slot<&EditController::NormalisedToPlain>,
     Slot<&EditController::PlainToNormalised>,
     Slot<&EditController::GetParameterNormalised>,
     Slot<&EditController::SetParameterNormalised>,
     Slot<&EditController::SetComponentHandler>,
     Slot<&EditController::CreateView>},
};

EditController::EditController(Object& newOwner, Effect& newEffect)
    : Interface{&Functions, &newOwner}
    , effect(newEffect)
{
}

v3_result EditController::Initialize(v3_funknown** context)
{
    return effect.Start(context) ? V3_OK : V3_FALSE;
}

v3_result EditController::Terminate()
{
    effect.Stop();
    return V3_OK;
}

// A host that has given the state to the component gives the same again, which does no harm.
v3_result EditController::SetComponentState(v3_bstream** stream)
{
    return effect.Load(ReadAll(stream)) ? V3_OK : V3_FALSE;
}

// Of its own the controller has nothing to keep.
v3_result EditController::SetState(v3_bstream** /*stream*/) noexcept
{
    return V3_NOT_IMPLEMENTED;
}

v3_result EditController::GetState(v3_bstream** /*stream*/) noexcept
{
    return V3_NOT_IMPLEMENTED;
}

int32_t EditController::GetParameterCount() noexcept
{
    return static_cast<int32_t>(effect.CountParameters());
}

v3_result EditController::GetParameterInfo(int32_t index, v3_param_info* info)
{
    if (info == nullptr || index < 0 || index >= GetParameterCount()) {
        return V3_INVALID_ARG;
    }
    const auto place = static_cast<uint32_t>(index);
    const Wrapper::Instance& instance = *effect.GetInstance();
    const Parameter& parameter = instance.GetParameters()[place];
    *info = {};
    info->param_id = effect.GetId(place);
    CopyUtf16(parameter.name, info->title);
    CopyUtf16(parameter.name, info->short_title);
    CopyUtf16(parameter.unit, info->units);
    info->step_count = StepsOf(parameter);
    info->default_normalised_value =
        static_cast<double>(parameter.ToNormalised(parameter.defaultValue));
    info->flags = V3_PARAM_CAN_AUTOMATE;
    if (parameter.kind == Parameter::Kind::Choice) {
        info->flags |= V3_PARAM_IS_LIST;
    }
    if (instance.GetBypassIndex() == place) {
        info->flags |= V3_PARAM_IS_BYPASS;
    }
    return V3_OK;
}

v3_result
EditController::GetParameterStringForValue(v3_param_id id, double normalised, int16_t* text)
{
    const Parameter* const parameter = effect.FindParameter(id);
    if (parameter == nullptr || text == nullptr) {
        return V3_INVALID_ARG;
    }
    CopyUtf16(TextWithoutUnit(*parameter, ToFraction(normalised)), std::span(text, TextLength));
    return V3_OK;
}

v3_result
EditController::GetParameterValueForString(v3_param_id id, int16_t* text, double* normalised)
{
    const Parameter* const parameter = effect.FindParameter(id);
    if (parameter == nullptr || text == nullptr || normalised == nullptr) {
        return V3_INVALID_ARG;
    }
    const std::optional<float> value = parameter->Parse(FromUtf16(text));
    if (!value) {
        return V3_FALSE;
    }
    *normalised = static_cast<double>(*value);
    return V3_OK;
}

double EditController::NormalisedToPlain(v3_param_id id, double normalised) noexcept
{
    const Parameter* const parameter = effect.FindParameter(id);
    return parameter != nullptr ? parameter->FromNormalised(ToFraction(normalised)) : normalised;
}

double EditController::PlainToNormalised(v3_param_id id, double plain) noexcept
{
    const Parameter* const parameter = effect.FindParameter(id);
    if (parameter == nullptr) {
        return plain;
    }
    return std::isnan(plain) ? 0.0 : static_cast<double>(parameter->ToNormalised(plain));
}

double EditController::GetParameterNormalised(v3_param_id id) noexcept
{
    return effect.GetValue(id);
}

v3_result EditController::SetParameterNormalised(v3_param_id id, double normalised) noexcept
{
    return effect.SetValue(id, normalised) ? V3_OK : V3_INVALID_ARG;
}

v3_result EditController::SetComponentHandler(v3_component_handler** handler)
{
    effect.SetHandler(handler);
    return V3_OK;
}

// The module has no editor yet, and without a view hosts draw sliders of their own. A view will
// stand here that opens a Wrapper::Editor in the window that it is attached to.
v3_plugin_view** EditController::CreateView(const char* /*name*/) noexcept
{
    return nullptr;
}

} // namespace Vst3

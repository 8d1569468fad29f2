// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/vst3/Effect.h"
#include "wrappers/vst3/Object.h"

#include <travesty/edit_controller.h>

#include <cstdint>

namespace Vst3 {

/// The UI side of a plug-in: its parameters, and its view once there is an editor.
class EditController final : public Interface {
public:
    EditController(Object& newOwner, Effect& newEffect);

private:
    v3_result Initialize(v3_funknown** context);
    v3_result Terminate();
    v3_result SetComponentState(v3_bstream** stream);
    v3_result SetState(v3_bstream** stream) noexcept;
    v3_result GetState(v3_bstream** stream) noexcept;
    int32_t GetParameterCount() noexcept;
    v3_result GetParameterInfo(int32_t index, v3_param_info* info);
    v3_result GetParameterStringForValue(v3_param_id id, double normalised, int16_t* text);
    v3_result GetParameterValueForString(v3_param_id id, int16_t* text, double* normalised);
    double NormalisedToPlain(v3_param_id id, double normalised) noexcept;
    double PlainToNormalised(v3_param_id id, double plain) noexcept;
    double GetParameterNormalised(v3_param_id id) noexcept;
    v3_result SetParameterNormalised(v3_param_id id, double normalised) noexcept;
    v3_result SetComponentHandler(v3_component_handler** handler);
    v3_plugin_view** CreateView(const char* name) noexcept;

    static const v3_edit_controller_cpp Functions;

    Effect& effect;
};

} // namespace Vst3

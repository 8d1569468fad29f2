// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/vst3/Effect.h"
#include "wrappers/vst3/Object.h"

#include <travesty/component.h>

#include <cstdint>

namespace Vst3 {

/// Life, buses and state of a plug-in: one main bus in and one out, both of the same arrangement.
class Component final : public Interface {
public:
    Component(Object& newOwner, Effect& newEffect);

private:
    v3_result Initialize(v3_funknown** context);
    v3_result Terminate();
    v3_result GetControllerClassId(uint8_t* id) noexcept;
    v3_result SetIoMode(int32_t mode) noexcept;
    int32_t GetBusCount(int32_t media, int32_t direction) noexcept;
    v3_result GetBusInfo(int32_t media, int32_t direction, int32_t index, v3_bus_info* info);
    v3_result GetRoutingInfo(v3_routing_info* input, v3_routing_info* output) noexcept;
    v3_result ActivateBus(int32_t media, int32_t direction, int32_t index, v3_bool state) noexcept;
    v3_result SetActive(v3_bool state);
    v3_result SetState(v3_bstream** stream);
    v3_result GetState(v3_bstream** stream);

    static const v3_component_cpp Functions;

    Effect& effect;
};

} // namespace Vst3

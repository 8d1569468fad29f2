// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Component.h"

#include "wrappers/vst3/Stream.h"
#include "wrappers/vst3/Utf16.h"

namespace Vst3 {

namespace {

bool IsBus(int32_t media, int32_t direction, int32_t index)
{
    return media == V3_AUDIO && (direction == V3_INPUT || direction == V3_OUTPUT) && index == 0;
}

} // namespace

const v3_component_cpp Component::Functions = {
    UnknownTable,
    {Slot<&Component::Initialize>, Slot<&Component::Terminate>},
    {Slot<&Component::GetControllerClassId>,
     Slot<&Component::SetIoMode>,
     Slot<&Component::GetBusCount>,
     Slot<&Component::GetBusInfo>,
     Slot<&Component::GetRoutingInfo>,
     Slot<&Component::ActivateBus>,
     Slot<&Component::SetActive>,
     Slot<&Component::SetState>,
     Slot<&Component::GetState>},
};

Component::Component(Object& newOwner, Effect& newEffect)
    : Interface{&Functions, &newOwner}
    , effect(newEffect)
{
}

v3_result Component::Initialize(v3_funknown** context)
{
    return effect.Start(context) ? V3_OK : V3_FALSE;
}

v3_result Component::Terminate()
{
    effect.Stop();
    return V3_OK;
}

// The controller is an interface of this object, and no class of its own.
v3_result Component::GetControllerClassId(uint8_t* /*id*/) noexcept
{
    return V3_NOT_IMPLEMENTED;
}

// The same audio in every mode.
v3_result Component::SetIoMode(int32_t /*mode*/) noexcept
{
    return V3_NOT_IMPLEMENTED;
}

int32_t Component::GetBusCount(int32_t media, int32_t direction) noexcept
{
    return IsBus(media, direction, 0) ? 1 : 0;
}

v3_result Component::GetBusInfo(int32_t media, int32_t direction, int32_t index, v3_bus_info* info)
{
    if (info == nullptr || !IsBus(media, direction, index)) {
        return V3_INVALID_ARG;
    }
    *info = {};
    info->media_type = media;
    info->direction = direction;
    info->channel_count = static_cast<int32_t>(effect.GetArrangement().ChannelCount());
    CopyUtf16(direction == V3_INPUT ? "Input" : "Output", info->bus_name);
    info->bus_type = V3_MAIN;
    info->flags = V3_DEFAULT_ACTIVE;
    return V3_OK;
}

v3_result Component::GetRoutingInfo(v3_routing_info* /*input*/,
                                    v3_routing_info* /*output*/) noexcept
{
    return V3_NOT_IMPLEMENTED;
}

// A bus that is switched off comes without memory, which shows anew in each block.
v3_result
Component::ActivateBus(int32_t media, int32_t direction, int32_t index, v3_bool /*state*/) noexcept
{
    return IsBus(media, direction, index) ? V3_OK : V3_INVALID_ARG;
}

v3_result Component::SetActive(v3_bool state)
{
    if (effect.GetInstance() == nullptr) {
        return V3_NOT_INITIALIZED;
    }
    effect.SetActive(state != 0);
    return V3_OK;
}

v3_result Component::SetState(v3_bstream** stream)
{
    return effect.Load(ReadAll(stream)) ? V3_OK : V3_FALSE;
}

v3_result Component::GetState(v3_bstream** stream)
{
    const std::vector<uint8_t> session = effect.Save();
    return !session.empty() && WriteAll(stream, session) ? V3_OK : V3_FALSE;
}

} // namespace Vst3

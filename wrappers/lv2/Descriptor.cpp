// SPDX-License-Identifier: ISC
// The plug-ins as a host finds them: one table of functions each.
#include "wrappers/common/Guarded.h"
#include "wrappers/lv2/Plugin.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace Lv2 {

namespace {

Plugin& PluginOf(LV2_Handle handle)
{
    return *static_cast<Plugin*>(handle);
}

const Variant* FindVariant(const char* uri)
{
    for (const Variant& variant : Variants) {
        if (std::string_view(uri) == variant.uri) {
            return &variant;
        }
    }
    return nullptr;
}

LV2_Handle Instantiate(const LV2_Descriptor* descriptor,
                       double sampleRate,
                       const char* /*bundlePath*/,
                       const LV2_Feature* const* features) noexcept
{
    return Wrapper::Guarded<LV2_Handle>(nullptr, [&]() -> LV2_Handle {
        const Variant* variant = FindVariant(descriptor->URI);
        return variant != nullptr
                   ? Plugin::Create(*variant, sampleRate, ReadFeatures(features)).release()
                   : nullptr;
    });
}

void ConnectPort(LV2_Handle handle, uint32_t port, void* data) noexcept
{
    PluginOf(handle).ConnectPort(port, data);
}

void Activate(LV2_Handle handle) noexcept
{
    PluginOf(handle).Activate();
}

void Run(LV2_Handle handle, uint32_t frames) noexcept
{
    PluginOf(handle).Run(frames);
}

void Deactivate(LV2_Handle handle) noexcept
{
    PluginOf(handle).Deactivate();
}

void CleanUp(LV2_Handle handle) noexcept
{
    delete static_cast<Plugin*>(handle); // the handle that Instantiate() released
}

LV2_State_Status Save(LV2_Handle handle,
                      LV2_State_Store_Function store,
                      LV2_State_Handle state,
                      uint32_t /*flags*/,
                      const LV2_Feature* const* /*features*/) noexcept
{
    return Wrapper::Guarded(LV2_STATE_ERR_UNKNOWN,
                            [&] { return PluginOf(handle).Save(store, state); });
}

LV2_State_Status Restore(LV2_Handle handle,
                         LV2_State_Retrieve_Function retrieve,
                         LV2_State_Handle state,
                         uint32_t /*flags*/,
                         const LV2_Feature* const* /*features*/) noexcept
{
    return Wrapper::Guarded(LV2_STATE_ERR_UNKNOWN,
                            [&] { return PluginOf(handle).Restore(retrieve, state); });
}

const void* ExtensionData(const char* uri) noexcept
{
    static constexpr LV2_State_Interface StateInterface = {Save, Restore};
    return std::string_view(uri) == LV2_STATE__interface ? &StateInterface : nullptr;
}

template <std::size_t... Index>
constexpr std::array<LV2_Descriptor, sizeof...(Index)>
MakeDescriptors(std::index_sequence<Index...>)
{
    return {LV2_Descriptor{Variants[Index].uri,
                           Instantiate,
                           ConnectPort,
                           Activate,
                           Run,
                           Deactivate,
                           CleanUp,
                           ExtensionData}...};
}

constexpr auto Descriptors = MakeDescriptors(std::make_index_sequence<Variants.size()>());

} // namespace

} // namespace Lv2

LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(uint32_t index)
{
    return index < Lv2::Descriptors.size() ? &Lv2::Descriptors[index] : nullptr;
}

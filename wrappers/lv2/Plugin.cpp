// SPDX-License-Identifier: ISC
#include "wrappers/lv2/Plugin.h"

#include <lv2/atom/atom.h>

#include <cmath>
#include <limits>
#include <utility>

namespace Lv2 {

namespace {

// What a restored state sets on the UI side reaches the audio within the first block, after the
// ports of that block: the second one sets them for good. Nothing as fine as Wrapper::LastWords is
// needed: ports can be read again, and no state takes their word from them.
constexpr uint32_t BlocksAfterRestore = 2;

} // namespace

std::unique_ptr<Plugin>
Plugin::Create(const Variant& variant, double sampleRate, const HostFeatures& host)
{
    const Wrapper::LogFunction log = MakeLog(host);
    auto module = Wrapper::Module::Load(log);
    if (module == nullptr) {
        return nullptr;
    }
    std::unique_ptr<Plugin> plugin(new Plugin(variant, host));
    Wrapper::Setup setup;
    setup.sampleRate = sampleRate;
    setup.channels = variant.ChannelCount();
    plugin->instance = Wrapper::Instance::Create(std::move(module), setup, *plugin, log);
    if (plugin->instance == nullptr) {
        return nullptr;
    }
    plugin->SizePorts();
    return plugin;
}

Plugin::Plugin(const Variant& variant, const HostFeatures& host)
    : channels(variant.ChannelCount())
    , stateKey(Map(host, StateUri))
    , chunkType(Map(host, LV2_ATOM__Chunk))
{
}

void Plugin::SizePorts()
{
    const size_t parameters = instance->GetParameters().size();
    ports = {static_cast<uint32_t>(parameters), channels};
    controls.assign(parameters, nullptr);
    heardControls.assign(parameters, std::numeric_limits<float>::quiet_NaN());
    inputs.assign(channels, nullptr);
    outputs.assign(channels, nullptr);
}

void Plugin::ConnectPort(uint32_t index, void* data) noexcept
{
    auto* const samples = static_cast<float*>(data);
    if (index < ports.parameters) {
        controls[index] = samples;
    } else if (index == ports.Latency()) {
        latency = samples;
    } else if (index < ports.Output(0)) {
        inputs[index - ports.Input(0)] = samples;
    } else if (index < ports.Count()) {
        outputs[index - ports.Output(0)] = samples;
    }
}

void Plugin::Activate()
{
    instance->Activate();
}

void Plugin::Deactivate()
{
    instance->Deactivate();
}

void Plugin::Run(uint32_t frames) noexcept WRAPPER_NONBLOCKING
{
    ReadControls(frames);
    instance->Process({inputs.data(), outputs.data(), frames}, std::nullopt);
    WriteLatency();
}

void Plugin::ReadControls(uint32_t frames) noexcept
{
    const uint32_t toForce = blocksToForce.load();
    for (uint32_t index = 0; index < ports.parameters; ++index) {
        ReadControl(index, toForce > 0);
    }
    // A block of no frames brings nothing from the UI side. A restoring that comes in between has
    // stored a number of its own, which stays.
    uint32_t expected = toForce;
    if (frames > 0 && toForce > 0) {
        blocksToForce.compare_exchange_strong(expected, toForce - 1);
    }
}

// Only changes are set, so that a port that stands still leaves alone what an editor does.
void Plugin::ReadControl(uint32_t index, bool isForced) noexcept
{
    if (controls[index] == nullptr) {
        return;
    }
    const float value = *controls[index];
    if (std::isnan(value) || (value == heardControls[index] && !isForced)) {
        return;
    }
    heardControls[index] = value;
    // The port "enabled" means the opposite of a bypass.
    const bool isBypass = instance->GetBypassIndex() == index;
    const float normalised =
        isBypass ? (value > 0.0F ? 0.0F : 1.0F)
                 : instance->GetParameters()[index].ToNormalised(static_cast<double>(value));
    instance->SetParameter(Wrapper::Side::Process, index, normalised);
}

void Plugin::WriteLatency() noexcept
{
    if (latency != nullptr) {
        *latency = static_cast<float>(instance->GetLatency(Wrapper::Side::Process));
    }
}

LV2_State_Status Plugin::Save(LV2_State_Store_Function store, LV2_State_Handle handle)
{
    if (stateKey == 0 || chunkType == 0) {
        return LV2_STATE_ERR_NO_FEATURE;
    }
    const std::vector<uint8_t> state = instance->SaveState();
    if (state.empty()) {
        return LV2_STATE_ERR_UNKNOWN;
    }
    return store(handle,
                 stateKey,
                 state.data(),
                 state.size(),
                 chunkType,
                 LV2_STATE_IS_POD | LV2_STATE_IS_PORTABLE);
}

LV2_State_Status Plugin::Restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle)
{
    if (stateKey == 0 || chunkType == 0) {
        return LV2_STATE_ERR_NO_FEATURE;
    }
    size_t size = 0;
    uint32_t type = 0;
    uint32_t flags = 0;
    const void* state = retrieve(handle, stateKey, &size, &type, &flags);
    if (state == nullptr) {
        return LV2_STATE_ERR_NO_PROPERTY;
    }
    if (type != chunkType) {
        return LV2_STATE_ERR_BAD_TYPE;
    }
    if (!instance->LoadState({static_cast<const uint8_t*>(state), size})) {
        return LV2_STATE_ERR_UNKNOWN;
    }
    // Ports are what the host shows, so that they have the last word on what they stand for.
    blocksToForce.store(BlocksAfterRestore);
    return LV2_STATE_SUCCESS;
}

} // namespace Lv2

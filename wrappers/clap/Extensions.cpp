// SPDX-License-Identifier: ISC
// The extensions of a plug-in: one table of functions each. The editor's would be one more of them.
#include "wrappers/clap/Functions.h"
#include "wrappers/clap/Streams.h"
#include "wrappers/common/Text.h"

#include <clap/ext/audio-ports.h>
#include <clap/ext/latency.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace Clap {

namespace {

// Each port has its number in its own direction.
constexpr clap_id MainPort = 0;

uint32_t CountParameters(const clap_plugin_t* plugin) noexcept
{
    return PluginOf(plugin).GetParameters().Count();
}

bool DescribeParameter(const clap_plugin_t* plugin,
                       uint32_t index,
                       clap_param_info_t* info) noexcept
{
    return info != nullptr && PluginOf(plugin).GetParameters().Describe(index, *info);
}

bool GetValue(const clap_plugin_t* plugin, clap_id id, double* value) noexcept
{
    const Parameters& parameters = PluginOf(plugin).GetParameters();
    const std::optional<uint32_t> index = parameters.Find(id);
    if (!index || value == nullptr) {
        return false;
    }
    *value = parameters.GetValue(*index);
    return true;
}

bool ValueToText(
    const clap_plugin_t* plugin, clap_id id, double value, char* text, uint32_t size) noexcept
{
    return Guarded(false, [&] {
        const Parameters& parameters = PluginOf(plugin).GetParameters();
        const std::optional<uint32_t> index = parameters.Find(id);
        return index && text != nullptr && parameters.ToText(*index, value, {text, size});
    });
}

bool TextToValue(const clap_plugin_t* plugin, clap_id id, const char* text, double* value) noexcept
{
    return Guarded(false, [&] {
        if (text == nullptr || value == nullptr) {
            return false;
        }
        const Parameters& parameters = PluginOf(plugin).GetParameters();
        const std::optional<uint32_t> index = parameters.Find(id);
        const std::optional<double> number =
            index ? parameters.FromText(*index, text) : std::nullopt;
        if (number) {
            *value = *number;
        }
        return number.has_value();
    });
}

void Flush(const clap_plugin_t* plugin,
           const clap_input_events_t* in,
           const clap_output_events_t* out) noexcept
{
    PluginOf(plugin).Flush(in, out);
}

constexpr clap_plugin_params_t ParamsTable = {
    CountParameters, DescribeParameter, GetValue, ValueToText, TextToValue, Flush};

bool Save(const clap_plugin_t* plugin, const clap_ostream_t* stream) noexcept
{
    return Guarded(false, [&] {
        const std::vector<uint8_t> session = PluginOf(plugin).Save();
        return stream != nullptr && !session.empty() && WriteAll(*stream, session);
    });
}

bool Load(const clap_plugin_t* plugin, const clap_istream_t* stream) noexcept
{
    return Guarded(false, [&] {
        const std::optional<std::vector<uint8_t>> session =
            stream != nullptr ? ReadAll(*stream) : std::nullopt;
        return session && PluginOf(plugin).Load(*session);
    });
}

constexpr clap_plugin_state_t StateTable = {Save, Load};

uint32_t GetLatency(const clap_plugin_t* plugin) noexcept
{
    return PluginOf(plugin).GetLatency();
}

constexpr clap_plugin_latency_t LatencyTable = {GetLatency};

uint32_t GetTail(const clap_plugin_t* plugin) noexcept
{
    return PluginOf(plugin).GetTail();
}

constexpr Abi::PluginTail TailTable = {GetTail};

bool HasHardRealtimeRequirement(const clap_plugin_t* /*plugin*/) noexcept
{
    return false;
}

// What is rendered is what was heard: both modes sound alike.
bool SetRenderMode(const clap_plugin_t* /*plugin*/, int32_t mode) noexcept
{
    return mode == Abi::RenderRealtime || mode == Abi::RenderOffline;
}

constexpr Abi::PluginRender RenderTable = {HasHardRealtimeRequirement, SetRenderMode};

uint32_t CountPorts(const clap_plugin_t* /*plugin*/, bool /*isInput*/) noexcept
{
    return 1;
}

bool DescribePort(const clap_plugin_t* plugin,
                  uint32_t index,
                  bool isInput,
                  clap_audio_port_info_t* info) noexcept
{
    if (index != 0 || info == nullptr) {
        return false;
    }
    const Layout& layout = PluginOf(plugin).GetLayout();
    *info = {};
    info->id = MainPort;
    Wrapper::CopyText(isInput ? "Input" : "Output", info->name);
    info->flags = CLAP_AUDIO_PORT_IS_MAIN;
    info->channel_count = layout.ChannelCount();
    info->port_type = GetPortType(layout);
    info->in_place_pair = MainPort;
    return true;
}

constexpr clap_plugin_audio_ports_t PortsTable = {CountPorts, DescribePort};

uint32_t CountConfigs(const clap_plugin_t* /*plugin*/) noexcept
{
    return static_cast<uint32_t>(Wrapper::Layouts::All.size());
}

bool DescribeConfig(const clap_plugin_t* /*plugin*/,
                    uint32_t index,
                    Abi::AudioPortsConfig* config) noexcept
{
    if (index >= Wrapper::Layouts::All.size() || config == nullptr) {
        return false;
    }
    const Layout& layout = *Wrapper::Layouts::All[index];
    *config = {};
    config->id = GetId(layout);
    Wrapper::CopyText(layout.name, config->name);
    config->inputPortCount = 1;
    config->outputPortCount = 1;
    config->hasMainInput = true;
    config->mainInputChannelCount = layout.ChannelCount();
    config->mainInputPortType = GetPortType(layout);
    config->hasMainOutput = true;
    config->mainOutputChannelCount = layout.ChannelCount();
    config->mainOutputPortType = GetPortType(layout);
    return true;
}

bool SelectConfig(const clap_plugin_t* plugin, clap_id id) noexcept
{
    return PluginOf(plugin).SelectLayout(id);
}

constexpr Abi::PluginAudioPortsConfig ConfigsTable = {CountConfigs, DescribeConfig, SelectConfig};

bool IsMaskSupported(const clap_plugin_t* /*plugin*/, uint64_t mask) noexcept
{
    const auto& layouts = Wrapper::Layouts::All;
    return std::any_of(layouts.begin(), layouts.end(), [mask](const Layout* layout) {
        return GetSpeakerMask(*layout) == mask;
    });
}

uint32_t GetChannelMap(const clap_plugin_t* plugin,
                       bool /*isInput*/,
                       uint32_t port,
                       uint8_t* map,
                       uint32_t capacity) noexcept
{
    const Layout& layout = PluginOf(plugin).GetLayout();
    if (port != 0 || map == nullptr || capacity < layout.ChannelCount()) {
        return 0;
    }
    std::transform(layout.speakers.begin(), layout.speakers.end(), map, GetNumber);
    return layout.ChannelCount();
}

constexpr Abi::PluginSurround SurroundTable = {IsMaskSupported, GetChannelMap};

struct Extension {
    std::string_view id;
    const void* table;
};

constexpr std::array<Extension, 9> Extensions = {{
    {CLAP_EXT_AUDIO_PORTS, &PortsTable},
    {Abi::ExtAudioPortsConfig, &ConfigsTable},
    {CLAP_EXT_LATENCY, &LatencyTable},
    {CLAP_EXT_PARAMS, &ParamsTable},
    {Abi::ExtRender, &RenderTable},
    {CLAP_EXT_STATE, &StateTable},
    {Abi::ExtSurround, &SurroundTable},
    {Abi::ExtSurroundDraft, &SurroundTable},
    {Abi::ExtTail, &TailTable},
}};

} // namespace

const void* FindExtension(const char* id) noexcept
{
    if (id == nullptr) {
        return nullptr;
    }
    const auto* found = std::find_if(
        Extensions.begin(), Extensions.end(), [id](const Extension& one) { return one.id == id; });
    return found != Extensions.end() ? found->table : nullptr;
}

} // namespace Clap

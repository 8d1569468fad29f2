// SPDX-License-Identifier: ISC
#include "tests/contract/support/AudioCall.h"
#include "tests/wrappers/clap/support/ClapHost.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ClapHost {

namespace {

const clap_plugin_t* Create(Host& host)
{
    host.phase = Host::Phase::Creating;
    const clap_plugin_factory_t* factory = Factory();
    const clap_plugin_t* plugin =
        factory != nullptr ? factory->create_plugin(factory, host.Get(), pluginId) : nullptr;
    host.phase = Host::Phase::Inactive;
    return plugin;
}

} // namespace

Plugin::Plugin(Host& newHost)
    : host(newHost)
    , plugin(Create(newHost))
    , isInitialised(plugin != nullptr && plugin->init(plugin))
{
}

Plugin::~Plugin()
{
    if (plugin == nullptr) {
        return;
    }
    if (host.phase == Host::Phase::Active) {
        Deactivate();
    }
    plugin->destroy(plugin);
}

bool Plugin::Activate(double rate)
{
    host.BecomeMain();
    const Host::Phase former = host.phase.exchange(Host::Phase::Activating);
    const bool isDone = plugin->activate(plugin, rate, 1, 65536);
    host.phase = isDone ? Host::Phase::Active : former;
    const AudioScope scope;
    return isDone && plugin->start_processing(plugin);
}

void Plugin::Deactivate()
{
    host.BecomeMain();
    {
        const AudioScope scope;
        plugin->stop_processing(plugin);
    }
    plugin->deactivate(plugin);
    host.phase = Host::Phase::Inactive;
}

void Plugin::Idle()
{
    host.BecomeMain();
    if (host.isCallbackWanted.exchange(false)) {
        plugin->on_main_thread(plugin);
    }
}

clap_process_status Plugin::Process(const float* const* inputs,
                                    float* const* outputs,
                                    uint32_t channels,
                                    uint32_t frames,
                                    const InputEvents* in,
                                    const OutputEvents* out,
                                    const clap_event_transport_t* transport)
{
    static const InputEvents noInput;
    static const OutputEvents noOutput;
    clap_audio_buffer_t input{};
    clap_audio_buffer_t output{};
    input.data32 = const_cast<float**>(inputs);
    output.data32 = const_cast<float**>(outputs);
    input.channel_count = channels;
    output.channel_count = channels;
    clap_process_t process{};
    process.steady_time = -1;
    process.frames_count = frames;
    process.transport = transport;
    process.audio_inputs = inputs != nullptr ? &input : nullptr;
    process.audio_outputs = outputs != nullptr ? &output : nullptr;
    process.audio_inputs_count = inputs != nullptr ? 1 : 0;
    process.audio_outputs_count = outputs != nullptr ? 1 : 0;
    process.in_events = (in != nullptr ? in : &noInput)->Get();
    process.out_events = (out != nullptr ? out : &noOutput)->Get();
    const AudioScope scope;
    const Contract::AudioCall call;
    return plugin->process(plugin, &process);
}

void Plugin::Reset()
{
    const AudioScope scope;
    const Contract::AudioCall call;
    plugin->reset(plugin);
}

void Plugin::Flush(const InputEvents* in, const OutputEvents* out)
{
    const auto* params = Find<clap_plugin_params_t>(CLAP_EXT_PARAMS);
    std::optional<AudioScope> scope;
    std::optional<Contract::AudioCall> call;
    if (host.phase == Host::Phase::Active) {
        scope.emplace();
        call.emplace();
    }
    params->flush(
        plugin, in != nullptr ? in->Get() : nullptr, out != nullptr ? out->Get() : nullptr);
}

bool Plugin::SelectConfig(clap_id id)
{
    host.BecomeMain();
    const auto* configs = Find<Clap::Abi::PluginAudioPortsConfig>(Clap::Abi::extAudioPortsConfig);
    return configs->select(plugin, id);
}

uint32_t Plugin::GetLatency() const
{
    return Find<clap_plugin_latency_t>(CLAP_EXT_LATENCY)->get(plugin);
}

uint32_t Plugin::CountParameters() const
{
    return Find<clap_plugin_params_t>(CLAP_EXT_PARAMS)->count(plugin);
}

clap_param_info_t Plugin::Describe(uint32_t index) const
{
    clap_param_info_t info{};
    Find<clap_plugin_params_t>(CLAP_EXT_PARAMS)->get_info(plugin, index, &info);
    return info;
}

double Plugin::GetValue(clap_id id) const
{
    double value = std::nan("");
    Find<clap_plugin_params_t>(CLAP_EXT_PARAMS)->get_value(plugin, id, &value);
    return value;
}

std::vector<uint8_t> Plugin::Save(uint64_t piece) const
{
    struct Target {
        uint64_t piece;
        std::vector<uint8_t> bytes;
    } target{piece, {}};
    const clap_ostream_t stream = {
        &target, [](const clap_ostream_t* self, const void* bytes, uint64_t size) {
            auto& to = *static_cast<Target*>(self->ctx);
            const uint64_t count = std::min(size, to.piece);
            const auto* from = static_cast<const uint8_t*>(bytes);
            to.bytes.insert(to.bytes.end(), from, from + count);
            return static_cast<int64_t>(count);
        }};
    const bool isSaved = Find<clap_plugin_state_t>(CLAP_EXT_STATE)->save(plugin, &stream);
    return isSaved ? target.bytes : std::vector<uint8_t>{};
}

bool Plugin::Load(std::span<const uint8_t> bytes, uint64_t piece)
{
    host.BecomeMain();
    struct Source {
        uint64_t piece;
        std::span<const uint8_t> bytes;
    } source{piece, bytes};
    const clap_istream_t stream = {
        &source, [](const clap_istream_t* self, void* bytesOut, uint64_t size) {
            auto& from = *static_cast<Source*>(self->ctx);
            const uint64_t count = std::min({size, from.piece, uint64_t{from.bytes.size()}});
            std::copy_n(from.bytes.begin(), count, static_cast<uint8_t*>(bytesOut));
            from.bytes = from.bytes.subspan(count);
            return static_cast<int64_t>(count);
        }};
    return Find<clap_plugin_state_t>(CLAP_EXT_STATE)->load(plugin, &stream);
}

std::vector<uint8_t> MakeSession(std::span<const uint8_t> state, bool isBypassed)
{
    const std::array<uint8_t, 6> head = {
        'P', 'g', 'S', 's', 1, isBypassed ? uint8_t{1} : uint8_t{0}};
    std::vector<uint8_t> session(head.size() + state.size());
    std::copy(state.begin(), state.end(), std::copy(head.begin(), head.end(), session.begin()));
    return session;
}

} // namespace ClapHost

// SPDX-License-Identifier: ISC
#include "tests/contract/support/AudioCall.h"
#include "tests/wrappers/clap/support/ClapHost.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace ClapHost {

namespace {

const clap_plugin_t* Create(const Use& use, Host& host)
{
    host.phase = Host::Phase::Creating;
    const clap_plugin_factory_t* factory = use.GetFactory();
    const clap_plugin_t* plugin =
        factory != nullptr ? factory->create_plugin(factory, host.Get(), PluginId) : nullptr;
    host.phase = Host::Phase::Inactive;
    return plugin;
}

} // namespace

const clap_event_transport_t* AnyTransport::Next(uint32_t frames, InputEvents& events)
{
    if (frames > 0 && engine() % 4 == 0) {
        events.AddTransport(static_cast<uint32_t>(engine() % frames), AnyTime());
    }
    switch (engine() % 4) {
    case 0:
        return nullptr;
    case 1:
        transport = InputEvents::MakeTransport(0, AnyTime());
        break;
    case 2:
        transport.song_pos_seconds += CLAP_SECTIME_FACTOR / 100;
        break;
    default:
        for (size_t i = sizeof transport.header; i < sizeof transport; ++i) {
            reinterpret_cast<uint8_t*>(&transport)[i] = static_cast<uint8_t>(engine());
        }
        transport.song_pos_seconds /= 2; // to go on from
    }
    return &transport;
}

// Some 50 s around the beginning, or far away.
std::optional<double> AnyTransport::AnyTime()
{
    const double seconds = static_cast<double>(engine() % 100'000) / 1000 - 50;
    return engine() % 4 == 0   ? std::nullopt
           : engine() % 4 == 0 ? std::optional(1e7 * seconds)
                               : std::optional(seconds);
}

Plugin::Plugin(std::shared_ptr<Host> newHost, uint32_t newChannels)
    : host(std::move(newHost))
    , channels(newChannels)
    , plugin(Create(use, *host))
    , isInitialised(plugin != nullptr && plugin->init(plugin))
{
    if (isInitialised && channels != 2 && !SelectConfig(channels)) {
        std::abort(); // all layouts of the contract are there
    }
}

Plugin::~Plugin()
{
    if (plugin == nullptr) {
        return;
    }
    if (host->phase == Host::Phase::Active) {
        Deactivate();
    }
    plugin->destroy(plugin);
}

bool Plugin::Activate(double rate, uint32_t longestBlock)
{
    host->BecomeMain();
    const uint32_t former = host->latencyChanges;
    const Host::Phase formerPhase = host->phase.exchange(Host::Phase::Activating);
    const bool isDone = plugin->activate(plugin, rate, 1, longestBlock);
    host->phase = isDone ? Host::Phase::Active : formerPhase;
    // What it has asked the restart for is no news.
    latencyReports += isRestartDue ? 0 : host->latencyChanges - former;
    isRestartDue = isRestartDue && !isDone;
    const AudioScope scope;
    return isDone && plugin->start_processing(plugin);
}

void Plugin::Deactivate()
{
    host->BecomeMain();
    {
        const AudioScope scope;
        plugin->stop_processing(plugin);
    }
    plugin->deactivate(plugin);
    host->phase = Host::Phase::Inactive;
}

void Plugin::Idle()
{
    host->BecomeMain();
    const uint32_t former = host->restarts;
    if (host->isCallbackWanted.exchange(false)) {
        plugin->on_main_thread(plugin);
    }
    latencyReports += host->restarts - former;
    isRestartDue = isRestartDue || host->restarts != former;
}

clap_process_status Plugin::Send(const float* const* inputs,
                                 float* const* outputs,
                                 uint32_t frames,
                                 const InputEvents* in,
                                 const OutputEvents* out,
                                 const clap_event_transport_t* blockTransport)
{
    static const InputEvents NoInput;
    static const OutputEvents NoOutput;
    clap_audio_buffer_t input{};
    clap_audio_buffer_t output{};
    input.data32 = const_cast<float**>(inputs);
    output.data32 = const_cast<float**>(outputs);
    input.channel_count = channels;
    output.channel_count = channels;
    clap_process_t process{};
    process.steady_time = -1;
    process.frames_count = frames;
    process.transport = blockTransport;
    process.audio_inputs = inputs != nullptr ? &input : nullptr;
    process.audio_outputs = outputs != nullptr ? &output : nullptr;
    process.audio_inputs_count = inputs != nullptr ? 1 : 0;
    process.audio_outputs_count = outputs != nullptr ? 1 : 0;
    process.in_events = (in != nullptr ? in : &NoInput)->Get();
    process.out_events = (out != nullptr ? out : &NoOutput)->Get();
    const AudioScope scope;
    const Contract::AudioCall call;
    return plugin->process(plugin, &process);
}

Audio Plugin::Send(Audio audio, const InputEvents* in)
{
    std::vector<float*> pointers;
    for (auto& channel : audio) {
        pointers.push_back(channel.data());
    }
    const auto frames = static_cast<uint32_t>(audio[0].size());
    host->Check(Send(pointers.data(), pointers.data(), frames, in) == CLAP_PROCESS_TAIL, "process");
    return audio;
}

void Plugin::Process(const float* const* inputs, float* const* outputs, uint32_t frames)
{
    InputEvents due;
    for (const auto& [index, value] : waiting.Take()) {
        const clap_param_info_t info = Describe(index);
        const double range = info.max_value - info.min_value;
        due.AddValue(0, info.id, info.min_value + static_cast<double>(value) * range);
    }
    const bool isActive = host->phase == Host::Phase::Active;
    if (frames == 0 && isActive) {
        Flush(&due, nullptr);
    }
    const clap_event_transport_t* const place = transport.Next(frames, due);
    const clap_process_status status = Send(inputs, outputs, frames, &due, nullptr, place);
    host->Check(status == (isActive ? CLAP_PROCESS_TAIL : CLAP_PROCESS_ERROR), "process");
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
    if (host->phase == Host::Phase::Active) {
        scope.emplace();
        call.emplace();
    }
    params->flush(
        plugin, in != nullptr ? in->Get() : nullptr, out != nullptr ? out->Get() : nullptr);
}

bool Plugin::SelectConfig(clap_id id)
{
    host->BecomeMain();
    const auto* configs = Find<Clap::Abi::PluginAudioPortsConfig>(Clap::Abi::ExtAudioPortsConfig);
    return configs->select(plugin, id);
}

uint32_t Plugin::GetLatency()
{
    return Find<clap_plugin_latency_t>(CLAP_EXT_LATENCY)->get(plugin);
}

uint32_t Plugin::CountParameters()
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

void Plugin::SetParameter(uint32_t index, float normalised)
{
    waiting.Set(index, normalised);
}

std::optional<float> Plugin::GetParameter(uint32_t index)
{
    const clap_param_info_t info = Describe(index);
    return static_cast<float>((GetValue(info.id) - info.min_value) /
                              (info.max_value - info.min_value));
}

std::vector<uint8_t> Plugin::Save()
{
    struct Target {
        uint64_t piece;
        std::vector<uint8_t> bytes;
    } target{streamLimit, {}};
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

bool Plugin::Load(std::span<const uint8_t> bytes)
{
    host->BecomeMain();
    struct Source {
        uint64_t piece;
        std::span<const uint8_t> bytes;
    } source{streamLimit, bytes};
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

} // namespace ClapHost

namespace Contract {

std::unique_ptr<FormatHost> MakeClapHost(double /*rate*/, uint32_t channels)
{
    auto host = std::make_unique<ClapHost::Plugin>(std::make_shared<ClapHost::Host>(), channels);
    return *host ? std::move(host) : nullptr;
}

} // namespace Contract

// SPDX-License-Identifier: ISC
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include "tests/contract/support/AudioCall.h"

namespace Vst3Host {

std::basic_string<int16_t> Text16(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::string TextOf(const int16_t* text)
{
    std::string result;
    for (; *text != 0; ++text) {
        result += *text > 0 && *text < 0x80 ? static_cast<char>(*text) : '?';
    }
    return result;
}

Binary::Binary()
    : Library(PUFFGUARD_VST3)
    , hasEntered(Enter())
{
}

Held<IFactory> GetFactory(const Binary& binary)
{
    const auto get = binary.Find<void* (*)()>("GetPluginFactory");
    return Held<IFactory>(get != nullptr ? static_cast<IFactory*>(get()) : nullptr);
}

Held<IFactory> GetFactory()
{
    static const Binary Bundle;
    return GetFactory(Bundle);
}

Held<IComponent> Create(IFactory& factory)
{
    v3_class_info info = {};
    void* object = nullptr;
    if (factory.GetClassInfo(0, &info) == V3_OK) {
        factory.CreateInstance(info.class_id, v3_component_iid, &object);
    }
    return Held<IComponent>(static_cast<IComponent*>(object));
}

v3_process_context* AnyTransport::Next(uint32_t frames, double rate)
{
    const int64_t goneOn = context.project_time_in_samples + frames;
    switch (engine() % 4) {
    case 0:
        return nullptr;
    case 1:
        context = {};
        context.project_time_in_samples = static_cast<int64_t>(engine() % 100'000) - 50'000;
        break;
    case 2:
        context.project_time_in_samples = goneOn;
        break;
    default:
        for (size_t i = 0; i < sizeof context; ++i) {
            reinterpret_cast<uint8_t*>(&context)[i] = static_cast<uint8_t>(engine());
        }
        context.project_time_in_samples /= 2; // to go on from
    }
    constexpr double None = std::numeric_limits<double>::quiet_NaN();
    context.sample_rate = std::array{rate, 0.0, None, -rate}[engine() % 4];
    context.state = engine() % 4 == 0 ? static_cast<uint32_t>(engine())
                                      : static_cast<uint32_t>(V3_PROCESS_CTX_PLAYING);
    return &context;
}

Plugin::Plugin(uint32_t newChannels, double newRate, std::shared_ptr<Host> newHost)
    : channels(newChannels)
    , host(std::move(newHost))
    , rate(newRate)
{
    const Held<IFactory> factory = GetFactory(binary);
    component = factory ? Create(*factory) : nullptr;
    IUnknown* const context = host != nullptr ? host->Get() : nullptr;
    if (component == nullptr || component->Initialize(context) != V3_OK) {
        component = nullptr;
        return;
    }
    processor = Query<IAudioProcessor>(*component, v3_audio_processor_iid);
    controller = Query<IEditController>(*component, v3_edit_controller_iid);
    if (host != nullptr) {
        controller->SetComponentHandler(context);
    }
    parameters.resize(static_cast<size_t>(controller->GetParameterCount()));
    for (size_t i = 0; i < parameters.size(); ++i) {
        controller->GetParameterInfo(static_cast<int32_t>(i), &parameters[i]);
    }
    const uint64_t mask = channels == 1   ? Mono
                          : channels == 2 ? Stereo
                          : channels == 6 ? Surround51
                                          : Surround71;
    Arrange(mask, mask);
    Setup(rate);
}

Plugin::~Plugin()
{
    if (component != nullptr) {
        Deactivate();
        controller->SetComponentHandler(nullptr);
        component->Terminate();
    }
}

int32_t Plugin::Setup(double newRate, int32_t longestBlock)
{
    v3_process_setup setup = {V3_REALTIME, V3_SAMPLE_32, longestBlock, newRate};
    return processor->SetupProcessing(&setup);
}

int32_t Plugin::Arrange(uint64_t inputs, uint64_t outputs)
{
    return processor->SetBusArrangements(&inputs, 1, &outputs, 1);
}

void Plugin::Start()
{
    component->SetActive(1);
    processor->SetProcessing(1);
}

bool Plugin::Activate(double newRate, uint32_t longestBlock)
{
    if (Setup(newRate, static_cast<int32_t>(longestBlock)) != V3_OK) {
        return false;
    }
    rate = newRate;
    Start();
    return true;
}

void Plugin::Deactivate()
{
    processor->SetProcessing(0);
    component->SetActive(0);
}

int32_t Plugin::Send(const float* const* inputs,
                     float* const* outputs,
                     uint32_t frames,
                     const BlockContext& context)
{
    const auto count = static_cast<int32_t>(channels);
    v3_audio_bus_buffers input = {count, 0, {const_cast<float**>(inputs)}};
    v3_audio_bus_buffers output = {count, 0, {const_cast<float**>(outputs)}};
    v3_process_data data = {};
    data.symbolic_sample_size = V3_SAMPLE_32;
    data.nframes = static_cast<int32_t>(frames);
    data.num_input_buses = inputs != nullptr ? 1 : 0;
    data.num_output_buses = outputs != nullptr ? 1 : 0;
    data.inputs = inputs != nullptr ? &input : nullptr;
    data.outputs = outputs != nullptr ? &output : nullptr;
    data.input_params = reinterpret_cast<v3_param_changes**>(context.input);
    data.output_params = reinterpret_cast<v3_param_changes**>(context.output);
    data.ctx = context.transport;
    const Contract::AudioCall scope;
    return processor->Process(&data);
}

void Plugin::Process(const float* const* inputs, float* const* outputs, uint32_t frames)
{
    Changes changes;
    for (const auto& [index, value] : waiting.Take()) {
        changes.Add(parameters[index].param_id, {{0, static_cast<double>(value)}});
    }
    Send(inputs, outputs, frames, {&changes, nullptr, transport.Next(frames, rate)});
}

void Plugin::Reset()
{
    for (const uint8_t isProcessing : {uint8_t{0}, uint8_t{1}}) {
        const Contract::AudioCall scope;
        processor->SetProcessing(isProcessing);
    }
}

std::optional<uint32_t> Plugin::CountLatencyReports()
{
    return static_cast<uint32_t>(
        std::count(host->heard.begin(),
                   host->heard.end(),
                   "restart " + std::to_string(V3_RESTART_LATENCY_CHANGED)));
}

void Plugin::SetParameter(uint32_t index, float normalised)
{
    controller->SetValue(parameters[index].param_id, static_cast<double>(normalised));
    waiting.Set(index, normalised);
}

std::optional<float> Plugin::GetParameter(uint32_t index)
{
    return static_cast<float>(controller->GetValue(parameters[index].param_id));
}

std::vector<uint8_t> Plugin::Save()
{
    Stream stream({}, streamLimit);
    return component->GetState(&stream) == V3_OK ? stream.bytes : std::vector<uint8_t>();
}

int32_t Plugin::LoadComponent(std::span<const uint8_t> bytes)
{
    Stream stream({bytes.begin(), bytes.end()}, streamLimit);
    return component->SetState(&stream);
}

int32_t Plugin::LoadController(std::span<const uint8_t> bytes)
{
    Stream stream({bytes.begin(), bytes.end()}, streamLimit);
    return controller->SetComponentState(&stream);
}

bool Plugin::Load(std::span<const uint8_t> bytes)
{
    if (LoadComponent(bytes) != V3_OK || LoadController(bytes) != V3_OK) {
        return false;
    }
    waiting.Take(); // what came before it
    return true;
}

} // namespace Vst3Host

namespace Contract {

std::unique_ptr<FormatHost> MakeVst3Host(double rate, uint32_t channels)
{
    auto host =
        std::make_unique<Vst3Host::Plugin>(channels, rate, std::make_shared<Vst3Host::Host>());
    return *host ? std::move(host) : nullptr;
}

} // namespace Contract

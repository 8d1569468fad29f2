// SPDX-License-Identifier: ISC
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include "tests/contract/support/AudioCall.h"

#include <dlfcn.h>

#include <algorithm>

namespace Vst3Host {

namespace {

template <typename Function>
Function Symbol(void* library, const char* name)
{
    return library != nullptr ? reinterpret_cast<Function>(dlsym(library, name)) : nullptr;
}

void* Library()
{
    static void* const library = [] {
        void* loaded = dlopen(BinaryPath().c_str(), RTLD_NOW | RTLD_LOCAL);
        const auto enter = Symbol<bool (*)(void*)>(loaded, "ModuleEntry");
        return enter != nullptr && enter(loaded) ? loaded : nullptr;
    }();
    return library;
}

} // namespace

uint64_t MaskOf(uint32_t channels)
{
    return channels == 1 ? mono : channels == 2 ? stereo : channels == 6 ? surround51 : surround71;
}

std::string BinaryPath()
{
    return PUFFGUARD_VST3_BUNDLE "/Contents/" PUFFGUARD_VST3_PROCESSOR "-linux/Puff-guard.so";
}

Held<IFactory> GetFactory(void* library)
{
    const auto get = Symbol<void* (*)()>(library, "GetPluginFactory");
    return Held<IFactory>(get != nullptr ? static_cast<IFactory*>(get()) : nullptr);
}

Held<IFactory> GetFactory()
{
    return GetFactory(Library());
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

Plugin::Plugin(uint32_t newChannels, double rate, Host* host)
    : channels(newChannels)
{
    const Held<IFactory> factory = GetFactory();
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
    Arrange(MaskOf(channels), MaskOf(channels));
    Setup(rate);
}

Plugin::~Plugin()
{
    if (component != nullptr) {
        Stop();
        controller->SetComponentHandler(nullptr);
        component->Terminate();
    }
}

int32_t Plugin::Setup(double rate, int32_t longestBlock)
{
    v3_process_setup setup = {V3_REALTIME, V3_SAMPLE_32, longestBlock, rate};
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

void Plugin::Stop()
{
    processor->SetProcessing(0);
    component->SetActive(0);
}

int32_t Plugin::Process(const float* const* inputs,
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

int32_t Plugin::Flush(Changes& changes)
{
    return Process(nullptr, nullptr, 0, {&changes, nullptr, nullptr});
}

void Plugin::Run(Audio& audio, uint32_t block)
{
    const auto frames = static_cast<uint32_t>(audio[0].size());
    std::vector<float*> pointers(audio.size());
    for (uint32_t done = 0; done < frames; done += block) {
        for (size_t c = 0; c < audio.size(); ++c) {
            pointers[c] = audio[c].data() + done;
        }
        Process(pointers.data(), pointers.data(), std::min(block, frames - done));
    }
}

std::vector<uint8_t> Plugin::Save(int32_t most)
{
    Stream stream({}, most);
    return component->GetState(&stream) == V3_OK ? stream.bytes : std::vector<uint8_t>();
}

int32_t Plugin::Load(std::span<const uint8_t> bytes, int32_t most)
{
    Stream stream({bytes.begin(), bytes.end()}, most);
    return component->SetState(&stream);
}

} // namespace Vst3Host

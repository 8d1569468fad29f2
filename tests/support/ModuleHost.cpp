// SPDX-License-Identifier: ISC
#include "tests/support/ModuleHost.h"

#include "tests/support/TemporaryFolder.h"

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>

namespace TestHost {
PluginCoreEntryFunction Entry()
{
    // The module looks for the user's settings and finds a home of its own.
    static const Support::UserFolders Folders;
    static const auto Found = [] {
        void* module = dlopen(PUFFGUARD_MODULE, RTLD_NOW | RTLD_LOCAL);
        void* symbol = module != nullptr ? dlsym(module, PLUGIN_CORE_ENTRY_NAME) : nullptr;
        return reinterpret_cast<PluginCoreEntryFunction>(symbol);
    }();
    return Found;
}

uint32_t Call(uint32_t selector, uint32_t context, PluginCore* instance, void* data)
{
    return Entry()(PLUGIN_CORE_MAGIC, selector, context, instance, data);
}

Instance::Instance(float sampleRate, uint32_t channels, const char* options)
{
    CreateRecord record{};
    std::strcpy(&record.modulePath[0], PUFFGUARD_MODULE);
    std::strcpy(&record.identity.options[0], options);
    record.hostCallback = &Instance::Callback;
    record.hostRefcon = this;
    record.instance = &instance;
    record.sampleRate = sampleRate;
    record.channelConfig = LayoutOf(channels);
    Call(SelectorCreatePlugin, UI, nullptr, &record);
    Call(SelectorInitialize, UI, instance, nullptr);
}

Instance::~Instance()
{
    Call(SelectorTerminate, UI, instance, nullptr);
    Call(SelectorDestroyPlugin, UI, instance, nullptr);
}

uint32_t
Instance::Callback(uint32_t magic, uint32_t opcode, uint32_t context, void* refcon, void* data)
{
    if (magic != PLUGIN_CORE_MAGIC) {
        return PluginCoreWrongMagic;
    }
    HostCall call{opcode, context, 0};
    if (data != nullptr) {
        std::memcpy(&call.word, data, sizeof call.word);
    }
    auto& self = *static_cast<Instance*>(refcon);
    if (const std::size_t place = self.callCount++; place < self.calls.size()) {
        self.calls[place] = uint64_t{opcode} << 40U | uint64_t{context} << 32U | call.word;
    }
    if (self.onHostCall) {
        self.onHostCall(call);
    }
    return opcode == HostOpcodeLatencyChanged ? 0 : 1;
}

std::vector<HostCall> Instance::Calls()
{
    std::vector<HostCall> all;
    for (std::size_t i = 0; i < std::min(callCount.load(), calls.size()); ++i) {
        const uint64_t call = calls[i];
        all.push_back({static_cast<uint32_t>(call >> 40U),
                       static_cast<uint32_t>(call >> 32U & 0xFFU),
                       static_cast<uint32_t>(call)});
    }
    return all;
}

uint32_t Instance::SetFormat(float sampleRate, uint32_t layout)
{
    StreamFormatRecord record{sampleRate, layout};
    return Call(SelectorSetStreamFormat, UI, instance, &record);
}

uint32_t Instance::Latency(uint32_t context)
{
    uint32_t latency = 0;
    Call(SelectorGetLatency, context, instance, &latency);
    return latency;
}

void Instance::Set(uint32_t index, float value, uint32_t context)
{
    ParamValueRecord record{index, value};
    Call(SelectorSetAutomatableParamValue, context, instance, &record);
}

float Instance::Value(uint32_t index, uint32_t context)
{
    ParamValueRecord record{index, -1.0F};
    Call(SelectorGetAutomatableParamValue, context, instance, &record);
    return record.value;
}

void Instance::SetElement(uint32_t index, float value, uint32_t context)
{
    ParamValueRecord record{index, value};
    Call(SelectorSetElementParamValue, context, instance, &record);
}

void Instance::Settle()
{
    Call(SelectorSettle, Process, instance, nullptr);
}

std::vector<uint8_t> Instance::SaveState()
{
    StateRecord record{};
    record.op = StateOpGetSize;
    Call(SelectorStateCommand, UI, instance, &record);
    std::vector<uint8_t> state(record.size);
    record.op = StateOpGetChunk;
    record.failed = 1;
    record.buffer = state.data();
    Call(SelectorStateCommand, UI, instance, &record);
    return record.failed == 0 ? state : std::vector<uint8_t>{};
}

bool Instance::LoadState(std::vector<uint8_t> state)
{
    StateRecord record{};
    record.op = StateOpSetChunk;
    record.failed = 1;
    record.size = static_cast<uint32_t>(state.size());
    record.buffer = state.data();
    record.version = 1;
    Call(SelectorStateCommand, UI, instance, &record);
    return record.failed == 0;
}

PresetRecord Instance::RunPreset(int32_t op,
                                 const std::string& name,
                                 uint32_t listIndex,
                                 const char* comment,
                                 int32_t mayReplace)
{
    PresetRecord record{};
    record.op = op;
    record.name = name.c_str();
    record.comment = comment;
    record.index = listIndex;
    record.mayReplace = static_cast<uint8_t>(mayReplace);
    HostMessageRecord message{PLUGIN_CORE_MESSAGE_PRESET, sizeof record, &record};
    const uint32_t code = Call(SelectorHostMessage, UI, instance, &message);
    if (code != PluginCoreSuccess) {
        record.failed = 9;
    }
    return record;
}

uint32_t Instance::Detections()
{
    DetectionTotalsRecord totals{};
    TransformReadRecord record{};
    record.request = TransformReadTotals;
    record.capacity = 1;
    record.recordBytes = sizeof totals;
    record.buffer = &totals;
    Call(SelectorTransformRead, UI, instance, &record);
    return totals.detections;
}

uint32_t Instance::RunBlock(Audio& audio, uint32_t begin, uint32_t frames)
{
    float* pointers[PLUGIN_CORE_MAX_CHANNELS] = {};
    for (std::size_t c = 0; c < audio.size(); ++c) {
        pointers[c] = audio[c].data() + begin;
    }
    ProcessRecord record{};
    record.frames = frames;
    record.channels = pointers;
    return Call(SelectorProcess, Process, instance, &record);
}

void Instance::Run(Audio& audio, const std::function<uint32_t()>& nextBlock)
{
    const auto frames = static_cast<uint32_t>(audio[0].size());
    for (uint32_t done = 0; done < frames;) {
        const uint32_t block = std::min(frames - done, nextBlock());
        RunBlock(audio, done, block);
        done += block;
    }
}

void Instance::Run(Audio& audio, uint32_t block)
{
    Run(audio, [block] { return block; });
}

Audio MakeSpeechLike(uint32_t channels, uint32_t frames, float sampleRate)
{
    // The engine's output is the same everywhere; the standard distributions' isn't.
    std::mt19937 engine(1);
    const auto noise = [&engine] {
        return static_cast<float>(engine()) / static_cast<float>(std::mt19937::max()) - 0.5F;
    };
    Audio audio(channels, std::vector<float>(frames));
    const auto rate = static_cast<double>(sampleRate);
    for (std::size_t c = 0; c < audio.size(); ++c) {
        for (uint32_t i = 0; i < frames; ++i) {
            const double time = i / rate;
            // Every 0.6 s a swing of 60 Hz under an envelope of about 50 ms.
            const double inBurst = std::fmod(time, 0.6) - 0.4;
            const double envelope = inBurst > 0 ? std::exp(-inBurst / 0.02) : 0.0;
            const double burst = 0.6 * envelope * std::sin(2 * std::numbers::pi * 60 * inBurst);
            audio[c][i] = 0.002F * noise() + static_cast<float>(burst) / static_cast<float>(c + 1);
        }
    }
    return audio;
}

} // namespace TestHost

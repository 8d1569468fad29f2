// SPDX-License-Identifier: ISC
// A module whose states of eight bytes are the deeds of a user, one after the other: 'g', a
// parameter and a value of 0 to 255 for a hand on a control, 'c' for a change without a hand, 'f'
// for more hands than any queue holds, 'l' and a number for a latency, 's' for a changed state. A
// state of one byte is the first value in eighths. What comes from the UI side to that waits for
// the next block. Whoever has loaded the module too may step in where it has begun to wait, and
// turn the value as a user does. Its audio is the position of each sample in the host's transport,
// -1 without one; of one channel it is the first value.
#include "tests/wrappers/support/FakeCore.h"

#include <algorithm>
#include <functional>
#include <optional>

struct PluginCore : FakeCore::Host {
    uint32_t latency = 0; // samples
    bool isMono = false;
    float values[2] = {};
    std::optional<float> waiting = {}; // to become the first of them

    float Newest() const { return waiting.value_or(values[0]); }
};

namespace {

PluginCore* latest = nullptr;

constexpr uint32_t Flood = 5000;

constexpr FakeCore::Parameter Automatable[] = {{"Unit.Amount", 256, "Amount [%]", "%"},
                                               {"Unit.Mode", 2, "Mode", "", "Low\tMiddle\tHigh"}};

} // namespace

extern "C" __attribute__((visibility("default"))) std::function<void()> userModuleStepIn;
std::function<void()> userModuleStepIn;

namespace {

void Post(PluginCore& core, float value)
{
    core.waiting = value;
    if (userModuleStepIn) {
        userModuleStepIn();
    }
}

void Act(PluginCore& core, const uint8_t* deed)
{
    switch (deed[0]) {
    case 'g':
        if (deed[1] < 2) {
            core.values[deed[1]] = static_cast<float>(deed[2]) / 256.0F;
        }
        core.TellGesture(deed[1], static_cast<float>(deed[2]) / 256.0F);
        break;
    case 'c':
        core.TellChange(0, 0.0F);
        break;
    case 'f':
        for (uint32_t i = 0; i < Flood; ++i) {
            core.TellGesture(0, static_cast<float>(i % 2));
        }
        break;
    case 'l':
        core.latency = deed[1];
        core.Tell(HostOpcodeLatencyChanged, 1, &core.latency);
        core.Tell(HostOpcodeLatencyChanged, 0, &core.latency);
        break;
    case 's':
        core.Tell(HostOpcodeDirtyState, 1, nullptr);
        break;
    default:
        break;
    }
}

void ServeState(PluginCore& core, StateRecord& record)
{
    auto* const bytes = static_cast<uint8_t*>(record.buffer);
    record.failed = 0;
    if (record.op == StateOpGetSize) {
        record.size = 1;
    } else if (record.op == StateOpGetChunk) {
        *bytes = static_cast<uint8_t>(core.Newest() * 8.0F);
    } else if (record.size > 1) {
        Act(core, bytes);
    } else if (*bytes <= 8) {
        Post(core, static_cast<float>(*bytes) / 8.0F);
    } else {
        record.failed = 1;
    }
}

void Process(PluginCore& core, const ProcessRecord& record)
{
    core.values[0] = core.Newest();
    core.waiting.reset();
    if (core.isMono) {
        std::fill_n(record.channels[0], record.frames, core.values[0]);
        return;
    }
    for (uint32_t i = 0; i < record.frames; ++i) {
        const TransportRecord& transport = *record.transport;
        record.channels[0][i] =
            transport.isPositionValid != 0 ? static_cast<float>(transport.position + i) : -1.0F;
    }
}

} // namespace

// Answers the value before.
extern "C" __attribute__((visibility("default"))) float TurnUserModule(float value)
{
    const float former = latest->Newest();
    latest->waiting = value;
    latest->TellChange(0, value);
    return former;
}

extern "C" __attribute__((visibility("default"))) uint32_t
PluginCoreCallback(uint32_t, uint32_t selector, uint32_t context, PluginCore* instance, void* data)
{
    FakeCore::Serve(selector, {FAKE_VERSION, Automatable}, instance, data);
    switch (selector) {
    case SelectorCreatePlugin:
        latest = *static_cast<CreateRecord*>(data)->instance;
        latest->isMono = static_cast<CreateRecord*>(data)->channelConfig == 0;
        break;
    case SelectorSetAutomatableParamValue: {
        const auto& record = *static_cast<const ParamValueRecord*>(data);
        if (context == 1 && record.index == 0) {
            Post(*instance, record.value);
        } else {
            instance->values[record.index] = record.value;
        }
        break;
    }
    case SelectorGetAutomatableParamValue: {
        auto& record = *static_cast<ParamValueRecord*>(data);
        const bool isAhead = context == 1 && record.index == 0;
        record.value = isAhead ? instance->Newest() : instance->values[record.index];
        break;
    }
    case SelectorSetStreamFormat:
        instance->isMono = static_cast<StreamFormatRecord*>(data)->channelConfig == 0;
        break;
    case SelectorGetLatency:
        *static_cast<uint32_t*>(data) = instance->latency;
        break;
    case SelectorProcess:
        Process(*instance, *static_cast<ProcessRecord*>(data));
        break;
    case SelectorStateCommand:
        ServeState(*instance, *static_cast<StateRecord*>(data));
        break;
    default:
        break;
    }
    return PluginCoreSuccess;
}

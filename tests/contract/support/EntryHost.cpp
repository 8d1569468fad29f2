// SPDX-License-Identifier: ISC
// The module without any format around it: what all of them should come to.
#include "tests/contract/support/AudioCall.h"
#include "tests/contract/support/FormatHost.h"
#include "tests/support/ModuleHost.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <iterator>
#include <random>

namespace Contract {

namespace {

using TestHost::Call;
using TestHost::UI;

class EntryHost final : public FormatHost {
public:
    EntryHost(double rate, uint32_t newChannels)
        : channels(newChannels)
        , instance(static_cast<float>(rate), newChannels)
    {
        instance.onHostCall = [this](const TestHost::HostCall& call) {
            if (call.opcode == HostOpcodeLatencyChanged && call.context == UI) {
                ++latencyReports;
            }
        };
    }

    bool Activate(double rate, uint32_t /*longestBlock*/) override
    {
        const auto single = static_cast<float>(rate);
        if (!std::isfinite(single) || single <= 0) {
            return false; // the entry would answer success and do nothing
        }
        instance.SetFormat(single, TestHost::LayoutOf(channels));
        SetProcessing(1);
        uint32_t latency = 0;
        Call(SelectorResetProcessing, UI, instance.Get(), &latency);
        return true;
    }

    void Deactivate() override { SetProcessing(0); }

    void Process(const float* const* inputs, float* const* outputs, uint32_t frames) override
    {
        // The entry works in place: what isn't in place is copied before anything is written.
        TestHost::Audio copies(channels, std::vector<float>(frames));
        float* pointers[PLUGIN_CORE_MAX_CHANNELS] = {};
        for (uint32_t c = 0; c < channels && outputs != nullptr; ++c) {
            pointers[c] = inputs[c] == outputs[c] ? outputs[c] : copies[c].data();
            if (inputs[c] != outputs[c] && inputs[c] != nullptr) {
                std::copy_n(inputs[c], frames, pointers[c]);
            }
        }
        Send(pointers, frames);
        for (uint32_t c = 0; c < channels && outputs != nullptr; ++c) {
            if (outputs[c] != nullptr && outputs[c] != pointers[c]) {
                std::copy_n(pointers[c], frames, outputs[c]);
            }
        }
    }

    void Reset() override
    {
        const AudioCall scope;
        instance.Settle();
    }

    uint32_t GetLatency() override { return instance.Latency(); }
    std::optional<uint32_t> CountLatencyReports() override { return latencyReports; }

    uint32_t CountParameters() override
    {
        uint32_t count = 0;
        Call(SelectorGetAutomatableParamCount, UI, instance.Get(), &count);
        return count;
    }
    void SetParameter(uint32_t index, float normalised) override
    {
        instance.Set(index, normalised);
    }
    std::optional<float> GetParameter(uint32_t index) override { return instance.Value(index); }

    // Other formats save the bypass themselves, where their hosts expect that; here a host has it
    // at hand. It stands behind the chunk.
    std::vector<uint8_t> Save() override
    {
        std::vector<uint8_t> bytes = instance.SaveState();
        if (bytes.empty()) {
            return {};
        }
        bytes.push_back(instance.Value(TestHost::GlobalBypass) < 0.5F ? 0 : 1);
        return bytes;
    }

    bool Load(std::span<const uint8_t> bytes) override
    {
        if (bytes.empty() || !instance.LoadState({bytes.begin(), bytes.end() - 1})) {
            return false;
        }
        instance.Set(TestHost::GlobalBypass, bytes.back() == 0 ? 0.0F : 1.0F);
        return true;
    }

    std::vector<uint8_t> MakeSession(std::span<const uint8_t> chunk) override
    {
        std::vector<uint8_t> bytes(chunk.begin(), chunk.end());
        bytes.push_back(0);
        return bytes;
    }

private:
    // With a transport of any bytes (rates of 0, backwards, no numbers at all) or none, and with
    // side buses: neither is of account in the audio.
    void Send(float** block, uint32_t frames)
    {
        TransportRecord transport;
        for (size_t i = 0; i < sizeof transport; ++i) {
            reinterpret_cast<uint8_t*>(&transport)[i] = static_cast<uint8_t>(engine());
        }
        std::vector<float> side(frames);
        float* sidePointers[2] = {side.data(), nullptr};
        ProcessRecord record{};
        record.frames = frames;
        record.channels = block;
        record.transport = engine() % 4 == 0 ? nullptr : &transport;
        record.renderFlagA = static_cast<int32_t>(engine() % 2);
        record.renderFlagB = static_cast<int32_t>(engine() % 2);
        record.sideBusCount = static_cast<uint32_t>(engine() % 2) * PLUGIN_CORE_MAX_SIDE_BUSES;
        std::fill(std::begin(record.sideBuses), std::end(record.sideBuses), &sidePointers[0]);
        std::fill(std::begin(record.sideBusChannels), std::end(record.sideBusChannels), 2);
        const AudioCall scope;
        Call(SelectorProcess, TestHost::Process, instance.Get(), &record);
    }

    void SetProcessing(int32_t active)
    {
        ProcessingStateRecord record{active, 0};
        Call(SelectorSetProcessingState, UI, instance.Get(), &record);
    }

    std::mt19937 engine{1}; // of the audio thread
    const uint32_t channels;
    std::atomic<uint32_t> latencyReports{0};
    TestHost::Instance instance; // last: it calls this object
};

} // namespace

std::unique_ptr<FormatHost> MakeEntryHost(double rate, uint32_t channels)
{
    return std::make_unique<EntryHost>(rate, channels);
}

} // namespace Contract

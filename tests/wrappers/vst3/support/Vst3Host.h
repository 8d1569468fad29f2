// SPDX-License-Identifier: ISC
#pragma once

#include "tests/contract/support/FormatHost.h"
#include "tests/contract/support/HostParts.h"
#include "tests/wrappers/vst3/support/HostObjects.h"

#include <random>

/// A small host of the built bundle.
namespace Vst3Host {

constexpr uint64_t Mono = V3_SPEAKER_M;
constexpr uint64_t Stereo = 0x3;
constexpr uint64_t Surround51 = 0x3F;
constexpr uint64_t Surround71 = 0x63F;

/// For good: sessions and automation hold them.
namespace Id {
constexpr v3_tuid Effect = V3_ID(0xEA92480B, 0x276D315D, 0xD76F5F30, 0xA7891AE4);
constexpr uint32_t Sensitivity = 674812114;
constexpr uint32_t Strength = 808038898;
constexpr uint32_t UpperFrequency = 1867466536;
constexpr uint32_t Bypass = 63163949;
} // namespace Id

/// ASCII as the format's 16-bit text.
std::basic_string<int16_t> Text16(const std::string& text);
/// The other way; what is no ASCII becomes "?".
std::string TextOf(const int16_t* text);

/// Releases what the plug-in counts.
struct Releaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename T>
using Held = std::unique_ptr<T, Releaser>;

/// Another reference to the object, by one of its interfaces; null when it has none such.
template <typename T>
Held<T> Query(IUnknown& object, const v3_tuid iid)
{
    void* found = nullptr;
    object.QueryInterface(iid, &found);
    return Held<T>(static_cast<T*>(found));
}

/// The binary of the bundle, between ModuleEntry() and ModuleExit().
class Binary : public Contract::Library {
public:
    Binary();
    ~Binary()
    {
        if (hasEntered) {
            Find<bool (*)()>("ModuleExit")();
        }
    }

private:
    bool Enter() const
    {
        const auto enter = Find<bool (*)(const Binary*)>("ModuleEntry");
        return enter != nullptr && enter(this);
    }

    const bool hasEntered;
};

/// What GetPluginFactory() gives; null when the binary can't be loaded. Without a binary of one's
/// own, one that stays.
Held<IFactory> GetFactory(const Binary& binary);
Held<IFactory> GetFactory();
/// The first class of the factory; null when it declines.
Held<IComponent> Create(IFactory& factory);

/// A transport that plays on, jumps and loops, stands still, is missing or holds rubbish.
class AnyTransport {
public:
    /// Of the next block; null where there is none.
    v3_process_context* Next(uint32_t frames, double rate);

private:
    std::mt19937 engine{1};
    v3_process_context context = {};
};

/// What goes with the frames of a block.
struct BlockContext {
    Changes* input = nullptr;
    Changes* output = nullptr;
    v3_process_context* transport = nullptr;
};

/// One plug-in from its making to its last release. Values of SetParameter() go to the controller
/// to be shown, and with the next block to be heard.
class Plugin final : public Contract::FormatHost {
public:
    /// Initializes and sets up. `newChannels` is 1, 2, 6 or 8; `newHost` may be null, and is the
    /// context and the handler.
    explicit Plugin(uint32_t newChannels = 2,
                    double newRate = 48000,
                    std::shared_ptr<Host> newHost = nullptr);
    ~Plugin() override;

    explicit operator bool() const { return component != nullptr; }

    int32_t Setup(double newRate, int32_t longestBlock = 4096);
    int32_t Arrange(uint64_t inputs, uint64_t outputs);
    void Start(); ///< to process

    /// One block; null channels, or no channels at all, are handed on.
    int32_t Send(const float* const* inputs,
                 float* const* outputs,
                 uint32_t frames,
                 const BlockContext& context = {});
    /// 0 frames, without buses.
    int32_t Flush(Changes& changes) { return Send(nullptr, nullptr, 0, {&changes}); }
    /// Two of the places that take a session.
    int32_t LoadComponent(std::span<const uint8_t> bytes);
    int32_t LoadController(std::span<const uint8_t> bytes);

    bool Activate(double newRate, uint32_t longestBlock) override;
    void Deactivate() override;
    /// The transport is of no account in the audio.
    void Process(const float* const* inputs, float* const* outputs, uint32_t frames) override;
    void Reset() override;
    uint32_t GetLatency() override { return processor->GetLatencySamples(); }
    std::optional<uint32_t> CountLatencyReports() override;
    void Idle() override { host->Tick(); }
    uint32_t CountParameters() override { return static_cast<uint32_t>(parameters.size()); }
    void SetParameter(uint32_t index, float normalised) override;
    std::optional<float> GetParameter(uint32_t index) override;
    void LimitStreams(uint32_t bytes) override { streamLimit = static_cast<int32_t>(bytes); }
    std::vector<uint8_t> Save() override;
    bool Load(std::span<const uint8_t> bytes) override;
    std::vector<uint8_t> MakeSession(std::span<const uint8_t> chunk) override
    {
        return Contract::MakeHeadedSession(chunk);
    }

    const Binary binary;
    const uint32_t channels;
    const std::shared_ptr<Host> host;
    Held<IComponent> component;
    Held<IAudioProcessor> processor;
    Held<IEditController> controller;
    std::vector<v3_param_info> parameters;

private:
    double rate;            // of the audio thread, which doesn't run while it changes
    AnyTransport transport; // of the audio thread
    Contract::WaitingValues waiting;
    int32_t streamLimit = std::numeric_limits<int32_t>::max();
};

} // namespace Vst3Host

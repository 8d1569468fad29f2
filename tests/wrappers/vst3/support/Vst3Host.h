// SPDX-License-Identifier: ISC
#pragma once

#include "tests/wrappers/vst3/support/HostObjects.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// A small host of the built bundle.
namespace Vst3Host {

using Audio = std::vector<std::vector<float>>;

constexpr uint64_t mono = V3_SPEAKER_M;
constexpr uint64_t stereo = 0x3;
constexpr uint64_t surround51 = 0x3F;
constexpr uint64_t surround71 = 0x63F;

/// The mask of so many channels: 1, 2, 6 or 8.
uint64_t MaskOf(uint32_t channels);

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

/// The binary inside the bundle.
std::string BinaryPath();
/// What GetPluginFactory() of the library gives; null when it can't be loaded.
Held<IFactory> GetFactory();
Held<IFactory> GetFactory(void* library);
/// The first class of the factory; null when it declines.
Held<IComponent> Create(IFactory& factory);

/// What goes with the frames of a block.
struct BlockContext {
    Changes* input = nullptr;
    Changes* output = nullptr;
    v3_process_context* transport = nullptr;
};

/// One plug-in from its making to its last release.
class Plugin {
public:
    /// Initializes and sets up; `host` may be null, and is its context and handler.
    explicit Plugin(uint32_t newChannels = 2, double rate = 48000, Host* host = nullptr);
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    explicit operator bool() const { return component != nullptr; }

    int32_t Setup(double rate, int32_t longestBlock = 4096);
    int32_t Arrange(uint64_t inputs, uint64_t outputs);
    void Start(); ///< to process
    void Stop();

    /// One block; null channels, or no channels at all, are handed on.
    int32_t Process(const float* const* inputs,
                    float* const* outputs,
                    uint32_t frames,
                    const BlockContext& context = {});
    /// 0 frames, without buses.
    int32_t Flush(Changes& changes);
    /// Runs everything in place, in blocks of `block` frames.
    void Run(Audio& audio, uint32_t block);

    /// Empty when the plug-in refuses. Streams move at most `most` bytes a call.
    std::vector<uint8_t> Save(int32_t most = std::numeric_limits<int32_t>::max());
    int32_t Load(std::span<const uint8_t> bytes,
                 int32_t most = std::numeric_limits<int32_t>::max());

    const uint32_t channels;
    Held<IComponent> component;
    Held<IAudioProcessor> processor;
    Held<IEditController> controller;
    std::vector<v3_param_info> parameters;
};

} // namespace Vst3Host

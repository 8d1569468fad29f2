// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/BlockBuffers.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>

namespace Wrapper {

class Instance;

/// A host's block on its way through an instance, cut where the host changes a value. All calls are
/// [process].
class HostBlock {
public:
    /// Of the main bus on either side; channels that a host leaves out count as null. `newInstance`
    /// lives longer, and so does the host's memory.
    HostBlock(Instance& newInstance,
              std::span<float* const> newInputs,
              std::span<float* const> newOutputs,
              uint32_t newFrames) noexcept;

    uint32_t GetFrames() const noexcept { return frames; }
    /// How many frames are through.
    uint32_t GetDone() const noexcept { return done; }
    /// Of the block's first frame in the host's transport, in samples.
    void SetPosition(std::optional<double> newPosition) noexcept { position = newPosition; }

    /// Runs what is left before frame `end`, which is at most the number of frames; nothing if it
    /// is through already.
    void RunUntil(uint32_t end) noexcept;
    /// Whether the module has refused a piece: the outputs hold the inputs there.
    bool IsRefused() const noexcept { return isRefused; }

private:
    Instance& instance;
    std::array<const float*, BlockBuffers::MaxChannels> inputs{};
    std::array<float*, BlockBuffers::MaxChannels> outputs{};
    const uint32_t frames;
    uint32_t done = 0;
    std::optional<double> position;
    bool isRefused = false;
};

} // namespace Wrapper

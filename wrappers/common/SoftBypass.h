// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/BlockBuffers.h"
#include "wrappers/common/DelayedInput.h"

#include <array>
#include <cstdint>

namespace Wrapper {

class Instance;

/// Makes the bypass of an instance one that can be used on air, whoever has switched it.
///
/// Entering, 10 ms lead from the repaired signal to the input, which is as late. Leaving, the late
/// input goes on until the repair, which begins anew, gives sound; 10 ms lead over to that. A
/// switch on the way turns round where it is. No sample is lost or moved, and how blocks are cut
/// changes no bit.
///
/// The module runs the repair whatever its bypass says, until the way out of it has been gone; then
/// nothing but the delay. Before the first sound after a reset there is nothing to fade.
class SoftBypass {
public:
    /// The ways meet in pieces of up to so many frames.
    static constexpr uint32_t PieceFrames = 1024;

    /// `newInstance` lives longer.
    explicit SoftBypass(const Instance& newInstance)
        : instance(newInstance)
    {
    }

    /// After the module has taken that format, with the rate in Hz. Without memory it throws, and
    /// nothing has changed. [setup]
    void SetFormat(double sampleRate, uint32_t channels);
    /// The module has forgotten the signal. [process]
    void Reset() noexcept;

    /// Leads a block in place through `run(float** channels, uint32_t offset, uint32_t frames)`,
    /// which sends a part of it through the module. False as soon as that is false: the channels
    /// hold the input from there on. [process]
    template <typename Function>
    bool Process(float* const* channels, uint32_t frames, Function&& run) noexcept
    {
        FollowModule();
        for (uint32_t done = 0; done < frames;) {
            const uint32_t piece = BeginPiece(channels, done, frames - done);
            if (!run(pointers.data(), done, piece)) {
                return false;
            }
            EndPiece(piece);
            done += piece;
        }
        return true;
    }

private:
    void FollowModule() noexcept;
    void Switch(bool newOn) noexcept;
    bool IsOnTheWay() const noexcept { return position != (isOn ? fadeFrames : 0); }
    uint32_t BeginPiece(float* const* channels, uint32_t offset, uint32_t rest) noexcept;
    void EndPiece(uint32_t frames) noexcept;
    uint32_t CountWaiting(uint32_t frames) noexcept;
    uint32_t FirstSound(uint32_t begin, uint32_t frames) const noexcept;
    uint32_t Fade(uint32_t channel, uint32_t begin, uint32_t frames) const noexcept;
    float Mix(float repaired, float delayed, uint32_t reached) const noexcept;
    void ChooseWay(uint32_t notice) noexcept;

    const Instance& instance;
    DelayedInput input;
    std::array<float, PieceFrames> late{};                    // of the piece under way, one channel
    std::array<float*, BlockBuffers::MaxChannels> pointers{}; // to the piece under way
    uint32_t fadeFrames = 1;
    uint32_t position = 0;     // on the way from the repair (0) to the late input (fadeFrames)
    uint32_t silentFrames = 0; // that the repair still gives at least, while waiting for its sound
    uint32_t way = 0;          // that the module goes; 0: none has been chosen
    bool isOn = false;
    bool isWaiting = false; // the repair has begun anew and given no sound yet
    bool isFresh = true;    // no sound has come out since the last reset
};

} // namespace Wrapper

// SPDX-License-Identifier: ISC
#pragma once

#include "tests/contract/support/FormatHost.h"
#include "tests/support/ModuleHost.h"

#include <cstdint>
#include <functional>
#include <string>

namespace Contract {

using TestHost::Audio;

/// Sanitizers make everything some ten times as long, so that tests go through less.
#ifdef PUFFGUARD_SANITIZED
constexpr bool IsSanitized = true;
#else
constexpr bool IsSanitized = false;
#endif
constexpr uint32_t Rounds(uint32_t full)
{
    return !IsSanitized ? full : full < 10 ? 1 : full / 10;
}

/// `seconds` of noise and bursts for the effect to repair.
Audio MakeSpeech(double rate, uint32_t channels, double seconds = 1.1);

/// All of `input` through the host, cut as `nextBlock` says (frames of the next block, at least 1).
/// Every other block is processed in place, the rest from one memory to another.
Audio Play(FormatHost& host, const Audio& input, const std::function<uint32_t()>& nextBlock);
Audio Play(FormatHost& host, const Audio& input, uint32_t block);

void PlaySilence(FormatHost& host, uint32_t channels, uint32_t frames);
/// Lets values that were set arrive, and forgets the signal.
void Settle(FormatHost& host, uint32_t channels);

/// The state of an instance of the module after `change`.
std::vector<uint8_t> MakeState(const std::function<void(TestHost::Instance&)>& change);
/// One in which the latency is at its smallest.
std::vector<uint8_t> MakeShortestState();

/// What the module makes of it in a fresh instance with the values of three controls, normalised.
struct Controls {
    float sensitivity = 0.5F;
    float strength = 0.5F;
    float upperFrequency = 1.0F / 3.0F; ///< 200 Hz, the default
};
Audio Expected(const Audio& input, double rate, const Controls& controls = {});

/// Where two takes differ in a bit, for people; empty when they don't.
std::string Difference(const Audio& take, const Audio& expected);
/// The same of the frames from `begin` to `end`.
std::string Difference(const Audio& take, const Audio& expected, uint32_t begin, uint32_t end);

/// `input` later by `latency` samples, which are silent, in the same length.
Audio Delayed(const Audio& input, uint32_t latency);

/// Largest distance between the two.
float LargestError(const Audio& take, const Audio& expected);

/// Where a take holds what no audio may hold (no number, or one so small that it slows down what
/// comes after), for people; empty when it doesn't.
std::string BadSample(const Audio& take);

} // namespace Contract

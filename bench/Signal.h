// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <vector>

namespace Bench {

/// A voice whose pitch wanders, in syllables with pauses and a little noise, and before every other
/// syllable a burst of air that gets repaired. The same for the same arguments; full scale 1.0.
std::vector<std::vector<float>> MakeSpeech(uint32_t channels, float sampleRate, double seconds);

} // namespace Bench

// SPDX-License-Identifier: ISC
#pragma once

#include <array>

/// Inner loops that are compiled once for each level of the processor, from the same source.
///
/// Every level gives the same bits: what is computed, and in which order, never depends on the
/// number of lanes. Which level runs is chosen when the module loads; code outside this folder
/// takes a kernel from GetKernels() and knows nothing of levels.
namespace DSP::Kernels {

/// Sets of instructions, each with all of those before it. Other processors than x86-64 have the
/// first alone.
enum class Level {
    Baseline, ///< what every processor of the architecture has; SSE2 or NEON: 4 lanes
    V3,       ///< AVX2: 8 lanes
    V4        ///< AVX-512: 16 lanes
};

inline constexpr std::array AllLevels{Level::Baseline, Level::V3, Level::V4};

/// Whether this build has the level and this processor can run it. [any]
bool IsSupported(Level wanted) noexcept;

/// The level that runs: the highest supported one, but none above what the environment variable
/// PUFFGUARD_CPU names (baseline, v3 or v4; anything else is no limit). It is read while the
/// module's static objects are made; one that asks earlier gets Baseline, whose bits are the same.
/// [any]
Level GetLevel() noexcept;

/// The highest supported level up to the one that `name` stands for; null or an unknown name is no
/// limit. [any]
Level ChooseLevel(const char* name) noexcept;

} // namespace DSP::Kernels

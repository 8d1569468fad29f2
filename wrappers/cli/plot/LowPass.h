// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <vector>

namespace Cli {

/// Taps of a low-pass for taking every `factor`-th sample: a Blackman-windowed sinc with its edge
/// at half the reduced rate and gain 1 at 0 Hz, `reach` reduced samples long on each side. The edge
/// is 5.5 / (2 reach) of the reduced rate wide.
std::vector<float> MakeLowPass(size_t factor, size_t reach);

} // namespace Cli

// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

namespace Support {

/// Even noise from -1 to 1, the same for the same arguments.
inline std::vector<float> MakeNoise(std::size_t count, unsigned seed)
{
    std::minstd_rand random(seed);
    std::uniform_real_distribution<float> level(-1.0F, 1.0F);
    std::vector<float> noise(count);
    std::generate(noise.begin(), noise.end(), [&] { return level(random); });
    return noise;
}

} // namespace Support

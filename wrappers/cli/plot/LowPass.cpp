// SPDX-License-Identifier: ISC
#include "wrappers/cli/plot/LowPass.h"

#include <cmath>
#include <numbers>
#include <numeric>

namespace Cli {

std::vector<float> MakeLowPass(size_t factor, size_t reach)
{
    const auto length = static_cast<double>(reach * factor);
    std::vector<double> taps(2 * reach * factor + 1);
    for (size_t i = 0; i < taps.size(); ++i) {
        const double t = static_cast<double>(i) - length;
        const double x = std::numbers::pi * t / static_cast<double>(factor);
        const double sinc = t == 0 ? 1.0 : std::sin(x) / x;
        const double phase = std::numbers::pi * t / (length + 1.0);
        taps[i] = sinc * (0.42 + 0.5 * std::cos(phase) + 0.08 * std::cos(2.0 * phase));
    }
    const double sum = std::accumulate(taps.begin(), taps.end(), 0.0);
    std::vector<float> result;
    result.reserve(taps.size());
    for (const double tap : taps) {
        result.push_back(static_cast<float>(tap / sum));
    }
    return result;
}

} // namespace Cli

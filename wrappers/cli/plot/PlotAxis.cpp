// SPDX-License-Identifier: ISC
#include "wrappers/cli/plot/PlotAxis.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

namespace Cli {

double NiceStep(double range, int most, bool isTime)
{
    constexpr std::array TimeSteps = {60.0, 120.0, 300.0, 600.0, 1200.0, 1800.0, 3600.0, 7200.0};
    const double least = range / most;
    if (isTime && least > 30.0) {
        for (const double step : TimeSteps) {
            if (step >= least) {
                return step;
            }
        }
        return 7200.0 * std::ceil(least / 7200.0);
    }
    if (isTime && least > 5.0) {
        return least <= 10.0 ? 10.0 : least <= 15.0 ? 15.0 : 30.0;
    }
    const double power = std::pow(10.0, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least * (1 - 1e-9)) {
            return factor * power;
        }
    }
    return 10.0 * power;
}

std::string FormatMark(double seconds, double step)
{
    if (step < 1.0) {
        return fmt::format("{:.{}f}", seconds, step < 0.1 ? 2 : 1);
    }
    const auto whole = std::llround(seconds);
    if (whole >= 3600) {
        return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
    }
    return whole >= 60 ? fmt::format("{}:{:02}", whole / 60, whole % 60) : fmt::format("{}", whole);
}

} // namespace Cli

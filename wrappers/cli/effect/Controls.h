// SPDX-License-Identifier: ISC
#pragma once

#include <optional>
#include <string>

namespace Cli {

/// The controls of the effect, in its own units.
struct Controls {
    double sensitivity = 0;    ///< 0 to 10
    double strength = 0;       ///< 0 to 10
    double upperFrequency = 0; ///< Hz, 50 to 500
    double latencyScaling = 0; ///< 0 to 1
    bool bypass = false;
};

/// Controls that the user chose; the others stay as they are.
struct ChosenControls {
    std::optional<double> sensitivity;
    std::optional<double> strength;
    std::optional<double> upperFrequency;
    std::optional<double> latencyScaling;
    bool bypass = false;
};

/// What the effect is set to, one upon the other.
struct Settings {
    std::string state; ///< a saved session; empty: the module's defaults
    ChosenControls chosen;
};

} // namespace Cli

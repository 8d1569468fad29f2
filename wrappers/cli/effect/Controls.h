// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

namespace Cli {

/// A control of the effect: a parameter of the module with its option on the command line and its
/// places in reports. Whoever deals with controls goes through the table of them.
struct Control {
    const char* parameter; ///< the module's identifier
    const char* option;
    double least; ///< in the module's unit, as is the next; the module has the same range
    double most;
    const char* help;
    const char* member;   ///< name in the list of events
    const char* words;    ///< in lines for a reader, with the value for {}
    bool showsInPictures; ///< by what it does to the sound; else it's left out of their captions
};

inline constexpr const char* UpperFrequencyParameter = "PuffGuard.Upper Repair Frequency";

// A line for each, as long as it is.
// clang-format off
inline constexpr std::array ControlTable = {
    Control{"PuffGuard.Sensitivity", "--sensitivity", 0, 10, "How readily a burst counts (0 to 10)", "sensitivity", "sensitivity {}", true},
    Control{"PuffGuard.Strength", "--strength", 0, 10, "How far a burst is taken down (0 to 10)", "strength", "strength {}", true},
    Control{UpperFrequencyParameter, "--upper-frequency", 50, 500, "Repair up to this frequency (Hz)", "upperFrequency", "up to {} Hz", true},
    Control{"PuffGuard.Latency Scaling", "--latency-scaling", 0, 1, "1 looks ahead most, 0 least", "latencyScaling", "latency scaling {}", false},
};
// clang-format on

/// One of something for each control, in the order of the table.
template <typename Value>
using ForEachControl = std::array<Value, ControlTable.size()>;

/// What the controls stand at, in their own units.
struct Controls {
    ForEachControl<double> values = {};
    bool bypass = false;

    /// Hz; 0 while nothing is repaired.
    double GetRepairLimit() const;
};

/// Controls that the user chose; the others stay as they are.
struct ChosenControls {
    ForEachControl<std::optional<double>> values;
    bool bypass = false;
};

/// What the effect is set to, one upon the other.
struct Settings {
    std::string state; ///< a saved session; empty: the module's defaults
    ChosenControls chosen;
};

/// "sensitivity 5, strength 5, up to 200 Hz, latency scaling 1", and whether they are bypassed.
std::string DescribeControls(const Controls& controls);

/// The same for a picture: with fewer digits, and without what it doesn't show.
std::string ControlCaption(const Controls& controls);

} // namespace Cli

// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/common/Detections.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace Cli {

/// One repair on the time line of the recording.
struct Event {
    double time = 0;  ///< seconds, the middle of the plosive
    double start = 0; ///< seconds, first and last analysed moment of the repair
    double end = 0;
    double severity = 0;         ///< 0 to 1
    std::optional<double> pitch; ///< Hz; nothing when the speech is unvoiced there
    double reduction = 0;        ///< dB, 20 to 150 Hz inside the repair, after against before
    double removed = 0;          ///< dB, energy taken out against the recording's average
    bool isProminent = false;    ///< took out at least half of the average
};

/// What the whole recording holds between 20 and 150 Hz.
struct BandAverage {
    double energyPerHop = 0; ///< units of Wrapper::Detection::energyBefore
};

/// Least value of the decibel members of Event; stands for "nothing".
inline constexpr double LeastDecibel = -200.0;

/// A ratio of energies in decibels, LeastDecibel at the least.
double EnergyDecibel(double ratio);

/// Mean energy of the analysed frames.
BandAverage AverageOf(const Wrapper::DetectionTotals& totals);

/// Turns a repair into an event.
Event MakeEvent(const Wrapper::Detection& detection, const BandAverage& average, int sampleRate);

/// The repairs of one recording. Kept in a nameless temporary file, since what is prominent shows
/// only at the end and a recording may last for hours.
class EventSpool {
public:
    /// Throws FileError.
    EventSpool()
        : file(OpenAnonymousFile())
    {
    }

    /// Throws FileError.
    void Append(std::span<const Wrapper::Detection> detections);

    uint64_t GetCount() const { return count; }

    /// Hands out all repairs, oldest first. Throws FileError.
    void ForEach(const std::function<void(const Wrapper::Detection&)>& visit) const;

private:
    FileDescriptor file;
    uint64_t count = 0;
};

/// What the summary holds of a recording.
struct EventSummary {
    uint64_t repairs = 0;
    uint64_t prominent = 0;
    std::optional<Event> strongest; ///< the one that took out most
};

} // namespace Cli

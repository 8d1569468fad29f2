// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/Candidates.h"

namespace AutoRepair {

/// How far `--strictness` moves the threshold at most, to both sides.
inline constexpr double GreatestStrictness = 3;

/// What decides about a candidate whose repair would take away `removed` dB at its loudest, against
/// the speech level: above the recording's threshold it is repaired.
double GetKeep(const Candidate& candidate, double removed);

/// Finds the threshold of a recording. One with pops that are clear, so many a minute, is judged
/// more readily: a microphone that pops, pops again, more faintly.
class KeepRule {
public:
    /// `newStrictness` is added to the threshold.
    explicit KeepRule(double newStrictness)
        : strictness(newStrictness)
    {
    }

    /// Takes the decision value of a candidate.
    void Count(double keep);

    /// The threshold of a recording of `seconds` whose candidates have all been counted.
    double GetThreshold(double seconds) const;

    /// No threshold is below this.
    double GetLeastThreshold() const;

private:
    double strictness;
    int clear = 0;
};

} // namespace AutoRepair

// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/KeepRule.h"

#include "restoration/dsp/autorepair/Weights.h"

#include <algorithm>

namespace AutoRepair {

namespace {

constexpr double StrictThreshold = 0.75; // of a recording without clear pops
constexpr double LooseThreshold = -1.0;  // of one with them
constexpr double Clear = 2.0;            // above this a pop is clear
constexpr double LeastRate = 6.0;        // clear pops a minute ...
constexpr double LeastCount = 2.0;       // ... and in all that make the difference

} // namespace

double GetKeep(const Candidate& candidate, double removed)
{
    return Keep.score * candidate.score + Keep.removed * removed + Keep.top * candidate.top +
           Keep.length * candidate.length + Keep.lowOverVoice * candidate.lowOverVoice + Keep.bias;
}

void KeepRule::Count(double keep)
{
    clear += keep > Clear ? 1 : 0;
}

double KeepRule::GetThreshold(double seconds) const
{
    const bool pops = clear >= std::max(LeastCount, LeastRate * seconds / 60.0);
    return (pops ? LooseThreshold : StrictThreshold) + strictness;
}

double KeepRule::GetLeastThreshold() const
{
    return LooseThreshold + strictness;
}

} // namespace AutoRepair

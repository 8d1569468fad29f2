// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/PopFinder.h"

namespace AutoRepair {

Findings PopFinder::Finish()
{
    analysis.Finish();
    Findings findings;
    findings.scale = MeasureScale(store);
    findings.track = ComputeScores(store, findings.scale);
    const double seconds = static_cast<double>(analysis.GetSampleCount()) / sampleRate;
    if (!findings.scale.IsSilence() && seconds >= LeastSeconds) {
        findings.candidates = FindCandidates(findings.track, seconds);
    }
    return findings;
}

} // namespace AutoRepair

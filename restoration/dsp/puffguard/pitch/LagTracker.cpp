// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/LagTracker.h"

#include "restoration/dsp/puffguard/pitch/PeakSearch.h"

#include <algorithm>
#include <cmath>

namespace DSP::Synapse {

namespace {

constexpr double ConfidenceSeconds = 0.02;
constexpr float ConfidenceAtStart = 0.5F;
constexpr float ValuePerLog = 32.0F;
constexpr float LogPerValue = 0.03125F;

/// How far a new lag replaces the former one: not below the first clarity, wholly from the second.
float GetTrust(float clarity) noexcept UTIL_NONBLOCKING
{
    constexpr float NoTrust = 0.15F;
    constexpr float FullTrust = 0.3F;
    if (clarity <= NoTrust) {
        return 0;
    }
    return clarity >= FullTrust ? 1.0F : (clarity - NoTrust) / 0.15F;
}

DP::Candidate MakeCandidate(float pitchHz, float clarity) noexcept UTIL_NONBLOCKING
{
    constexpr float LeastPitch = 1e-36F;
    constexpr float NoLogarithm = -1e35F;
    const float logarithm = std::fabs(pitchHz) < LeastPitch ? NoLogarithm : std::log(pitchHz);
    return {ValuePerLog * logarithm, 1.0F - clarity, clarity};
}

} // namespace

LagTracker::LagTracker(const AnalysisSizes& sizes,
                       int newDelayFrames,
                       const Kernels::LagSearchKernels& newKernels)
    : kernels(newKernels)
    , minLag(sizes.minLag)
    , maxLag(sizes.maxLag)
    , decimatedRate(sizes.decimatedRate)
    , delayFrames(newDelayFrames)
    , map(sizes, newKernels)
    , path(newDelayFrames + 1)
    , gate(newDelayFrames)
{
    const auto rate = static_cast<double>(sizes.trackerRate);
    confidence.configure(ConfidenceSeconds, rate, ConfidenceAtStart);
    Reset();
}

void LagTracker::Reset() noexcept UTIL_NONBLOCKING
{
    map.Reset();
    confidence.reset();
    path.Reset();
    gate.Reset();
    lag = static_cast<float>(minLag);
}

void LagTracker::SetDynamicProgramming(bool enabled) noexcept UTIL_NONBLOCKING
{
    if (enabled != dynamicProgramming) {
        dynamicProgramming = enabled;
        // Paths and rings must not hold runs from before a pause.
        path.Reset();
        gate.Reset();
    }
}

void LagTracker::SetAnalysing(bool enabled) noexcept UTIL_NONBLOCKING
{
    if (enabled != analysing) {
        analysing = enabled;
        gate.Reset(); // see above
    }
}

LagTracker::Peak LagTracker::FindPeak(std::span<const float> correlation) noexcept UTIL_NONBLOCKING
{
    const int found = map.FindBest();
    const int top = ClimbToPeak(correlation, found, map.GetMargin(), maxLag);
    return {found,
            top,
            RefineLag(correlation, top, found),
            GetClarity(correlation[static_cast<std::size_t>(top)], correlation[0])};
}

/// Fills `candidates`: the best lags, and last the octave above the best, in case the best is an
/// octave too low. Answers the best.
LagTracker::Peak LagTracker::FindCandidates(std::span<float> correlation) noexcept UTIL_NONBLOCKING
{
    const int slots = dynamicProgramming ? DP::DynProgCached::CandidateCount : 1;
    const int searched = std::max(slots - 1, 1);
    Peak plain{};
    for (int k = 0; k < searched; ++k) {
        const Peak peak = FindPeak(correlation);
        const float pitchHz = decimatedRate / peak.lag;
        candidates[static_cast<std::size_t>(k)] = MakeCandidate(pitchHz, peak.clarity);
        if (k == 0) {
            plain = peak;
            const float atHalf = correlation[static_cast<std::size_t>(peak.top / 2)];
            const float halfClarity = GetClarity(atHalf, correlation[0]);
            candidates.back() =
                MakeCandidate(2.0F * pitchHz, std::max(peak.clarity * 0.5F, halfClarity));
        }
        map.ErasePeak(peak.found);
        kernels.erasePeak(correlation.data(), peak.top, maxLag);
        map.Mark(peak.found, peak.lag, plain.clarity);
    }
    return plain;
}

/// Takes the lag over as far as it can be trusted, and answers the smoothed confidence.
float LagTracker::Settle(float newLag, float newClarity) noexcept UTIL_NONBLOCKING
{
    lag = (lag - newLag) * (1.0F - GetTrust(newClarity)) + newLag;
    return confidence.process(newClarity);
}

LagEstimate LagTracker::Run(std::span<float> correlation, int firstLag) noexcept UTIL_NONBLOCKING
{
    map.Score(correlation.data(), firstLag);
    const Peak plain = FindCandidates(correlation);
    if (!dynamicProgramming) {
        // Nothing is looked ahead for, so nothing may wait: the run's own cost decides.
        const float smoothed = Settle(plain.lag, plain.clarity);
        return {lag, !analysing || 1.0F - plain.clarity < VoicingGate::UnvoicedCost, smoothed};
    }
    const DP::DynProgCached::Result result = path.Push(candidates);
    const float pathLag = decimatedRate / std::exp(result.oldest.value * LogPerValue);
    const float smoothed = Settle(pathLag, result.oldest.clarity);
    if (!analysing) {
        return {lag, true, smoothed};
    }
    return gate.Push(lag, smoothed, static_cast<float>(result.pathCost / delayFrames));
}

} // namespace DSP::Synapse

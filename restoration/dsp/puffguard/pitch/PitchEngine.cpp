// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PitchEngine.h"

#include <algorithm>
#include <array>

namespace DSP::Synapse {

PitchEngine::PitchEngine(double sampleRate, int newDelayFrames)
    : sizes(AnalysisSizes::ForRate(sampleRate))
    , delayFrames(newDelayFrames)
    , prefilter(sizes)
    , autocorr(sizes.minLag, sizes.maxLag)
    , history(autocorr.GetFrameLength(), sizes.analysisHop / sizes.decimation)
    , tracker(sizes, newDelayFrames)
{
    tracker.SetAnalysing(false);
}

void PitchEngine::Reset() noexcept UTIL_NONBLOCKING
{
    prefilter.Reset();
    history.Reset();
    tracker.Reset();
    pitchHz = 0;
}

void PitchEngine::SetDynamicProgramming(bool enabled) noexcept UTIL_NONBLOCKING
{
    dynamicProgramming = enabled;
    tracker.SetDynamicProgramming(enabled);
}

void PitchEngine::Process(std::span<const float> mono) noexcept UTIL_NONBLOCKING
{
    std::array<float, 256> decimated; // written before it is read
    while (!mono.empty()) {
        const auto piece = mono.first(std::min(mono.size(), decimated.size()));
        const std::size_t count = prefilter.Process(piece, decimated.data());
        Append(std::span(decimated).first(count));
        mono = mono.subspan(piece.size());
    }
}

void PitchEngine::Append(std::span<const float> decimated) noexcept UTIL_NONBLOCKING
{
    for (const float d : decimated) {
        history.Append(d);
        if (history.GetDueCount() == Autocorr::MaxFrames) {
            RunTracker();
        }
    }
}

/// The runs that are due.
void PitchEngine::RunTracker() noexcept UTIL_NONBLOCKING
{
    const int runs = history.GetDueCount();
    if (runs == 0) {
        return;
    }
    autocorr.Compute(history.GetFrames(), runs);
    history.DropFrames();
    LagEstimate estimate;
    for (int run = 0; run < runs; ++run) {
        estimate = tracker.Run(autocorr.GetCorrelation(run), autocorr.GetFirstLag(run));
    }
    pitchHz = estimate.voiced
                  ? sizes.sampleRate / (static_cast<float>(sizes.decimation) * estimate.lag)
                  : 0.0F;
}

float PitchEngine::GetPitch() noexcept UTIL_NONBLOCKING
{
    RunTracker();
    return pitchHz;
}

} // namespace DSP::Synapse

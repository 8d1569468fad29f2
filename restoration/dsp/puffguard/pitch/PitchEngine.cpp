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
    runs = 0;
    partsDone = 0;
    made = 0;
    pitchHz = 0;
}

void PitchEngine::SetDynamicProgramming(bool enabled) noexcept UTIL_NONBLOCKING
{
    dynamicProgramming = enabled;
    tracker.SetDynamicProgramming(enabled);
}

void PitchEngine::Process(std::span<const float> mono) noexcept UTIL_NONBLOCKING
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
    std::array<float, Prefilter::MostSamples> decimated;
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
        if (history.GetDueCount() > runs + Autocorr::MaxFrames) {
            TakeRuns();
        }
    }
}

/// Turns to the next runs that are due, after those that were worked on before.
void PitchEngine::TakeRuns() noexcept UTIL_NONBLOCKING
{
    if (history.GetDueCount() == runs) {
        return;
    }
    Advance(BlockParts);
    history.DropFrames(runs);
    runs = std::min(history.GetDueCount(), Autocorr::MaxFrames);
    partsDone = 0;
    made = 0;
}

void PitchEngine::Advance(int parts) noexcept UTIL_NONBLOCKING
{
    const int end = std::min(partsDone + parts, runs > 0 ? BlockParts : 0);
    for (; partsDone < end; ++partsDone) {
        if (partsDone < CorrelationParts) {
            autocorr.ComputePart(partsDone, history.GetFrames(), runs);
        } else {
            const int done = partsDone + 1 - CorrelationParts;
            MakeRuns((runs * done + RunParts - 1) / RunParts);
        }
    }
}

void PitchEngine::MakeRuns(int end) noexcept UTIL_NONBLOCKING
{
    if (made == end) {
        return;
    }
    LagEstimate estimate;
    for (; made < end; ++made) {
        estimate = tracker.Run(autocorr.GetCorrelation(made), autocorr.GetFirstLag(made));
    }
    pitchHz = estimate.voiced
                  ? sizes.sampleRate / (static_cast<float>(sizes.decimation) * estimate.lag)
                  : 0.0F;
}

float PitchEngine::GetBlockPitch() noexcept UTIL_NONBLOCKING
{
    Advance(BlockParts);
    return pitchHz;
}

float PitchEngine::GetPitch() noexcept UTIL_NONBLOCKING
{
    TakeRuns();
    return GetBlockPitch();
}

} // namespace DSP::Synapse

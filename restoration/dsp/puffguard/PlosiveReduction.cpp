// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/PlosiveReduction.h"

#include "restoration/dsp/puffguard/Ramp.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace DSP {

namespace {

constexpr float Tiny = 1e-12F; // keeps quotients finite where a bin is empty

float FourthRoot(float value)
{
    return std::sqrt(std::sqrt(value));
}

/// Rounds halves to even, as the processor does.
int32_t RoundEven(float value)
{
    return static_cast<int32_t>(std::lrint(value));
}

/// Levels of one bin at both edges of a region, fourth roots of power.
struct EdgeLevels {
    float left;
    float right;
};

/// Bin of an edge frame that shows what `bin` shows at the centre: the same harmonic, where the
/// pitch is known in both.
int32_t FollowPitch(int32_t bin, float framePitchHz, const RepairPitch& pitch, int32_t binCount)
{
    if (!pitch.isVoiced || !(framePitchHz > VoicedAboveHz)) {
        return bin;
    }
    const float followed = static_cast<float>(bin) * framePitchHz / pitch.pitchHz;
    return std::min(RoundEven(std::min(followed, static_cast<float>(binCount))), binCount - 1);
}

float SumEdge(const RepairFrames& frames,
              int32_t frame,
              int32_t step,
              int32_t edgeFrames,
              int32_t bin,
              const RepairPitch& pitch)
{
    float sum = 0;
    for (int32_t i = 0; i <= edgeFrames; ++i, frame += step) {
        const auto index = static_cast<std::size_t>(frame);
        sum += frames.power[index][FollowPitch(bin, frames.pitch[index], pitch, frames.binCount)];
    }
    return sum;
}

EdgeLevels MeasureEdges(const RepairFrames& frames,
                        const RepairRegion& region,
                        int32_t bin,
                        const RepairPitch& pitch,
                        const RepairSettings& settings)
{
    const float sumLeft = SumEdge(frames, region.start, -1, settings.edgeFrames, bin, pitch);
    const float sumRight = SumEdge(frames, region.end, 1, settings.edgeFrames, bin, pitch);
    const auto count = static_cast<float>(settings.edgeFrames + 1);
    const float g = settings.strengthTerm + LeastStrengthTerm;
    return {FourthRoot(sumLeft / count) / g, FourthRoot(sumRight / count) / g};
}

/// Target between the edge levels for `t` from 0 at the region's start to 1 at its end.
float GetTarget(const EdgeLevels& edges, float t, float protection)
{
    const float low = std::min(edges.left, edges.right);
    const float high = std::max(edges.left, edges.right);
    const float line = t * (edges.right - edges.left) + edges.left;
    return ((line + high) * 0.5F - low) * protection + low;
}

} // namespace

int32_t GetRepairedBinCount(const RepairSettings& settings) noexcept UTIL_NONBLOCKING
{
    const float bins = settings.frequencyLimit * FadeOverLimit *
                       static_cast<float>(settings.fftSize) / settings.sampleRate;
    const int32_t binCount = settings.fftSize / 2 + 1;
    return RoundEven(std::min(bins, static_cast<float>(binCount)));
}

RepairPitch MakeRepairPitch(float pitchHz, const RepairSettings& settings) noexcept UTIL_NONBLOCKING
{
    RepairPitch pitch;
    pitch.pitchHz = pitchHz;
    pitch.isVoiced = pitchHz > VoicedAboveHz;
    const float fundamentalHz = pitch.isVoiced ? pitchHz : UnvoicedFundamentalHz;
    pitch.fundamentalBin =
        static_cast<float>(settings.fftSize) * fundamentalHz / settings.sampleRate;
    return pitch;
}

float GetRepairFade(int32_t bin, int32_t repairedBins) noexcept UTIL_NONBLOCKING
{
    const auto top = static_cast<float>(repairedBins);
    return Ramp(static_cast<float>(bin), FadeStart * top, top);
}

float GetProtection(int32_t bin, const RepairPitch& pitch) noexcept UTIL_NONBLOCKING
{
    const auto k = static_cast<float>(bin);
    const float f0 = pitch.fundamentalBin;
    const float belowFundamental = Ramp(k, ProtectionStart * f0, ProtectionFull * f0);
    if (!pitch.isVoiced) {
        return belowFundamental;
    }
    const auto distance = std::abs(std::trunc(k - f0 * ValleyCentre));
    const float besideValley = Ramp(distance, ValleyInner * f0, ValleyOuter * f0);
    return std::min(belowFundamental, besideValley * (1.0F - ValleyProtection) + ValleyProtection);
}

void ReducePower(const RepairFrames& frames,
                 const RepairRegion& region,
                 const RepairPitch& pitch,
                 int32_t repairedBins,
                 const RepairSettings& settings) noexcept UTIL_NONBLOCKING
{
    const auto length = static_cast<float>(region.end - region.start);
    // Bins ascend and are replaced in place, so that an edge that follows the pitch downwards reads
    // what has been repaired already.
    for (int32_t bin = 0; bin < repairedBins; ++bin) {
        const EdgeLevels edges = MeasureEdges(frames, region, bin, pitch, settings);
        const float fade = GetRepairFade(bin, repairedBins);
        const float protection = GetProtection(bin, pitch);
        for (int32_t j = region.start; j <= region.end; ++j) {
            // One frame alone gives 0 / 0 here; no comparison with that target holds.
            const float t = static_cast<float>(j - region.start) / length;
            const float target = GetTarget(edges, t, protection);
            float& power = frames.power[static_cast<std::size_t>(j)][bin];
            const float current = FourthRoot(power);
            if (current > target) {
                const float value = (current - target) * fade + target;
                const float squared = value * value;
                power = squared * squared;
            }
        }
    }
}

void ApplyGains(float* spectrum, const float* power, int32_t repairedBins, float severity) noexcept
    UTIL_NONBLOCKING
{
    const float weakening = severity * severity;
    for (std::ptrdiff_t bin = 0; bin < repairedBins; ++bin) {
        const float re = spectrum[2 * bin];
        const float im = spectrum[2 * bin + 1];
        const float ratio = power[bin] / ((re * re + im * im) * weakening + Tiny);
        const float gain = std::min(std::sqrt(ratio), 1.0F);
        spectrum[2 * bin] = gain * re;
        spectrum[2 * bin + 1] = gain * im;
    }
}

} // namespace DSP

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/PlosiveDetection.h"

#include <cstdint>
#include <span>

/// The arithmetic that takes a plosive down: a target power for each bin and frame of the region,
/// drawn between the spectra before and after it in the fourth-root domain, then gains that bring
/// each channel's spectrum to the target. Single precision, [process].
namespace DSP {

// Constants of the reduction, with their reasons.

/// A pitch above this counts as one: the tracker answers lower ones for unvoiced frames.
constexpr float VoicedAboveHz = 20;
/// The fundamental that an unvoiced plosive is treated by: that of a deep voice, so that the voice
/// which follows keeps its body.
constexpr float UnvoicedFundamentalHz = 80;
/// The repair works fully up to FadeStart of its top and ends at the top, which lies FadeOverLimit
/// times the upper frequency high: up to 0.84 and 1.2 of it, so that no edge is heard at the limit.
constexpr float FadeOverLimit = 1.2F;
constexpr float FadeStart = 0.7F;
/// In units of the fundamental's bin: protection begins and is complete just below it, so that the
/// window's main lobe around the fundamental is inside.
constexpr float ProtectionStart = 0.8F;
constexpr float ProtectionFull = 0.9F;
/// Between the first two harmonics is no voice: protection falls to ValleyProtection within
/// ValleyInner of the middle and is complete again from ValleyOuter on.
constexpr float ValleyCentre = 1.5F;
constexpr float ValleyInner = 0.2F;
constexpr float ValleyOuter = 0.4F;
constexpr float ValleyProtection = 0.3F;
/// Added to the strength's term, which divides: strength 0 then leaves everything as it is.
constexpr float LeastStrengthTerm = 0.001F;

/// How a repair is to be made.
struct RepairSettings {
    int32_t fftSize = 0;
    float sampleRate = 0;     ///< Hz
    float frequencyLimit = 0; ///< Hz; repair fades out up to 1.2 times of it
    float strengthTerm = 0;   ///< strength (0 to 10) * 2 / 10
    int32_t edgeFrames = 0;   ///< frames beside the region, besides its own edge, that are averaged
};

/// Number of repaired bins, counted from bin 0; up to all of the spectrum.
int32_t GetRepairedBinCount(const RepairSettings& settings) noexcept UTIL_NONBLOCKING;

/// The speaker's pitch at the plosive.
struct RepairPitch {
    float pitchHz = 0;        ///< of the centre frame
    bool isVoiced = false;    ///< that pitch is above 20 Hz
    float fundamentalBin = 0; ///< bin of it, or of 80 Hz when unvoiced; not rounded
};

RepairPitch MakeRepairPitch(float pitchHz, const RepairSettings& settings) noexcept
    UTIL_NONBLOCKING;

/// 0 where a bin is repaired fully, rising to 1 at the top of `repairedBins`, where it stays.
float GetRepairFade(int32_t bin, int32_t repairedBins) noexcept UTIL_NONBLOCKING;

/// 0 where a bin goes down to the lower of the two edge levels, 1 where it is held between the line
/// and the higher one: rises just below the fundamental, falls back between the first harmonics.
float GetProtection(int32_t bin, const RepairPitch& pitch) noexcept UTIL_NONBLOCKING;

/// The frames around a region, addressed by the index into the detection history.
struct RepairFrames {
    std::span<float* const> power; ///< spectra of power that all channels share
    std::span<const float> pitch;  ///< Hz, up to 20 where unvoiced
    int32_t binCount = 0;          ///< of each spectrum
};

/// Replaces the power of the region's frames, in the bins below `repairedBins`, by the target where
/// it is above. The region isn't empty and has `settings.edgeFrames` frames on either side. A
/// region of one frame stays as it is.
void ReducePower(const RepairFrames& frames,
                 const RepairRegion& region,
                 const RepairPitch& pitch,
                 int32_t repairedBins,
                 const RepairSettings& settings) noexcept UTIL_NONBLOCKING;

/// Scales one channel's spectrum, interleaved (re, im), towards the target `power` in the bins
/// below `repairedBins`, never up; a severity below 1 weakens that.
void ApplyGains(float* spectrum, const float* power, int32_t repairedBins, float severity) noexcept
    UTIL_NONBLOCKING;

} // namespace DSP

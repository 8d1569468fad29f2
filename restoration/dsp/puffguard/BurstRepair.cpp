// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/BurstRepair.h"

#include <cstddef>

namespace DSP {

void BurstRepair::Search(const Controls& controls, float noise) noexcept UTIL_NONBLOCKING
{
    plosive.bins = 0;
    const float threshold = GetDetectionThreshold(noise, controls.sensitivity);
    const auto centre = static_cast<int32_t>(sizes.GetCentre());
    const auto radius = static_cast<int32_t>(sizes.peakRadius);
    const PeakTest peak = TestPeak(frames.GetDetections(), centre, radius, threshold);
    if (peak.isPeak) {
        plosive.peak = peak;
        plosive.region = FindRepairRegion(frames.GetDetections(), centre, radius, peak, noise);
        plosive.threshold = threshold;
        Reduce({.fftSize = static_cast<int32_t>(sizes.frameSize),
                .sampleRate = sizes.sampleRate,
                .frequencyLimit = controls.frequencyLimit,
                .strengthTerm = controls.strength * 2.0F / 10.0F,
                .edgeFrames = static_cast<int32_t>(sizes.edgeFrames)});
    }
}

void BurstRepair::Reduce(const RepairSettings& settings) noexcept UTIL_NONBLOCKING
{
    const int32_t bins = GetRepairedBinCount(settings);
    if (bins == 0 || plosive.region.IsEmpty()) {
        return;
    }
    plosive.bins = bins;
    plosive.frames = {.power = frames.GatherPower(),
                      .pitch = frames.GetPitches(),
                      .binCount = static_cast<int32_t>(sizes.GetBinCount())};
    const RepairPitch pitch = MakeRepairPitch(plosive.frames.pitch[sizes.GetCentre()], settings);
    plosive.pitchHz = pitch.isVoiced ? pitch.pitchHz : 0.0F;
    plosive.severity = GetSeverity(plosive.peak.centre, plosive.threshold);
    plosive.energyBefore = frames.GetEnergy(plosive.region);
    ReducePower(plosive.frames, plosive.region, pitch, bins, settings);
}

void BurstRepair::Finish() noexcept UTIL_NONBLOCKING
{
    if (plosive.bins == 0) {
        return;
    }
    ScaleSpectra();
    // The same burst must not be found again on its way through the history.
    frames.ForgetDetections(plosive.region);
    Log();
}

void BurstRepair::ScaleSpectra() noexcept UTIL_NONBLOCKING
{
    SpectrumRing& spectra = frames.GetSpectra();
    for (int32_t j = plosive.region.start; j <= plosive.region.end; ++j) {
        const uint32_t slot = frames.GetSlot(j);
        spectra.KeepOriginal(slot, static_cast<uint32_t>(plosive.bins));
        const float* const power = plosive.frames.power[static_cast<std::size_t>(j)];
        for (uint32_t channel = 0; channel < sizes.channels; ++channel) {
            ApplyGains(spectra.GetSpectrum(slot, channel), power, plosive.bins, plosive.severity);
        }
    }
}

void BurstRepair::Log() noexcept UTIL_NONBLOCKING
{
    DetectionRecord record{};
    record.centre = GetFrameCentre(static_cast<int32_t>(sizes.GetCentre()));
    record.start = GetFrameCentre(plosive.region.start);
    record.end = GetFrameCentre(plosive.region.end);
    record.detection = plosive.peak.centre;
    record.threshold = plosive.threshold;
    record.severity = plosive.severity;
    record.pitchHz = plosive.pitchHz;
    record.energyBefore = plosive.energyBefore;
    record.energyAfter = frames.GetEnergy(plosive.region);
    record.regionStart = static_cast<uint32_t>(plosive.region.start);
    record.regionEnd = static_cast<uint32_t>(plosive.region.end);
    record.repairedBins = static_cast<uint32_t>(plosive.bins);
    log.Append(record);
}

/// In samples of the input since the restart.
int64_t BurstRepair::GetFrameCentre(int32_t historyIndex) const noexcept UTIL_NONBLOCKING
{
    const auto newest = static_cast<int64_t>(sizes.GetLength()) - 1;
    const int64_t frame = static_cast<int64_t>(log.GetHopCount()) - 1 - (newest - historyIndex);
    return (frame + 1) * sizes.hopSize - sizes.frameSize / 2;
}

} // namespace DSP

// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/BurstRepair.h"

#include <cstddef>

namespace DSP {

void BurstRepair::Run(const Controls& controls, float noise) noexcept UTIL_NONBLOCKING
{
    const float threshold = GetDetectionThreshold(noise, controls.sensitivity);
    const auto centre = static_cast<int32_t>(sizes.GetCentre());
    const auto radius = static_cast<int32_t>(sizes.peakRadius);
    const PeakTest peak = TestPeak(frames.GetDetections(), centre, radius, threshold);
    if (peak.isPeak) {
        Repair({.peak = peak,
                .region = FindRepairRegion(frames.GetDetections(), centre, radius, peak, noise),
                .threshold = threshold},
               controls);
    }
}

void BurstRepair::Repair(const Plosive& plosive, const Controls& controls) noexcept UTIL_NONBLOCKING
{
    const RepairSettings settings = {.fftSize = static_cast<int32_t>(sizes.frameSize),
                                     .sampleRate = sizes.sampleRate,
                                     .frequencyLimit = controls.frequencyLimit,
                                     .strengthTerm = controls.strength * 2.0F / 10.0F,
                                     .edgeFrames = static_cast<int32_t>(sizes.edgeFrames)};
    const int32_t bins = GetRepairedBinCount(settings);
    const RepairRegion& region = plosive.region;
    if (bins == 0 || region.IsEmpty()) {
        return;
    }
    const RepairFrames repaired = {.power = frames.GatherPower(),
                                   .pitch = frames.GetPitches(),
                                   .binCount = static_cast<int32_t>(sizes.GetBinCount())};
    const RepairPitch pitch = MakeRepairPitch(repaired.pitch[sizes.GetCentre()], settings);
    const float severity = GetSeverity(plosive.peak.centre, plosive.threshold);
    const double energyBefore = frames.GetEnergy(region);
    ReducePower(repaired, region, pitch, bins, settings);
    ScaleSpectra(region, repaired, bins, severity);
    // The same burst must not be found again on its way through the history.
    frames.ForgetDetections(region);

    DetectionRecord record{};
    record.severity = severity;
    record.pitchHz = pitch.isVoiced ? pitch.pitchHz : 0.0F;
    record.energyBefore = energyBefore;
    record.energyAfter = frames.GetEnergy(region);
    record.repairedBins = static_cast<uint32_t>(bins);
    Log(plosive, record);
}

void BurstRepair::ScaleSpectra(const RepairRegion& region,
                               const RepairFrames& repaired,
                               int32_t bins,
                               float severity) noexcept UTIL_NONBLOCKING
{
    SpectrumRing& spectra = frames.GetSpectra();
    for (int32_t j = region.start; j <= region.end; ++j) {
        const uint32_t slot = frames.GetSlot(j);
        spectra.KeepOriginal(slot, static_cast<uint32_t>(bins));
        const float* const power = repaired.power[static_cast<std::size_t>(j)];
        for (uint32_t channel = 0; channel < sizes.channels; ++channel) {
            ApplyGains(spectra.GetSpectrum(slot, channel), power, bins, severity);
        }
    }
}

void BurstRepair::Log(const Plosive& plosive, DetectionRecord record) noexcept UTIL_NONBLOCKING
{
    record.centre = GetFrameCentre(static_cast<int32_t>(sizes.GetCentre()));
    record.start = GetFrameCentre(plosive.region.start);
    record.end = GetFrameCentre(plosive.region.end);
    record.detection = plosive.peak.centre;
    record.threshold = plosive.threshold;
    record.regionStart = static_cast<uint32_t>(plosive.region.start);
    record.regionEnd = static_cast<uint32_t>(plosive.region.end);
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

// SPDX-License-Identifier: ISC
// The part of PuffGuard that judges the middle frame of the ring and rewrites the frames around it.
#include "restoration/dsp/puffguard/PuffGuard.h"

#include "restoration/dsp/puffguard/VectorOps.h"

#include <cstddef>

namespace DSP::Shared {

std::span<const float> PuffGuard::GetDetections() const noexcept UTIL_NONBLOCKING
{
    return {detectionHistory.GetData(), historyLength};
}

uint32_t PuffGuard::GetSlot(int32_t historyIndex) const noexcept UTIL_NONBLOCKING
{
    // Gives the frame before the one that the detection value belongs to, and the newest one for
    // index 0: repair lies one frame ahead of detection by design.
    return (powerSlot + static_cast<uint32_t>(historyIndex)) % historyLength;
}

void PuffGuard::SearchPlosive(float noise) noexcept UTIL_NONBLOCKING
{
    const float threshold = GetDetectionThreshold(noise, controls.sensitivity);
    const auto centre = static_cast<int32_t>(peakRadius + edgeFrames);
    const auto radius = static_cast<int32_t>(peakRadius);
    const PeakTest peak = TestPeak(GetDetections(), centre, radius, threshold);
    if (peak.isPeak) {
        Repair({.peak = peak,
                .region = FindRepairRegion(GetDetections(), centre, radius, peak, noise),
                .threshold = threshold});
    }
}

RepairSettings PuffGuard::GetRepairSettings() const noexcept UTIL_NONBLOCKING
{
    return {.fftSize = static_cast<int32_t>(frameSize),
            .sampleRate = GetSampleRate(),
            .frequencyLimit = controls.frequencyLimit,
            .strengthTerm = controls.strength * 2.0F / 10.0F,
            .edgeFrames = static_cast<int32_t>(edgeFrames)};
}

void PuffGuard::Repair(const Plosive& plosive) noexcept UTIL_NONBLOCKING
{
    const RepairSettings settings = GetRepairSettings();
    const int32_t bins = GetRepairedBinCount(settings);
    const RepairRegion& region = plosive.region;
    if (bins == 0 || region.IsEmpty()) {
        return;
    }
    const std::size_t length = GetDetections().size();
    for (std::size_t j = 0; j < length; ++j) {
        framePower[j] = powerRing[GetSlot(static_cast<int32_t>(j))].GetChannel(0);
    }
    const RepairFrames frames = {.power = std::span(framePower).first(length),
                                 .pitch = {pitchHistory.GetData(), length},
                                 .binCount = static_cast<int32_t>(binCount)};
    const RepairPitch pitch = MakeRepairPitch(frames.pitch[peakRadius + edgeFrames], settings);
    const float severity = GetSeverity(plosive.peak.centre, plosive.threshold);
    const double energyBefore = GetRegionEnergy(region);
    ReducePower(frames, region, pitch, bins, settings);
    ScaleSpectra(region, bins, severity);
    // The same burst must not be found again on its way through the history.
    VectorOps::Zero(detectionHistory.GetData() + region.start,
                    static_cast<std::size_t>(region.end - region.start) + 1);

    DetectionRecord record{};
    record.severity = severity;
    record.pitchHz = pitch.isVoiced ? pitch.pitchHz : 0.0F;
    record.energyBefore = energyBefore;
    record.energyAfter = GetRegionEnergy(region);
    record.repairedBins = static_cast<uint32_t>(bins);
    Log(plosive, record);
}

void PuffGuard::ScaleSpectra(const RepairRegion& region, int32_t bins, float severity) noexcept
    UTIL_NONBLOCKING
{
    for (int32_t j = region.start; j <= region.end; ++j) {
        const uint32_t slot = GetSlot(j);
        spectrumRing.KeepOriginal(slot, static_cast<uint32_t>(bins));
        const float* const power = framePower[static_cast<std::size_t>(j)];
        for (uint32_t channel = 0; channel < GetChannelCount(); ++channel) {
            ApplyGains(spectrumRing.GetSpectrum(slot, channel), power, bins, severity);
        }
    }
}

void PuffGuard::Log(const Plosive& plosive, DetectionRecord record) noexcept UTIL_NONBLOCKING
{
    record.centre = GetFrameCentre(static_cast<int32_t>(peakRadius + edgeFrames));
    record.start = GetFrameCentre(plosive.region.start);
    record.end = GetFrameCentre(plosive.region.end);
    record.detection = plosive.peak.centre;
    record.threshold = plosive.threshold;
    record.regionStart = static_cast<uint32_t>(plosive.region.start);
    record.regionEnd = static_cast<uint32_t>(plosive.region.end);
    log.Append(record);
}

int64_t PuffGuard::GetFrameCentre(int32_t historyIndex) const noexcept UTIL_NONBLOCKING
{
    const auto newest = static_cast<int64_t>(GetDetections().size()) - 1;
    const int64_t frame = static_cast<int64_t>(log.GetHopCount()) - 1 - (newest - historyIndex);
    return (frame + 1) * hopSize - frameSize / 2;
}

double PuffGuard::GetFrameEnergy(uint32_t slot) const noexcept UTIL_NONBLOCKING
{
    double energy = 0;
    for (uint32_t channel = 0; channel < GetChannelCount(); ++channel) {
        const float* const bins = spectrumRing.GetSpectrum(slot, channel);
        for (std::ptrdiff_t bin = energyFirst; bin <= energyLast; ++bin) {
            const auto re = static_cast<double>(bins[2 * bin]);
            const auto im = static_cast<double>(bins[2 * bin + 1]);
            energy += re * re + im * im;
        }
    }
    return energy;
}

double PuffGuard::GetRegionEnergy(const RepairRegion& region) const noexcept UTIL_NONBLOCKING
{
    double energy = 0;
    for (int32_t j = region.start; j <= region.end; ++j) {
        energy += GetFrameEnergy(GetSlot(j));
    }
    return energy;
}

} // namespace DSP::Shared

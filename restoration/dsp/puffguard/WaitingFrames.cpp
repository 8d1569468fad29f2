// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/WaitingFrames.h"

#include "restoration/dsp/puffguard/VectorOps.h"

#include <algorithm>
#include <cassert>
#include <cstddef>

namespace DSP {

namespace {

constexpr float EnergyFromHz = 20;
constexpr float EnergyToHz = 150;

} // namespace

void WaitingFrames::Configure(const RepairSizes& newSizes,
                              uint32_t repairableBins,
                              uint32_t pitchLatency)
{
    sizes = newSizes;
    const auto fftSize = static_cast<int32_t>(sizes.frameSize);
    energyFirst = GetNearestBin(EnergyFromHz, fftSize, sizes.sampleRate);
    energyLast = GetNearestBin(EnergyToHz, fftSize, sizes.sampleRate);
    assert(energyLast < static_cast<int32_t>(repairableBins));
    const uint32_t length = sizes.GetLength();
    spectra.Configure(length, sizes.channels, repairableBins);
    // Slots are kept when the history gets shorter, so that it can grow again without the heap.
    const std::size_t slots = std::max<std::size_t>(length, power.size());
    power.resize(slots);
    powerByIndex.resize(slots);
    for (DataTail& slot : power) {
        slot.configure(1, static_cast<int32_t>(sizes.GetBinCount()), 0);
    }
    openSlot = 0;
    detections.configure(static_cast<int32_t>(length), static_cast<int32_t>(length) - 1, true);
    AlignPitches(pitchLatency);
}

void WaitingFrames::AlignPitches(uint32_t pitchLatency)
{
    const uint32_t length = sizes.GetLength();
    // A tracker that is faster than half a frame would ask for a place in the future: the unsigned
    // quotient is then huge and the place below the floor.
    const uint32_t framesLate = (pitchLatency - sizes.frameSize / 2) / sizes.hopSize;
    const auto place = static_cast<int32_t>(length - framesLate - 1);
    const auto least = static_cast<int32_t>(length / 2 + 1);
    pitches.configure(static_cast<int32_t>(length), std::max(place, least), true);
}

void WaitingFrames::Clear() noexcept UTIL_NONBLOCKING
{
    spectra.Clear();
    for (DataTail& slot : power) {
        slot.zero();
    }
    openSlot = 0;
    detections.clear();
    pitches.clear();
}

void WaitingFrames::Advance() noexcept UTIL_NONBLOCKING
{
    detections.consume(1);
    pitches.consume(1);
    openSlot = GetOpenSlot(1);
}

std::span<float* const> WaitingFrames::GatherPower() noexcept UTIL_NONBLOCKING
{
    const std::size_t length = sizes.GetLength();
    for (std::size_t j = 0; j < length; ++j) {
        powerByIndex[j] = power[GetSlot(static_cast<int32_t>(j))].GetChannel(0);
    }
    return std::span(powerByIndex).first(length);
}

void WaitingFrames::AppendDetection(float value) noexcept UTIL_NONBLOCKING
{
    detections.append(&value, 1, 0);
}

void WaitingFrames::AppendPitch(float pitchHz) noexcept UTIL_NONBLOCKING
{
    pitches.append(&pitchHz, 1, 0);
}

void WaitingFrames::ForgetDetections(const RepairRegion& region) noexcept UTIL_NONBLOCKING
{
    VectorOps::Zero(detections.GetData() + region.start,
                    static_cast<std::size_t>(region.end - region.start) + 1);
}

double WaitingFrames::GetEnergy(uint32_t slot) const noexcept UTIL_NONBLOCKING
{
    double energy = 0;
    for (uint32_t channel = 0; channel < sizes.channels; ++channel) {
        const float* const bins = spectra.GetSpectrum(slot, channel);
        for (std::ptrdiff_t bin = energyFirst; bin <= energyLast; ++bin) {
            const auto re = static_cast<double>(bins[2 * bin]);
            const auto im = static_cast<double>(bins[2 * bin + 1]);
            energy += re * re + im * im;
        }
    }
    return energy;
}

double WaitingFrames::GetEnergy(const RepairRegion& region) const noexcept UTIL_NONBLOCKING
{
    double energy = 0;
    for (int32_t j = region.start; j <= region.end; ++j) {
        energy += GetEnergy(GetSlot(j));
    }
    return energy;
}

} // namespace DSP

// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/puffguard/DataTail.h"
#include "restoration/dsp/puffguard/DataTail1D.h"
#include "restoration/dsp/puffguard/PlosiveDetection.h"
#include "restoration/dsp/puffguard/RepairSizes.h"
#include "restoration/dsp/puffguard/SpectrumRing.h"

#include <cstdint>
#include <span>
#include <vector>

namespace DSP {

/// The N frames that wait to go out, with what has been found out about each.
///
/// Of a frame there are the spectra of the bins that repairs may change, the power that all
/// channels share (the largest of theirs), a detection value and a pitch. A history index counts
/// from the oldest frame, 0, to the newest. One frame is open: the newest, which is written part by
/// part until Advance().
///
/// Threads: Configure() is [setup] and allocates nothing where no size grows; the others are
/// [process] and don't fail.
class WaitingFrames {
public:
    /// Everything is silent and empty afterwards. `repairableBins` are those that repairs may
    /// change; `pitchLatency` in samples is how late a pitch belongs to its frame.
    void Configure(const RepairSizes& newSizes, uint32_t repairableBins, uint32_t pitchLatency);

    /// Forgets all frames.
    void Clear() noexcept UTIL_NONBLOCKING;

    /// The next frame is the open one.
    void Advance() noexcept UTIL_NONBLOCKING;

    /// Slot of the open frame, and of the one that follows it after `frames` more, which is also
    /// that of the oldest but so many.
    uint32_t GetOpenSlot(uint32_t frames = 0) const noexcept UTIL_NONBLOCKING
    {
        return (openSlot + frames) % sizes.GetLength();
    }
    /// Slot that a repair of the frame at this index goes to. It is the frame before the one that
    /// the detection value belongs to, and the newest one for index 0: repair lies one frame ahead
    /// of detection by design.
    uint32_t GetSlot(int32_t historyIndex) const noexcept UTIL_NONBLOCKING
    {
        return GetOpenSlot(static_cast<uint32_t>(historyIndex));
    }

    SpectrumRing& GetSpectra() noexcept UTIL_NONBLOCKING { return spectra; }
    const SpectrumRing& GetSpectra() const noexcept UTIL_NONBLOCKING { return spectra; }
    /// Power in all bins, of the open frame.
    float* GetOpenPower() noexcept UTIL_NONBLOCKING { return power[openSlot].GetChannel(0); }
    /// The same of all frames, by history index as GetSlot().
    std::span<float* const> GatherPower() noexcept UTIL_NONBLOCKING;

    /// Once a frame, each.
    void AppendDetection(float value) noexcept UTIL_NONBLOCKING;
    void AppendPitch(float pitchHz) noexcept UTIL_NONBLOCKING;

    /// By history index.
    std::span<const float> GetDetections() const noexcept UTIL_NONBLOCKING
    {
        return {detections.GetData(), sizes.GetLength()};
    }
    /// Hz; 0 where unvoiced, or where no pitch can be known yet.
    std::span<const float> GetPitches() const noexcept UTIL_NONBLOCKING
    {
        return {pitches.GetData(), sizes.GetLength()};
    }
    /// Zeroes the detection values of a region that isn't empty.
    void ForgetDetections(const RepairRegion& region) noexcept UTIL_NONBLOCKING;

    /// Energy of a slot's frame between 20 and 150 Hz, all channels together.
    double GetEnergy(uint32_t slot) const noexcept UTIL_NONBLOCKING;
    /// The same of a region's frames.
    double GetEnergy(const RepairRegion& region) const noexcept UTIL_NONBLOCKING;

private:
    void AlignPitches(uint32_t pitchLatency);

    RepairSizes sizes;
    uint32_t openSlot = 0;
    SpectrumRing spectra;             // N slots in use
    std::vector<DataTail> power;      // the same, each of one channel
    std::vector<float*> powerByIndex; // scratch
    DataTail1D detections;
    DataTail1D pitches;
    int32_t energyFirst = 0; // bins whose energy is measured, both inclusive
    int32_t energyLast = 0;
};

} // namespace DSP

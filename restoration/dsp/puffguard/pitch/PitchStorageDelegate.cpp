// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PitchStorageDelegate.h"

namespace DSP::PitchDetect {

PitchStorageDelegate::PitchStorageDelegate(std::size_t maxBlockFrames)
{
    samples.reserve(maxBlockFrames);
    pitches.reserve(maxBlockFrames);
    confidences.reserve(maxBlockFrames);
}

void PitchStorageDelegate::Append(std::vector<float>& values, float value) noexcept UTIL_NONBLOCKING
{
    if (values.size() < values.capacity()) {
        values.push_back(value);
    }
}

void PitchStorageDelegate::BeginBlock(uint32_t newDelay, uint32_t newPhase) noexcept
    UTIL_NONBLOCKING
{
    samples.clear();
    pitches.clear();
    confidences.clear();
    delay = newDelay;
    phase = newPhase;
}

void PitchStorageDelegate::AddSample(std::span<const float> ring, uint32_t position) noexcept
    UTIL_NONBLOCKING
{
    const std::size_t start = position >= delay ? position : position + ring.size();
    Append(samples, ring[start - delay]);
}

void PitchStorageDelegate::AddPitch(std::optional<float> pitchHz, float confidence) noexcept
    UTIL_NONBLOCKING
{
    Append(pitches, pitchHz.value_or(0.0F));
    Append(confidences, confidence);
}

void PitchStorageDelegate::Clear() noexcept UTIL_NONBLOCKING
{
    BeginBlock(0, 0);
}

} // namespace DSP::PitchDetect

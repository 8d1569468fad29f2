// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/FrameAnalysis.h"

#include "restoration/dsp/puffguard/VectorOps.h"

namespace DSP {

namespace {

constexpr float SilentPower = 1e-6F;

} // namespace

void FrameAnalysis::Configure(const RepairSizes& sizes)
{
    binCount = sizes.GetBinCount();
    channelPower.assign(binCount, 0.0F);
    bands = MakeDetectionBands(static_cast<int32_t>(sizes.frameSize), sizes.sampleRate);
    noiseDetector.configure(
        binCount,
        sizes.sampleRate,
        sizes.hopSize,
        SilentPower,
        {static_cast<uint32_t>(bands.lowStart), static_cast<uint32_t>(bands.lowEnd)});
    noiseFloor.assign(binCount, 0.0F);
}

void FrameAnalysis::Reset() noexcept UTIL_NONBLOCKING
{
    noiseDetector.reset();
    VectorOps::Zero(noiseFloor.data(), noiseFloor.size());
}

void FrameAnalysis::Transform(OversampledFilterbank& filterbank,
                              uint32_t channel,
                              FFTPart part) noexcept UTIL_NONBLOCKING
{
    SpectrumRing& spectra = frames.GetSpectra();
    const uint32_t slot = frames.GetOpenSlot();
    float* const largest = frames.GetOpenPower();
    float* const power = channel == 0 ? largest : channelPower.data();
    filterbank.transform(part,
                         static_cast<int32_t>(channel),
                         static_cast<int32_t>(spectra.GetBinCount()),
                         spectra.GetSpectrum(slot, channel),
                         power);
    if (part != FFTPart::Last) {
        return;
    }
    if (channel == 0) {
        spectra.Renew(slot);
    } else {
        VectorOps::MaximumInPlace(power, largest, binCount);
    }
}

void FrameAnalysis::Detect() noexcept UTIL_NONBLOCKING
{
    const float* const power = frames.GetOpenPower();
    noiseDetector.process(power, noiseFloor.data());
    detection = DetectFrame(power, noiseFloor.data(), bands);
    frames.AppendDetection(detection.value);
}

} // namespace DSP

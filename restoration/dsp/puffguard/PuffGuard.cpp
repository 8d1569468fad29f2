// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/PuffGuard.h"

#include "restoration/dsp/puffguard/VectorOps.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <utility>

namespace DSP::Shared {

namespace {

constexpr float FrameSeconds = 0.1F; // the filterbank takes 0.7 of it as the least length
constexpr int32_t OverlapFactor = 8;
constexpr float PeakSeconds = 0.07F;
constexpr float EdgeSeconds = 0.05F;
constexpr uint32_t LeastPeakRadius = 2;
constexpr uint32_t LeastEdgeFrames = 3;
constexpr float SilentPower = 1e-6F;
// Where the energy that the log tells of is measured.
constexpr float EnergyFromHz = 20;
constexpr float EnergyToHz = 150;
// What the longest transform, 2^17 samples, serves: it is to last 0.07 s.
constexpr float LargestRate = 1.8e6F;
constexpr ValueRange<float> FrequencyLimits = {50, 2000}; // Hz

float CheckRate(float sampleRate)
{
    if (!(sampleRate > 0 && sampleRate <= LargestRate)) {
        throw std::invalid_argument("Sample rate out of range");
    }
    return sampleRate;
}

ParamRegistration<float>
MakeParam(const char* name, ValueRange<float> range, float defaultValue, float& target)
{
    ParamRegistration<float> registration;
    registration.name = name;
    registration.range = range;
    registration.defaultValue = defaultValue;
    registration.target = &target;
    return registration;
}

} // namespace

PuffGuard::PuffGuard(const Format& format, DetectionLog& newLog)
    : ElementDispatcher({.host = format.host,
                         .name = "PuffGuard",
                         .sampleRate = CheckRate(format.sampleRate),
                         .channelConfig = format.channelConfig})
    , filterbank(format.host)
    , pitchDetect({format.host, format.sampleRate, format.channelConfig})
    , log(newLog)
{
    AddChild(pitchDetect);
    RegisterParams();
    // Shows the default "Latency scaling" of 1 to its callback: the first sizing is the largest.
    FinaliseParams();
    GetTail().SetFrameSize(hopSize);
}

void PuffGuard::RegisterParams()
{
    RegisterFloatParam(Sensitivity, MakeParam("Detection sensitivity", {0, 10}, 5, sensitivity));
    RegisterFloatParam(Strength, MakeParam("Reduction strength", {0, 10}, 5, strength));
    ParamRegistration<float> limit =
        MakeParam("Upper repair frequency", FrequencyLimits, 500, frequencyLimit);
    limit.info.units = "Hz";
    RegisterFloatParam(FrequencyLimit, std::move(limit));
    ParamRegistration<float> scaling = MakeParam("Latency scaling", {0, 1}, 1, latencyScaling);
    scaling.onProcessChange = [this](float) {
        initialise();
        ResetTails(); // the first hop after a restart is made of samples that came after it
        GetHost().LatencyChanged(Context::Process);
    };
    RegisterFloatParam(LatencyScaling, std::move(scaling));
}

PuffGuard::HistorySizes PuffGuard::GetHistorySizes(float scaling) const noexcept UTIL_NONBLOCKING
{
    const auto framesIn = [&](float seconds) {
        const float frames =
            GetSampleRate() * scaling * seconds / static_cast<float>(hopSize) + 0.5F;
        return static_cast<uint32_t>(frames);
    };
    HistorySizes sizes;
    sizes.peakRadius = std::max(framesIn(PeakSeconds), LeastPeakRadius);
    sizes.edgeFrames = std::max(framesIn(EdgeSeconds), LeastEdgeFrames);
    sizes.length = (sizes.peakRadius + sizes.edgeFrames) * 2 + 1;
    return sizes;
}

void PuffGuard::initialise()
{
    filterbank.initialise(static_cast<int32_t>(GetChannelCount()),
                          static_cast<int32_t>(GetSampleRate()),
                          static_cast<int32_t>(GetHost().GetMaxBlockFrames()));
    filterbank.configure(FrameSeconds, OverlapFactor, WindowBlackman, -1);
    frameSize = static_cast<uint32_t>(filterbank.GetFFTSize());
    hopSize = static_cast<uint32_t>(filterbank.GetHop());
    binCount = frameSize / 2 + 1;
    bands = MakeDetectionBands(filterbank.GetFFTSize(), GetSampleRate());
    energyFirst = GetNearestBin(EnergyFromHz, filterbank.GetFFTSize(), GetSampleRate());
    energyLast = GetNearestBin(EnergyToHz, filterbank.GetFFTSize(), GetSampleRate());

    const HistorySizes sizes = GetHistorySizes(latencyScaling);
    peakRadius = sizes.peakRadius;
    edgeFrames = sizes.edgeFrames;
    historyLength = sizes.length;
    // Numbers by themselves: the host reads them after it has been told.
    latencySamples.store(GetLatencyOf(sizes.length), std::memory_order_relaxed);
    maxLatencySamples.store(GetLatencyOf(GetHistorySizes(1.0F).length), std::memory_order_relaxed);
    SizeRings();
    SizeDelays();
    const auto length = static_cast<int32_t>(sizes.length);
    detectionHistory.configure(length, length - 1, true);
    SetUpPitch();
    AlignPitch();
    noiseDetector.configure(
        binCount,
        GetSampleRate(),
        hopSize,
        SilentPower,
        {static_cast<uint32_t>(bands.lowStart), static_cast<uint32_t>(bands.lowEnd)});
    noiseFloor.assign(binCount, 0.0F);
    latest = {};
    log.Restart();
}

void PuffGuard::SizeRings()
{
    const uint32_t length = historyLength;
    // Bins above those that repairs may reach go out with the input.
    RepairSettings widest = GetRepairSettings();
    widest.frequencyLimit = FrequencyLimits.max;
    const int32_t bins = GetRepairedBinCount(widest);
    assert(energyLast < bins);
    spectrumRing.Configure(length, GetChannelCount(), static_cast<uint32_t>(bins));
    // Slots are kept when the history gets shorter, so that it can grow again without the heap.
    const std::size_t slots = std::max<std::size_t>(length, powerRing.size());
    powerRing.resize(slots);
    framePower.resize(slots);
    for (DataTail& slot : powerRing) {
        slot.configure(1, static_cast<int32_t>(binCount), 0);
    }
    change.assign(std::size_t{2} * spectrumRing.GetBinCount(), 0.0F);
    channelPower.assign(binCount, 0.0F);
    arriving.resize(GetChannelCount());
    RestartSteps();
}

void PuffGuard::SizeDelays()
{
    if (delays.empty()) {
        const uint32_t longest = GetBankDelay(GetHistorySizes(1.0F).length);
        delays.assign(GetChannelCount(), DelayLine(longest));
    }
    for (DelayLine& delay : delays) {
        delay.SetLength(GetBankDelay(historyLength));
        delay.Clear();
    }
}

/// What was left to do for the hop before falls away with the frames.
void PuffGuard::RestartSteps() noexcept UTIL_NONBLOCKING
{
    spectrumSlot = 0;
    powerSlot = 0;
    step = 0;
    hasFrame = false;
}

void PuffGuard::SetUpPitch()
{
    using Pitch = PitchDetect::PitchDetect;
    pitchDetect.SetBoolValue(Pitch::Analyze, true, Context::Process, {});
    pitchDetect.SetEnumValue(Pitch::VocalRange, 0, Context::Process, {});
    pitchDetect.SetEnumValue(Pitch::DynamicProgrammingPatches, 1, Context::Process, {});
    pitchDetect.Reset();
}

void PuffGuard::AlignPitch()
{
    const uint32_t length = historyLength;
    // A tracker that is faster than half a frame would ask for a place in the future: the unsigned
    // quotient is then huge and the place below the floor.
    const uint32_t framesLate =
        (pitchDetect.GetLatency(Context::Process) - frameSize / 2) / hopSize;
    const auto place = static_cast<int32_t>(length - framesLate - 1);
    const auto least = static_cast<int32_t>(length / 2 + 1);
    pitchHistory.configure(static_cast<int32_t>(length), std::max(place, least), true);
}

uint32_t PuffGuard::GetLatencyOf(uint32_t length) const noexcept UTIL_NONBLOCKING
{
    // The tail collects one hop: it holds back all of it but one sample.
    return hopSize - 1 + GetBankDelay(length);
}

/// Samples from a hop that comes in to the hop that goes out for it.
uint32_t PuffGuard::GetBankDelay(uint32_t length) const noexcept UTIL_NONBLOCKING
{
    return static_cast<uint32_t>(filterbank.GetLatency()) + hopSize * (length - 1);
}

uint32_t PuffGuard::GetLatencySamples(Context /*context*/) const
{
    return latencySamples.load(std::memory_order_relaxed);
}

uint32_t PuffGuard::GetMaxLatencySamples() const
{
    return maxLatencySamples.load(std::memory_order_relaxed);
}

void PuffGuard::OnReset()
{
    filterbank.reset();
    noiseDetector.reset();
    VectorOps::Zero(noiseFloor.data(), noiseFloor.size());
    for (DelayLine& delay : delays) {
        delay.Clear();
    }
    spectrumRing.Clear();
    for (DataTail& slot : powerRing) {
        slot.zero();
    }
    RestartSteps();
    detectionHistory.clear();
    pitchHistory.clear();
    pitchDetect.Reset();
    latest = {};
    log.Restart();
}

} // namespace DSP::Shared

// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/PuffGuard.h"

#include <stdexcept>
#include <utility>

namespace DSP::Shared {

namespace {

constexpr float FrameSeconds = 0.1F; // the filterbank takes 0.7 of it as the least length
constexpr int32_t OverlapFactor = 8;
// What the longest transform, 2^17 samples, serves: it is to last 0.07 s.
constexpr float LargestRate = 1.8e6F;
constexpr ValueRange<float> FrequencyLimits = {50, 2000}; // Hz

float CheckRate(float sampleRate)
{
    const bool isServed = sampleRate > 0 && sampleRate <= LargestRate;
    if (!isServed) {
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
    , transforms("PuffGuardFFTPool")
    , filterbank(transforms)
    , analysis(waiting)
    , repair(waiting, newLog)
    , pitchDetect({format.host, format.sampleRate, format.channelConfig})
    , log(newLog)
{
    AddChild(pitchDetect);
    RegisterParams();
    // Shows the default "Latency scaling" of 1 to its callback: the first sizing is the largest.
    FinaliseParams();
    GetTail().SetFrameSize(sizes.hopSize);
}

void PuffGuard::RegisterParams()
{
    RegisterFloatParam(Sensitivity,
                       MakeParam("Detection sensitivity", {0, 10}, 5, values.controls.sensitivity));
    RegisterFloatParam(Strength,
                       MakeParam("Reduction strength", {0, 10}, 5, values.controls.strength));
    ParamRegistration<float> limit =
        MakeParam("Upper repair frequency", FrequencyLimits, 500, values.controls.frequencyLimit);
    limit.info.units = "Hz";
    RegisterFloatParam(FrequencyLimit, std::move(limit));
    ParamRegistration<float> scaling =
        MakeParam("Latency scaling", {0, 1}, 1, values.latencyScaling);
    scaling.onProcessChange = [this](float) {
        initialise();
        ResetTails(); // the first hop after a restart is made of samples that came after it
        GetHost().LatencyChanged(Context::Process);
    };
    RegisterFloatParam(LatencyScaling, std::move(scaling));
}

void PuffGuard::initialise()
{
    SetUpFilterbank();
    const RepairSizes longest = sizes.WithHistory(1.0F);
    sizes = sizes.WithHistory(values.latencyScaling);
    // Numbers by themselves: the host reads them once it is notified.
    latency.samples.store(sizes.GetLatency(), std::memory_order_relaxed);
    latency.maxSamples.store(longest.GetLatency(), std::memory_order_relaxed);
    SetUpPitch();
    // Bins above those that repairs may reach go out with the input.
    const auto repairableBins =
        static_cast<uint32_t>(GetRepairedBinCount({.fftSize = static_cast<int32_t>(sizes.frameSize),
                                                   .sampleRate = sizes.sampleRate,
                                                   .frequencyLimit = FrequencyLimits.max}));
    waiting.Configure(sizes, repairableBins, pitchDetect.GetLatency(Context::Process));
    analysis.Configure(sizes);
    repair.Configure(sizes);
    output.Configure(sizes, longest.GetBankDelay(), repairableBins);
    arriving.resize(sizes.channels);
    RestartSteps();
    latest = {};
    log.Restart();
}

void PuffGuard::SetUpFilterbank()
{
    sizes.sampleRate = GetSampleRate();
    sizes.channels = GetChannelCount();
    filterbank.initialise(static_cast<int32_t>(sizes.channels),
                          static_cast<int32_t>(sizes.sampleRate),
                          static_cast<int32_t>(GetHost().GetMaxBlockFrames()));
    filterbank.configure(FrameSeconds, OverlapFactor, WindowBlackman, -1);
    sizes.frameSize = static_cast<uint32_t>(filterbank.GetFFTSize());
    sizes.hopSize = static_cast<uint32_t>(filterbank.GetHop());
}

/// What was left to do for the hop before falls away with the frames.
void PuffGuard::RestartSteps() noexcept UTIL_NONBLOCKING
{
    step = 0;
    transformParts = 0;
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

uint32_t PuffGuard::GetLatencySamples(Context /*context*/) const
{
    return latency.samples.load(std::memory_order_relaxed);
}

uint32_t PuffGuard::GetMaxLatencySamples() const
{
    return latency.maxSamples.load(std::memory_order_relaxed);
}

void PuffGuard::OnReset()
{
    filterbank.reset();
    analysis.Reset();
    output.Clear();
    waiting.Clear();
    RestartSteps();
    pitchDetect.Reset();
    latest = {};
    log.Restart();
}

} // namespace DSP::Shared

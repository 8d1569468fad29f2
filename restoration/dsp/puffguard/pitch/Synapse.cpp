// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Synapse.h"

#include "frameworks/plugincore/dsp/signal/BlockPieces.h"
#include "restoration/dsp/puffguard/VectorOps.h"
#include "restoration/dsp/puffguard/pitch/ParamRegistrations.h"

#include <cstddef>
#include <span>

namespace DSP::Synapse {

namespace {

constexpr ValueRange<bool> OffOn{false, true};

} // namespace

std::vector<String> GetVocalRangeLabels()
{
    return {"Bass", "Tenor/Alto", "Soprano"};
}

std::vector<String> GetResamplingQualityLabels()
{
    return {"Low", "Medium", "High"};
}

Synapse::Synapse(const Setup& setup, int newDelayFrames)
    : ElementDispatcher(setup)
    , engine(static_cast<double>(setup.sampleRate), newDelayFrames)
    , mono(setup.host.GetMaxBlockFrames())
{
    RegisterModes();
    RegisterLatencyParams();
    RegisterPrefilters();
    RegisterResynthesis();
    FinaliseParams();
}

void Synapse::RegisterModes()
{
    RegisterBoolParam(Analyze,
                      MakeParam<bool>("Analyze", OffOn, false, values.analyze, [this](bool on) {
                          engine.SetAnalysing(on);
                      }));
    RegisterEnumParam(StereoInput,
                      MakeEnum("Stereo Input Mode",
                               {0, 2},
                               static_cast<uint32_t>(StereoInputMode::SumToMono),
                               values.stereoInput,
                               {"Left Channel Only", "Right Channel Only", "Sum to Mono"}));
}

void Synapse::RegisterLatencyParams()
{
    const auto update = [this](auto) { UpdateLatency(); };
    RegisterBoolParam(LowLatency,
                      MakeParam<bool>("Low Latency", OffOn, false, values.lowLatency, update));
    RegisterBoolParam(
        DisableDynamicProgramming,
        MakeParam<bool>(
            "Disable Dynamic Programming", OffOn, false, values.disableDynamicProgramming, update));
    RegisterEnumParam(VocalRangeParam,
                      MakeEnum("Vocal Range",
                               {0, 2},
                               static_cast<uint32_t>(VocalRange::TenorAlto),
                               values.vocalRange,
                               GetVocalRangeLabels(),
                               update));
    RegisterEnumParam(
        DynamicProgrammingPatches,
        MakeEnum("Dynamic Programming Patches", {1, 64}, 4, values.dynamicProgrammingPatches, {}));
}

void Synapse::RegisterPrefilters()
{
    const auto setLowpass = [this](float hz) { engine.GetPrefilter().SetLowpass(hz); };
    const auto setHighpass = [this](float hz) { engine.GetPrefilter().SetHighpass(hz); };
    const auto setTime = [this](float milliseconds) {
        engine.GetPrefilter().SetAveragingTime(milliseconds);
    };
    const auto setThreshold = [this](float fraction) {
        engine.GetPrefilter().SetClippingThreshold(fraction);
    };
    const auto add = [this](uint32_t index, const ParamRegistration<float>& registration) {
        RegisterFloatParam(index, registration);
    };
    add(LowpassFrequency,
        MakeParam<float>(
            "Lowpass Prefilter Frequency", {100, 20000}, 300, values.lowpassHz, setLowpass, "Hz"));
    add(HighpassFrequency,
        MakeParam<float>(
            "Highpass Prefilter Frequency", {1, 1000}, 100, values.highpassHz, setHighpass, "Hz"));
    add(AveragingTime,
        MakeParam<float>("Averaging Time", {0, 100}, 8.16F, values.averagingTimeMs, setTime, "ms"));
    add(ClippingThreshold,
        MakeParam<float>("Clipping Threshold", {0, 1}, 0, values.clippingThreshold, setThreshold));
}

void Synapse::RegisterResynthesis()
{
    RegisterFloatParam(FormantScaling,
                       MakeParam<float>("Formant Scaling", {0.5F, 2}, 1, values.formantScaling));
    RegisterFloatParam(NoteSensitivity,
                       MakeParam<float>("Note Sensitivity", {0, 2}, 0.9F, values.noteSensitivity));
    RegisterBoolParam(Bypass, MakeParam<bool>("Bypass", OffOn, false, values.bypass));
    RegisterBoolParam(
        FormantPreservation,
        MakeParam<bool>("Formant Preservation", OffOn, false, values.formantPreservation));
    RegisterBoolParam(
        DetectGranulePeaks,
        MakeParam<bool>("Detect Granule Peaks", OffOn, false, values.detectGranulePeaks));
    RegisterEnumParam(ResamplingQuality,
                      MakeEnum("Resampling Quality",
                               {0, 2},
                               2,
                               values.resamplingQuality,
                               GetResamplingQualityLabels()));
}

/// Takes over what the latency depends on. Low latency is had by looking ahead at nothing, too.
void Synapse::UpdateLatency()
{
    const int former = engine.GetLatency();
    engine.SetVocalRange(static_cast<VocalRange>(values.vocalRange));
    engine.SetDynamicProgramming(!values.lowLatency && !values.disableDynamicProgramming);
    if (engine.GetLatency() != former) {
        GetHost().LatencyChanged(Context::Process);
    }
}

uint32_t Synapse::GetLatencySamples(Context /*context*/) const
{
    return static_cast<uint32_t>(engine.GetLatency());
}

uint32_t Synapse::GetMaxLatencySamples() const
{
    return static_cast<uint32_t>(engine.GetMaxLatency());
}

void Synapse::OnReset()
{
    engine.Reset();
}

void Synapse::MixToMono(uint32_t offset, uint32_t frames, float* const* channels) noexcept
    UTIL_NONBLOCKING
{
    const bool stereo = GetChannelCount() == 2;
    const auto mode = static_cast<StereoInputMode>(values.stereoInput);
    const float* const left = channels[0] + offset;
    if (!stereo || mode == StereoInputMode::LeftOnly) {
        VectorOps::Copy(left, mono.data(), frames);
        return;
    }
    const float* const right = channels[1] + offset;
    if (mode == StereoInputMode::RightOnly) {
        VectorOps::Copy(right, mono.data(), frames);
        return;
    }
    VectorOps::Add(left, right, mono.data(), frames);
    VectorOps::Scale(0.5F, mono.data(), frames);
}

void Synapse::ProcessAudio(uint32_t frames, float* const* channels)
{
    const auto runPiece = [&](uint32_t begin, uint32_t count) {
        MixToMono(begin, count, channels);
        engine.Process(std::span(mono).first(count));
    };
    RunInPieces(frames, static_cast<uint32_t>(mono.size()), channels, {}, runPiece);
}

float Synapse::GetPitch() noexcept UTIL_NONBLOCKING
{
    const float pitchHz = engine.GetPitch(); // the runs that are due are made in any case
    return values.analyze ? pitchHz : 0.0F;
}

float Synapse::GetBlockPitch() noexcept UTIL_NONBLOCKING
{
    const float pitchHz = engine.GetBlockPitch();
    return values.analyze ? pitchHz : 0.0F;
}

} // namespace DSP::Synapse

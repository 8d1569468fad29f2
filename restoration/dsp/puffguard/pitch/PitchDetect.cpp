// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PitchDetect.h"

#include "restoration/dsp/puffguard/pitch/ParamRegistrations.h"

#include <utility>

namespace DSP::PitchDetect {

namespace {

using Inner = Synapse::Synapse;

ElementImpl::Setup MakeSetup(const PitchDetect::Format& format, const char* name)
{
    ElementImpl::Setup setup{.host = format.host, .name = name};
    setup.sampleRate = format.sampleRate;
    setup.channelConfig = format.channelConfig;
    return setup;
}

} // namespace

PitchDetect::PitchDetect(const Format& format)
    : ElementDispatcher(MakeSetup(format, "PitchDetect"))
    , synapse(MakeSetup(format, "Synapse"), DelayFrames)
{
    AddChild(synapse);
    LinkBools();
    LinkFloats();
    LinkEnums();
    FinaliseParams();
}

void PitchDetect::LinkBools()
{
    const auto link = [this](uint32_t index, const char* text, bool& target, uint32_t inner) {
        const auto handOn = [this, inner](bool value) {
            synapse.SetBoolValue(inner, value, Context::Process, {});
        };
        const bool standard = synapse.GetBoolValue(inner, Context::Process);
        RegisterBoolParam(index,
                          Synapse::MakeParam<bool>(text, {false, true}, standard, target, handOn));
    };
    link(Analyze, "Analyze", values.analyze, Inner::Analyze);
    link(Bypass, "Bypass", values.bypass, Inner::Bypass);
    link(DisableDynamicProgramming,
         "Disable Dynamic Programming",
         values.disableDynamicProgramming,
         Inner::DisableDynamicProgramming);
}

void PitchDetect::LinkFloats()
{
    const auto link =
        [this](uint32_t index, ParamRegistration<float> registration, uint32_t inner) {
            registration.defaultValue = synapse.GetFloatValue(inner, Context::Process);
            registration.onProcessChange = [this, inner](float value) {
                synapse.SetFloatValue(inner, value, Context::Process, {});
            };
            registration.info.units = "Hz";
            RegisterFloatParam(index, std::move(registration));
        };
    link(
        LowpassFrequency,
        Synapse::MakeParam<float>("Lowpass Prefilter Frequency", {100, 20000}, 0, values.lowpassHz),
        Inner::LowpassFrequency);
    link(HighpassFrequency,
         Synapse::MakeParam<float>("Highpass Prefilter Frequency", {1, 1000}, 0, values.highpassHz),
         Inner::HighpassFrequency);
}

void PitchDetect::LinkEnums()
{
    const auto link = [this](uint32_t index, EnumRegistration registration, uint32_t inner) {
        registration.defaultValue = synapse.GetEnumValue(inner, Context::Process);
        registration.onProcessChange = [this, inner](uint32_t value) {
            synapse.SetEnumValue(inner, value, Context::Process, {});
        };
        RegisterEnumParam(index, std::move(registration));
    };
    link(ResamplingQuality,
         Synapse::MakeEnum("Resampling Quality",
                           {0, 2},
                           0,
                           values.resamplingQuality,
                           Synapse::GetResamplingQualityLabels()),
         Inner::ResamplingQuality);
    link(VocalRange,
         Synapse::MakeEnum(
             "Vocal Range", {0, 2}, 0, values.vocalRange, Synapse::GetVocalRangeLabels()),
         Inner::VocalRangeParam);
    link(DynamicProgrammingPatches,
         Synapse::MakeEnum(
             "Dynamic Programming Patches", {1, 64}, 1, values.dynamicProgrammingPatches, {}),
         Inner::DynamicProgrammingPatches);
}

uint32_t PitchDetect::GetLatencySamples(Context context) const
{
    return synapse.GetLatency(context);
}

uint32_t PitchDetect::GetMaxLatencySamples() const
{
    return synapse.GetMaxLatency();
}

void PitchDetect::OnReset()
{
    synapse.Reset();
}

void PitchDetect::ProcessAudio(uint32_t frames, float* const* channels)
{
    synapse.Process(frames, channels);
}

} // namespace DSP::PitchDetect

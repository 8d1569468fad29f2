// SPDX-License-Identifier: ISC
#include "wrappers/cli/effect/Effect.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/common/History.h"
#include "wrappers/common/Presets.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace Cli {

namespace {

Wrapper::Preset Usable(Wrapper::Preset preset)
{
    if (!preset.problem.empty()) {
        throw FileError(preset.problem);
    }
    return preset;
}

} // namespace

Effect::Effect(std::shared_ptr<const Wrapper::Module> module,
               int sampleRate,
               int channels,
               const Settings& settings)
    : instance(MakeInstance(std::move(module), sampleRate, channels))
    , parameters(*Granted(Wrapper::ElementParameters::Read(*instance)))
    , detections(*instance)
{
    SetControlsToDefaults();
    SetToDefault(Wrapper::BypassIdentifier);
    if (!settings.state.empty() && !LoadState(settings.state)) {
        throw ModuleError("the module refuses the settings that it gave itself");
    }
    Choose(settings.chosen);
}

std::unique_ptr<Wrapper::Instance>
Effect::MakeInstance(std::shared_ptr<const Wrapper::Module> module, int sampleRate, int channels)
{
    // What the user has set up for live use must not shift a result.
    const Wrapper::Setup setup = {Wrapper::Format::Program,
                                  Wrapper::Use::Files,
                                  static_cast<double>(sampleRate),
                                  static_cast<uint32_t>(channels)};
    const auto keepComplaint = [this](const std::string& text) { complaint = text; };
    return Granted(Wrapper::Instance::Create(std::move(module), setup, listener, keepComplaint));
}

// What holds nothing was refused, and the instance has logged why.
template <typename Answer>
Answer Effect::Granted(Answer answer) const
{
    if (!answer) {
        throw ModuleError(complaint);
    }
    return answer;
}

uint32_t Effect::FindParam(std::string_view identifier) const
{
    const std::optional<uint32_t> index = parameters.Find(identifier);
    if (!index) {
        throw ModuleError(fmt::format("the module has no parameter \"{}\"", identifier));
    }
    return *index;
}

void Effect::SetParam(uint32_t index, double value)
{
    Granted(parameters.Set(index, parameters.GetList()[index].ToNormalised(value)));
}

void Effect::SetToDefault(std::string_view identifier)
{
    const uint32_t index = FindParam(identifier);
    SetParam(index, parameters.GetList()[index].defaultValue);
}

void Effect::SetControlsToDefaults()
{
    for (const Control& control : ControlTable) {
        SetToDefault(control.parameter);
    }
}

void Effect::SetAll(float normalised)
{
    for (uint32_t index = 0; index < parameters.GetList().size(); ++index) {
        Granted(parameters.Set(index, normalised));
    }
}

double Effect::ReadParam(uint32_t index) const
{
    return TidyValue(parameters.GetList()[index], *Granted(parameters.Get(index)));
}

double Effect::ChooseOne(std::string_view identifier, std::optional<double> value)
{
    const uint32_t index = FindParam(identifier);
    if (value) {
        SetParam(index, *value);
    }
    return value ? *value : ReadParam(index);
}

void Effect::Choose(const ChosenControls& chosen)
{
    for (size_t i = 0; i < ControlTable.size(); ++i) {
        controls.values[i] = ChooseOne(ControlTable[i].parameter, chosen.values[i]);
    }
    const auto bypass = chosen.bypass ? std::optional(1.0) : std::nullopt;
    controls.bypass = ChooseOne(Wrapper::BypassIdentifier, bypass) >= 0.5;
    latency = instance->GetLatency(Wrapper::Side::Process);
}

std::vector<ParameterValue> Effect::ReadParameters() const
{
    const auto changed = ReadChanged();
    std::vector<ParameterValue> values;
    for (const Wrapper::Parameter& parameter : parameters.GetList()) {
        const bool isChanged = std::any_of(changed.begin(), changed.end(), [&](const auto& entry) {
            return entry.identifier == parameter.identifier;
        });
        values.push_back({parameter, ReadParam(static_cast<uint32_t>(values.size())), isChanged});
    }
    return values;
}

std::vector<Wrapper::ElementParameters::Changed> Effect::ReadChanged() const
{
    return *Granted(parameters.ReadChanged());
}

bool Effect::LoadState(std::string_view state)
{
    return instance->LoadState({reinterpret_cast<const uint8_t*>(state.data()), state.size()});
}

std::string Effect::SaveState()
{
    const std::vector<uint8_t> state = instance->SaveState();
    Granted(!state.empty());
    return {state.begin(), state.end()};
}

Wrapper::Preset Effect::ApplyPreset(const std::string& name)
{
    return Usable(*Granted(Wrapper::Presets(*instance).Apply(name)));
}

std::string
Effect::SavePreset(const std::string& name, const std::string& comment, Overwrite overwrite)
{
    using Replace = Wrapper::Presets::Replace;
    const auto replace = overwrite == Overwrite::Allow ? Replace::Allow : Replace::Refuse;
    return Usable(*Granted(Wrapper::Presets(*instance).Save(name, comment, replace))).path;
}

std::vector<Wrapper::Preset> Effect::ListPresets()
{
    return *Granted(Wrapper::Presets(*instance).List());
}

std::string Effect::ImportPreset(const std::string& file)
{
    return Usable(*Granted(Wrapper::Presets(*instance).Import(file))).path;
}

std::string Effect::AskToRemovePreset(const std::string& name)
{
    const auto question = *Granted(Wrapper::Presets(*instance).AskToRemove(name));
    if (!question.problem.empty()) {
        throw FileError(question.problem);
    }
    return question.text;
}

std::string Effect::RemovePreset(const std::string& name)
{
    return Usable(*Granted(Wrapper::Presets(*instance).Remove(name))).path;
}

std::vector<HistoryStep> Effect::ReadHistory(const std::string& file)
{
    Wrapper::History history(*instance);
    const Wrapper::History::File opened = *Granted(history.Open(file));
    if (!opened.problem.empty()) {
        throw FileError(opened.problem);
    }
    std::vector<HistoryStep> steps;
    for (const Wrapper::HistoryStep& step : opened.steps) {
        SetControlsToDefaults(); // for what the step doesn't hold
        steps.push_back({step, std::nullopt});
        if (*Granted(history.GoTo(static_cast<uint32_t>(steps.size() - 1)))) {
            Choose({});
            steps.back().values = controls.values;
        }
    }
    return steps;
}

void Effect::Process(float** channels, uint32_t frames)
{
    if (!instance->Process({channels, channels, frames}, std::nullopt)) {
        throw ModuleError("the module refuses to process");
    }
}

Wrapper::DetectionTotals Effect::RenderRegions(Wrapper::RenderClient& client,
                                               const std::vector<Wrapper::RenderRegion>& regions,
                                               double fade) const
{
    const auto outcome = *Granted(Wrapper::RegionRenderer(*instance).Render(client, regions, fade));
    if (!outcome.isDone) {
        throw FileError(outcome.problem);
    }
    return outcome.totals;
}

void Effect::ReadDetections(std::vector<Wrapper::Detection>& found)
{
    Granted(detections.Read(found));
}

Wrapper::DetectionTotals Effect::ReadTotals() const
{
    return *Granted(detections.ReadTotals());
}

} // namespace Cli

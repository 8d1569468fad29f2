// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/Session.h"

#include "wrappers/cli/effect/Effect.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/files/OutputFile.h"
#include "wrappers/cli/files/StateFile.h"
#include "wrappers/cli/text/Text.h"
#include "wrappers/common/Presets.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

namespace Cli {

namespace {

using SharedModule = std::shared_ptr<const Wrapper::Module>;

// What is saved doesn't depend on the stream.
std::unique_ptr<Effect> MakeEffect(const SharedModule& module)
{
    return std::make_unique<Effect>(module, 48000, 1, Settings{});
}

bool HasSameValue(const ParameterValue& a, const ParameterValue& b)
{
    return a.value == b.value;
}

// The module takes any dictionary for a session and keeps the values that it doesn't name. A
// session is of use when it moves something away from one end of the ranges or from the other.
bool HoldsValues(const SharedModule& module, std::string_view state)
{
    const std::unique_ptr<Effect> effect = MakeEffect(module);
    for (const float end : {0.0F, 1.0F}) {
        effect->SetAll(end);
        const std::vector<ParameterValue> before = effect->ReadParameters();
        effect->LoadState(state);
        const std::vector<ParameterValue> after = effect->ReadParameters();
        if (!std::equal(before.begin(), before.end(), after.begin(), HasSameValue)) {
            return true;
        }
    }
    return false;
}

void LoadState(Effect& effect, const SharedModule& module, const FileName& file)
{
    try {
        const std::string state = ReadStateFile(file);
        if (!effect.LoadState(state)) {
            throw FileError("is not a saved session of Puff-guard");
        }
        if (!HoldsValues(module, state)) {
            throw FileError("holds no values of Puff-guard");
        }
    } catch (const FileError& error) {
        throw UsageError(fmt::format("{}: {}", Printable(file.InputLabel()), error.what()));
    }
}

Wrapper::Preset ApplyPreset(Effect& effect, const std::string& name)
{
    try {
        return effect.ApplyPreset(name);
    } catch (const FileError& error) {
        throw UsageError(Printable(error.what()));
    }
}

// The module refuses by itself to replace a preset, but knows no way out that a message could name.
void CheckPresetTarget(Effect& effect, const Options& options)
{
    const std::string& target = options.session.savePreset.Get();
    if (Wrapper::Presets::IsFile(target)) {
        Naming(Printable(target), [&] { CheckNewFile(target, options.overwrite); });
        return;
    }
    for (const Wrapper::Preset& preset : effect.ListPresets()) {
        if (preset.group == Wrapper::PresetGroup::User &&
            LowerCase(preset.name) == LowerCase(target)) {
            Naming(Printable(preset.path), [&] { CheckNewFile(preset.path, options.overwrite); });
        }
    }
}

std::unique_ptr<OutputFile> OpenState(const Options& options)
{
    const FileName& target = options.session.stateOut;
    return Naming(Printable(target.OutputLabel()),
                  [&] { return std::make_unique<OutputFile>(target, options.overwrite); });
}

void SaveState(Effect& effect, const FileName& target, OutputFile& file)
{
    const std::string state = effect.SaveState();
    Naming(Printable(target.OutputLabel()), [&] { file.WriteWhole(state); });
}

// Nothing is written before both targets are known to be good.
void Save(Effect& effect, const Options& options, Session& session)
{
    const SessionOptions& wanted = options.session;
    if (!wanted.savePreset.IsEmpty()) {
        CheckPresetTarget(effect, options);
    }
    std::unique_ptr<OutputFile> stateFile;
    if (!wanted.stateOut.IsEmpty()) {
        stateFile = OpenState(options);
    }
    if (!wanted.savePreset.IsEmpty()) {
        session.savedPreset =
            effect.SavePreset(wanted.savePreset.Get(), ToUtf8(wanted.comment), options.overwrite);
    }
    if (stateFile) {
        SaveState(effect, wanted.stateOut, *stateFile);
        session.savedState = wanted.stateOut;
    }
}

} // namespace

Session MakeSession(const Options& options, const SharedModule& module)
{
    Session session;
    session.settings.chosen = options.controls;
    if (!options.session.IsWanted()) {
        return session;
    }
    const std::unique_ptr<Effect> effect = MakeEffect(module);
    if (!options.session.stateIn.IsEmpty()) {
        LoadState(*effect, module, options.session.stateIn);
    }
    if (!options.session.preset.empty()) {
        session.preset = ApplyPreset(*effect, options.session.preset);
    }
    if (session.preset || !options.session.stateIn.IsEmpty()) {
        session.settings.state = effect->SaveState();
    }
    effect->Choose(options.controls);
    if (options.session.printsParams) {
        session.parameters = effect->ReadParameters();
    }
    Save(*effect, options, session);
    return session;
}

} // namespace Cli

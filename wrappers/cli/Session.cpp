// SPDX-License-Identifier: ISC
#include "wrappers/cli/Session.h"

#include "wrappers/cli/FileError.h"
#include "wrappers/cli/OutputFile.h"
#include "wrappers/cli/StateFile.h"
#include "wrappers/cli/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>

namespace Cli {

namespace {

// What is saved doesn't depend on the stream.
std::unique_ptr<Instance> MakeInstance(const Module& module)
{
    return std::make_unique<Instance>(module, 48000, 1, Settings{});
}

std::string DisplayName(const std::string& path, const char* stream)
{
    return path == "-" ? stream : Printable(path);
}

bool HasSameValue(const Parameter& a, const Parameter& b)
{
    return a.value == b.value;
}

// The module takes any dictionary for a session and keeps the values that it doesn't name. A
// session is of use when it moves something away from one end of the ranges or from the other.
bool HoldsValues(const Module& module, std::string_view state)
{
    const std::unique_ptr<Instance> instance = MakeInstance(module);
    for (const float end : {0.0F, 1.0F}) {
        instance->SetAll(end);
        const std::vector<Parameter> before = instance->ReadParameters();
        instance->LoadState(state);
        const std::vector<Parameter> after = instance->ReadParameters();
        if (!std::equal(before.begin(), before.end(), after.begin(), HasSameValue)) {
            return true;
        }
    }
    return false;
}

void LoadState(Instance& instance, const Module& module, const std::string& path)
{
    const std::string name = DisplayName(path, "stdin");
    try {
        const std::string state = ReadStateFile(path);
        if (!instance.LoadState(state)) {
            throw FileError("is not a saved session of Puff-guard");
        }
        if (!HoldsValues(module, state)) {
            throw FileError("holds no values of Puff-guard");
        }
    } catch (const FileError& error) {
        throw UsageError(fmt::format("{}: {}", name, error.what()));
    }
}

// The module knows a file without a folder by ".xml" in small letters alone.
std::string NameForModule(const std::string& name)
{
    const bool isUnknownFile =
        IsPresetFile(name) && name.find('/') == std::string::npos && !name.ends_with(".xml");
    return isUnknownFile ? "./" + name : name;
}

Preset ApplyPreset(Instance& instance, const std::string& name)
{
    try {
        return instance.ApplyPreset(NameForModule(name));
    } catch (const FileError& error) {
        throw UsageError(Printable(error.what()));
    }
}

// The module refuses by itself to replace a preset, but knows no way out that could be told.
void CheckPresetTarget(Instance& instance, const Options& options)
{
    const std::string& target = options.session.savePreset;
    if (IsPresetFile(target)) {
        Naming(Printable(target), [&] { CheckNewFile(target, options.overwrite); });
        return;
    }
    for (const Preset& preset : instance.ListPresets()) {
        if (preset.group == PresetGroupUser && LowerCase(preset.name) == LowerCase(target)) {
            Naming(Printable(preset.path), [&] { CheckNewFile(preset.path, options.overwrite); });
        }
    }
}

std::unique_ptr<OutputFile> OpenState(const Options& options)
{
    const std::string& target = options.session.stateOut;
    return Naming(DisplayName(target, "standard output"),
                  [&] { return std::make_unique<OutputFile>(target, options.overwrite); });
}

void SaveState(const Instance& instance, const std::string& target, OutputFile& file)
{
    const std::string state = instance.SaveState();
    Naming(DisplayName(target, "standard output"), [&] { file.WriteWhole(state); });
}

// Nothing is written before both targets are known to be good.
void Save(Instance& instance, const Options& options, Session& session)
{
    const SessionOptions& wanted = options.session;
    if (!wanted.savePreset.empty()) {
        CheckPresetTarget(instance, options);
    }
    std::unique_ptr<OutputFile> stateFile;
    if (!wanted.stateOut.empty()) {
        stateFile = OpenState(options);
    }
    if (!wanted.savePreset.empty()) {
        session.savedPreset = instance.SavePreset(
            NameForModule(wanted.savePreset), ToUtf8(wanted.comment), options.overwrite);
    }
    if (stateFile) {
        SaveState(instance, wanted.stateOut, *stateFile);
        session.savedState = wanted.stateOut;
    }
}

} // namespace

Session MakeSession(const Options& options, const Module& module)
{
    Session session;
    session.settings.chosen = options.controls;
    if (!options.session.IsWanted()) {
        return session;
    }
    const std::unique_ptr<Instance> instance = MakeInstance(module);
    if (!options.session.stateIn.empty()) {
        LoadState(*instance, module, options.session.stateIn);
    }
    if (!options.session.preset.empty()) {
        session.preset = ApplyPreset(*instance, options.session.preset);
    }
    if (session.preset || !options.session.stateIn.empty()) {
        session.settings.state = instance->SaveState();
    }
    instance->Choose(options.controls);
    if (options.session.printsParams) {
        session.parameters = instance->ReadParameters();
    }
    Save(*instance, options, session);
    return session;
}

std::string ListPresets(const Module& module, bool asJson)
{
    const std::vector<Preset> presets = MakeInstance(module)->ListPresets();
    return asJson ? PresetJson(presets) : PresetTable(presets);
}

} // namespace Cli

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

void LoadState(Instance& instance, const std::string& path)
{
    const std::string name = DisplayName(path, "stdin");
    try {
        if (!instance.LoadState(ReadStateFile(path))) {
            throw FileError("is not a saved session of Puff-guard");
        }
    } catch (const FileError& error) {
        throw UsageError(fmt::format("{}: {}", name, error.what()));
    }
}

Preset ApplyPreset(Instance& instance, const std::string& name)
{
    try {
        return instance.ApplyPreset(name);
    } catch (const FileError& error) {
        throw UsageError(Printable(error.what()));
    }
}

// The module replaces what is there already without asking.
void CheckPresetTarget(Instance& instance, const Options& options)
{
    const std::string& target = options.session.savePreset;
    if (IsPresetFile(target)) {
        Naming(Printable(target), [&] { CheckNewFile(target, options.overwrite); });
        return;
    }
    for (const Preset& preset : instance.ListPresets()) {
        if (preset.group == PresetGroupUser && preset.name == target) {
            Naming(Printable(preset.path), [&] { CheckNewFile(preset.path, options.overwrite); });
        }
    }
}

void SaveState(const Instance& instance, const Options& options)
{
    const std::string& target = options.session.stateOut;
    const std::string state = instance.SaveState();
    Naming(DisplayName(target, "standard output"),
           [&] { WriteWholeFile(target, options.overwrite, state); });
}

void Save(Instance& instance, const Options& options, Session& session)
{
    if (!options.session.savePreset.empty()) {
        CheckPresetTarget(instance, options);
        session.savedPreset =
            instance.SavePreset(options.session.savePreset, ToUtf8(options.session.comment));
    }
    if (!options.session.stateOut.empty()) {
        SaveState(instance, options);
        session.savedState = options.session.stateOut;
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
        LoadState(*instance, options.session.stateIn);
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

// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/Chores.h"

#include "wrappers/cli/effect/Effect.h"
#include "wrappers/cli/effect/History.h"
#include "wrappers/cli/effect/Presets.h"
#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"
#include "wrappers/common/Presets.h"

#include <unistd.h>

#include <filesystem>
#include <iostream>

namespace Cli {

namespace {

using SharedModule = std::shared_ptr<const Wrapper::Module>;

// What is listed and copied doesn't depend on the stream.
std::unique_ptr<Effect> MakeEffect(const SharedModule& module)
{
    return std::make_unique<Effect>(module, 48000, 1, Settings{});
}

// Puts what the user has asked for in front of what came of it.
template <typename Work>
std::string Titled(const char* title, Work work)
{
    try {
        return work();
    } catch (const FileError& error) {
        throw FileError(std::string(title) + ": " + Printable(error.what()));
    }
}

std::string ListPresets(Effect& effect, bool asJson)
{
    const std::vector<Wrapper::Preset> presets = effect.ListPresets();
    return asJson ? PresetJson(presets) : PresetTable(presets);
}

std::string ListHistory(Effect& effect, const Options& options)
{
    const std::vector<HistoryStep> steps = effect.ReadHistory(options.session.history);
    return options.wantsJson ? HistoryJson(steps) : HistoryTable(steps);
}

std::string ImportPreset(Effect& effect, const std::string& file)
{
    return Titled("Preset Import Failed",
                  [&] { return "preset -> " + Printable(effect.ImportPreset(file)) + "\n"; });
}

// No answer counts as no.
bool IsYes(const std::string& answer)
{
    const std::string word = LowerCase(answer);
    return word == "y" || word == "yes";
}

std::string RemovePreset(Effect& effect, const Options& options)
{
    const std::string& name = options.session.removePreset;
    return Titled("Remove Preset", [&] {
        const std::string question = effect.AskToRemovePreset(name);
        if (options.overwrite == Overwrite::Refuse) {
            static_cast<void>(
                WriteFully(STDERR_FILENO, "Remove Preset: " + Printable(question) + " [y/N] "));
            std::string answer;
            std::getline(std::cin, answer);
            if (!IsYes(answer)) {
                throw FileError("nothing is removed; --force removes without asking");
            }
        }
        return "removed " + Printable(effect.RemovePreset(name)) + "\n";
    });
}

// The one thing that the command writes into the user's settings, so that it takes an instance that
// may: those for files neither read nor write any.
std::string SetPresetFolder(const SharedModule& module, const std::string& wanted)
{
    Wrapper::SilentListener listener;
    std::string complaint;
    const Wrapper::Setup setup = {Wrapper::Format::Program, Wrapper::Use::Live, 48000, 1};
    const auto instance = Wrapper::Instance::Create(
        module, setup, listener, [&](const std::string& text) { complaint = text; });
    const std::string path =
        wanted == "default" ? std::string() : std::filesystem::absolute(wanted).string();
    const auto folder = instance ? Wrapper::Presets(*instance).SetFolder(path) : std::nullopt;
    if (!folder) {
        throw ModuleError(complaint);
    }
    return Titled("Choose a preset folder", [&] {
        if (!folder->problem.empty()) {
            throw FileError(folder->problem);
        }
        return "presets -> " + Printable(folder->path) + "\n";
    });
}

std::string List(const Options& options, const SharedModule& module)
{
    const std::unique_ptr<Effect> effect = MakeEffect(module);
    return options.session.history.empty() ? ListPresets(*effect, options.wantsJson)
                                           : ListHistory(*effect, options);
}

std::string Change(const Options& options, const SharedModule& module)
{
    const SessionOptions& session = options.session;
    if (!session.presetFolder.empty()) {
        return SetPresetFolder(module, session.presetFolder);
    }
    const std::unique_ptr<Effect> effect = MakeEffect(module);
    return session.importPreset.empty() ? RemovePreset(*effect, options)
                                        : ImportPreset(*effect, session.importPreset);
}

} // namespace

std::string RunChore(const Options& options, const SharedModule& module)
{
    const SessionOptions& session = options.session;
    if (session.presetFolder.empty() && session.importPreset.empty() &&
        session.removePreset.empty()) {
        return List(options, module);
    }
    const std::string result = Change(options, module);
    return options.isQuiet ? "" : result;
}

} // namespace Cli

// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/OptionChecks.h"

#include "wrappers/cli/files/FileError.h"

#include <algorithm>
#include <filesystem>

namespace Cli {

namespace {

bool IsFolder(const std::string& path)
{
    std::error_code failure;
    return std::filesystem::is_directory(path, failure);
}

void Refuse(bool condition, const char* reason)
{
    if (condition) {
        throw UsageError(reason);
    }
}

auto CountStreams(const std::vector<FileName>& names)
{
    return std::count_if(
        names.begin(), names.end(), [](const FileName& name) { return name.IsStream(); });
}

// Reports and the session, beside audio and summary.
int CountReportsToStandardOutput(const Options& options)
{
    return static_cast<int>(CountStreams(
        {options.events, options.labels, options.plot, options.page, options.session.stateOut}));
}

// A report that the recordings of a run would all write to the same place.
bool IsForOneRecording(const FileName& report)
{
    const std::string& name = report.Get();
    const bool isFile = !report.IsEmpty() && name.find("{name}") == std::string::npos &&
                        !name.ends_with('/') && !IsFolder(name) &&
                        std::filesystem::path(name).has_extension();
    return isFile || report.IsStream();
}

void CheckTarget(const Options& options)
{
    const int targets = (options.output.IsEmpty() ? 0 : 1) +
                        (options.outputDirectory.empty() ? 0 : 1) + (options.isInPlace ? 1 : 0);
    Refuse(targets > 1, "-o, --output-dir and --in-place exclude each other");
    Refuse(!options.output.IsEmpty() && !options.isSingle,
           "-o takes the result of one recording; --output-dir takes many");
    Refuse(options.isInPlace && options.container.has_value(),
           "--in-place keeps the container; --format needs another name");
    Refuse(options.isInPlace && options.wantsDifference,
           "--in-place --difference would leave nothing of the recording");
    Refuse(options.isDryRun && options.isInPlace, "--dry-run and --in-place exclude each other");
}

void CheckStandardInput(const Options& options)
{
    const auto uses = CountStreams(options.inputs);
    Refuse(uses > 1, "- can be an input only once");
    Refuse(uses > 0 && options.isInPlace, "--in-place needs a file, not -");
    Refuse(uses > 0 && !options.outputDirectory.empty(), "--output-dir needs a name, not -");
    Refuse(uses > 0 && options.inputs.size() > 1, "- can't be mixed with other inputs");
}

void CheckReports(const Options& options)
{
    const auto users = static_cast<int>(WritesAudioToStandardOutput(options)) +
                       static_cast<int>(options.wantsJson) + CountReportsToStandardOutput(options);
    Refuse(users > 1,
           "only one of audio, --json, --events, --labels, --plot, --report and --state-out can go "
           "to stdout");
    Refuse(options.isQuiet && options.isVerbose, "--quiet and --verbose exclude each other");
    Refuse(!options.isSingle && IsForOneRecording(options.labels),
           "with several recordings --labels takes a folder or a name with {name} in it");
    Refuse(!options.isSingle && IsForOneRecording(options.plot),
           "with several recordings --plot takes a folder or a name with {name} in it");
    Refuse(!options.isSingle && IsForOneRecording(options.page),
           "with several recordings --report takes a folder or a name with {name} in it");
}

void CheckSession(const Options& options)
{
    const SessionOptions& session = options.session;
    Refuse(!session.comment.empty() && session.savePreset.IsEmpty(),
           "--comment needs --save-preset");
    Refuse(session.savePreset.IsStream(), "--save-preset needs a file or a name, not -");
    Refuse(HasNameOfRecording(session.savePreset.Get()),
           "--save-preset: that is the name of a recording; a preset's file ends in .xml");
    Refuse(session.stateIn.IsStream() && CountStreams(options.inputs) > 0,
           "only one of the recording and --state-in can come from stdin");
}

// What makes or reports on audio has no use without it.
bool NeedsRecording(const Options& options)
{
    return !options.output.IsEmpty() || !options.outputDirectory.empty() || options.isInPlace ||
           options.isDryRun || !options.events.IsEmpty() || !options.labels.IsEmpty() ||
           !options.plot.IsEmpty() || !options.page.IsEmpty();
}

std::vector<const char*> NameChores(const SessionOptions& session)
{
    std::vector<const char*> names;
    const auto name = [&](bool isWanted, const char* option) {
        if (isWanted) {
            names.push_back(option);
        }
    };
    name(session.listsPresets, "--list-presets");
    name(!session.importPreset.empty(), "--import-preset");
    name(!session.removePreset.empty(), "--remove-preset");
    name(!session.presetFolder.empty(), "--preset-folder");
    name(!session.history.empty(), "--history");
    return names;
}

void CheckTask(const Options& options)
{
    const SessionOptions& session = options.session;
    const bool hasOther = session.printsParams || !session.savePreset.IsEmpty() ||
                          !session.stateOut.IsEmpty() || !session.preset.empty() ||
                          !session.stateIn.IsEmpty();
    const std::vector<const char*> chores = NameChores(session);
    if (!chores.empty()) {
        const bool isList = session.listsPresets || !session.history.empty();
        const bool hasMore = chores.size() > 1 || !options.inputs.empty() || hasOther ||
                             (options.wantsJson && !isList);
        Refuse(hasMore || NeedsRecording(options),
               (std::string(chores.front()) + " stands alone" + (isList ? ", or with --json" : ""))
                   .c_str());
    }
    Refuse(options.inputs.empty() && (!session.IsTaskInItself() || NeedsRecording(options)),
           "no input; puffguard --help shows how");
}

bool HasControls(const Options& options)
{
    const auto& values = options.controls.values;
    return options.controls.bypass ||
           std::any_of(
               values.begin(), values.end(), [](const auto& value) { return value.has_value(); });
}

// The effect has no part in these.
void CheckWholeFiles(const Options& options)
{
    Refuse(options.isAutomatic && !options.repairLabels.IsEmpty(),
           "--auto and --repair-labels exclude each other: the labels are what is repaired");
    Refuse(options.strictness.has_value() && !options.isAutomatic, "--strictness needs --auto");
    if (!options.IsForWholeFiles()) {
        return;
    }
    Refuse(HasControls(options),
           "--sensitivity and the other controls belong to the live effect, which has no part in "
           "--auto and --repair-labels; --strictness makes --auto repair less or more");
    Refuse(options.session.IsWanted(),
           "presets and sessions hold the live effect's controls, which have no part in --auto and "
           "--repair-labels");
    Refuse(options.keepsLatency,
           "--keep-latency: --auto and --repair-labels have no latency to keep");
    Refuse(options.repairLabels.IsStream(), "--repair-labels needs a file, not -");
    Refuse(!options.isSingle && IsForOneRecording(options.repairLabels),
           "with several recordings --repair-labels takes a folder or a name with {name} in it");
}

void CheckRegions(const Options& options)
{
    Refuse(options.hasFade && !options.HasRegions(), "--fade needs --region or --regions");
    if (!options.HasRegions()) {
        return;
    }
    Refuse(options.IsForWholeFiles(),
           "--region and --regions belong to the effect, which has no part in --auto and "
           "--repair-labels");
    Refuse(options.keepsLatency, "--keep-latency: regions have no latency to keep");
    Refuse(options.regionFile.IsStream(), "--regions needs a file, not -");
    Refuse(!options.isSingle && IsForOneRecording(options.regionFile),
           "with several recordings --regions takes a folder or a name with {name} in it");
}

} // namespace

void CheckOptions(Options& options)
{
    CheckTask(options);
    Refuse(std::count(options.inputs.begin(), options.inputs.end(), FileName()) > 0,
           "an input's name is empty");
    options.isSingle = options.inputs.size() == 1 && !IsFolder(options.inputs.front().Get());
    CheckTarget(options);
    CheckStandardInput(options);
    CheckReports(options);
    CheckSession(options);
    CheckWholeFiles(options);
    CheckRegions(options);
    Refuse(options.hasDither && options.isDryRun, "--dither has no use in a --dry-run");
}

bool WritesAudioToStandardOutput(const Options& options)
{
    const bool isDefault =
        options.output.IsEmpty() && options.inputs.size() == 1 && options.inputs.front().IsStream();
    return !options.isDryRun && (options.output.IsStream() || isDefault);
}

bool TakesStandardOutput(const Options& options)
{
    return WritesAudioToStandardOutput(options) || CountReportsToStandardOutput(options) > 0;
}

void CheckStandardOutput(const Options& options, bool isTerminal)
{
    Refuse(isTerminal && WritesAudioToStandardOutput(options),
           "audio isn't written to a terminal; name a file with -o or use a pipe");
    Refuse(isTerminal && options.session.stateOut.IsStream(),
           "a session isn't written to a terminal; name a file or use a pipe");
}

} // namespace Cli

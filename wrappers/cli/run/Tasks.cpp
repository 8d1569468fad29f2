// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/Tasks.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"
#include "wrappers/common/Presets.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace Cli {

namespace {

constexpr std::string_view resultMark = ".puffguard";

struct Found {
    std::string path;
    fs::path relative; // to the folder that was named, for the same tree elsewhere
    std::string failure;
};

bool IsRecording(const fs::path& path)
{
    return HasNameOfRecording(path.string()) && !path.stem().string().ends_with(resultMark);
}

bool IsSameFolder(const fs::path& a, const std::string& b)
{
    std::error_code failure;
    return !b.empty() && fs::equivalent(a, b, failure);
}

// A folder that can't be read becomes an entry with its reason, so that the rest goes on.
void SearchFolder(const fs::path& folder,
                  const fs::path& relative,
                  const Options& options,
                  std::vector<Found>& found)
{
    std::error_code failure;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator at(folder, failure), end; !failure && at != end;
         at.increment(failure)) {
        entries.push_back(*at);
    }
    if (failure) {
        found.push_back({folder.string(), {}, FileError::FromErrno(failure.value()).what()});
        return;
    }
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry& entry : entries) {
        const fs::path name = relative / entry.path().filename();
        // Links to folders aren't followed: they may lead around in circles.
        if (entry.is_directory(failure) && !entry.is_symlink(failure)) {
            if (!IsSameFolder(entry.path(), options.outputDirectory)) {
                SearchFolder(entry.path(), name, options, found);
            }
        } else if (entry.is_regular_file(failure) && IsRecording(entry.path())) {
            found.push_back({entry.path().string(), name, {}});
        }
    }
}

std::vector<Found> FindRecordings(const Options& options)
{
    std::vector<Found> found;
    for (const std::string& input : options.inputs) {
        std::error_code failure;
        if (input == "-" || !fs::is_directory(input, failure)) {
            found.push_back({input, fs::path(input).filename(), {}});
        } else if (!options.isRecursive) {
            found.push_back({input, {}, "is a folder; --recursive takes the recordings inside"});
        } else {
            SearchFolder(input, {}, options, found);
        }
    }
    return found;
}

std::string NewExtension(const Options& options)
{
    if (!options.container) {
        return {};
    }
    return ExtensionOf(*options.container | options.subtype.value_or(0));
}

std::string OutputName(const Found& found, const Options& options)
{
    if (options.isDryRun) {
        return {};
    }
    if (!options.output.empty()) {
        return options.output;
    }
    if (options.isInPlace || found.path == "-") {
        return found.path;
    }
    const std::string extension = NewExtension(options);
    if (options.outputDirectory.empty()) {
        return DefaultOutputName(found.path, extension);
    }
    fs::path name = fs::path(options.outputDirectory) / found.relative;
    if (!extension.empty()) {
        name.replace_extension(extension);
    }
    return name.string();
}

std::string FolderReport(const std::string& pattern,
                         const Found& found,
                         std::string_view ending,
                         const Options& options)
{
    if (pattern.empty() || pattern == "-") {
        return pattern;
    }
    std::error_code failure;
    const bool isFolder =
        !options.isSingle || pattern.ends_with('/') || fs::is_directory(pattern, failure);
    return ReportName(
        pattern, options.isSingle ? found.path : found.relative.string(), ending, isFolder);
}

bool IsSameFile(const std::string& a, const std::string& b)
{
    std::error_code failure;
    return a != "-" && b != "-" && fs::is_regular_file(b, failure) && fs::equivalent(a, b, failure);
}

// One name for one file, whatever links lead to it; empty for what can be written any number of
// times, such as a device.
std::string IdentityOf(const std::string& name)
{
    std::error_code failure;
    const fs::file_status status = fs::status(name, failure);
    if (name.empty() || name == "-" || (fs::exists(status) && !fs::is_regular_file(status))) {
        return {};
    }
    // Absolute first: a relative name whose first part isn't there yet would stay as it was typed.
    const fs::path absolute = fs::absolute(name, failure);
    const fs::path identity = fs::weakly_canonical(absolute, failure);
    return failure ? absolute.lexically_normal().string() : identity.string();
}

/// Who has claimed which file of a run, so that nothing of it replaces anything else of it.
class Claims {
public:
    /// Protects a file that is read; `what` it is is told to whoever wants to write it.
    void Protect(const std::string& name, const char* what)
    {
        sources.emplace(IdentityOf(name), what);
    }

    /// Claims the file of a report, which isn't given the name of a recording either.
    std::string
    ClaimReport(const std::string& name, const std::string& owner, const std::string& itself = {})
    {
        if (HasNameOfRecording(name)) {
            return Printable(name) + " has the name of a recording";
        }
        return Claim(name, owner, itself);
    }

    /// Claims a file to be written; `owner` is told to whoever comes later. Answers why not, or an
    /// empty text. What is read may be replaced only by what comes of `itself`.
    std::string
    Claim(const std::string& name, const std::string& owner, const std::string& itself = {})
    {
        const std::string identity = IdentityOf(name);
        if (identity.empty()) {
            return {};
        }
        const auto source = sources.find(identity);
        if (source != sources.end() && identity != IdentityOf(itself)) {
            return fmt::format("{} is {} of this run; nothing is written over it",
                               Printable(name),
                               source->second);
        }
        const auto [entry, isNew] = takenBy.emplace(identity, owner);
        return isNew ? std::string() : Printable(name) + " is already " + entry->second;
    }

private:
    std::map<std::string, const char*> sources;
    std::map<std::string, std::string> takenBy;
};

// The files of the run as a whole. A preset or session may be brought up to date in its own file.
void ClaimRunFiles(Claims& claims, const Options& options)
{
    const SessionOptions& session = options.session;
    const std::string preset = Wrapper::Presets::IsFile(session.preset) ? session.preset : "";
    const std::string savedPreset =
        Wrapper::Presets::IsFile(session.savePreset) ? session.savePreset : "";
    claims.Protect(preset, "the preset");
    claims.Protect(session.stateIn, "the session");
    const auto claim = [&](const char* option,
                           const std::string& name,
                           const char* owner,
                           const std::string& itself) {
        const std::string reason = claims.ClaimReport(name, owner, itself);
        if (!reason.empty()) {
            throw UsageError(fmt::format("{}: {}", option, reason));
        }
    };
    claim("--events", options.events, "the list of events", {});
    claim("--save-preset", savedPreset, "the saved preset", preset);
    claim("--state-out", session.stateOut, "the saved session", session.stateIn);
}

// What would be written over something else of the run is refused, the later one of two.
void RefuseClashes(std::vector<Task>& tasks, const Options& options)
{
    Claims claims;
    for (const Task& task : tasks) {
        claims.Protect(task.input, "a recording");
    }
    ClaimRunFiles(claims, options);
    for (Task& task : tasks) {
        const std::string owner = "the result of " + Printable(task.input);
        const std::string itself = options.isInPlace ? task.input : "";
        if (task.failure.empty()) {
            task.failure = claims.Claim(task.output, owner, itself);
        }
        for (const std::string* report : {&task.labels, &task.plot}) {
            if (task.failure.empty()) {
                task.failure = claims.ClaimReport(*report, owner);
            }
        }
    }
}

} // namespace

std::string DefaultOutputName(const std::string& input, const std::string& extension)
{
    const fs::path path(input);
    const std::string ending = extension.empty() ? path.extension().string() : "." + extension;
    return (path.parent_path() / (path.stem().string() + std::string(resultMark) + ending))
        .string();
}

std::string ReportName(const std::string& pattern,
                       const std::string& input,
                       std::string_view ending,
                       bool isFolder)
{
    const fs::path path(input);
    const std::string stem = input == "-" ? "stdin" : path.stem().string();
    const size_t mark = pattern.find("{name}");
    if (mark != std::string::npos) {
        return std::string(pattern).replace(mark, 6, stem);
    }
    if (!isFolder) {
        return pattern;
    }
    const fs::path below = path.is_absolute() ? fs::path() : path.parent_path();
    return (fs::path(pattern) / below / (stem + std::string(ending))).string();
}

std::vector<Task> MakeTasks(const Options& options)
{
    std::vector<Task> tasks;
    for (const Found& found : FindRecordings(options)) {
        Task task;
        task.input = found.path;
        task.failure = found.failure;
        task.output = OutputName(found, options);
        task.labels = FolderReport(options.labels, found, ".txt", options);
        task.plot = FolderReport(options.plot, found, ".png", options);
        if (task.failure.empty() && !options.isInPlace && IsSameFile(task.input, task.output)) {
            task.failure = "is its own output; --in-place repairs in place";
        }
        tasks.push_back(std::move(task));
    }
    RefuseClashes(tasks, options);
    return tasks;
}

} // namespace Cli

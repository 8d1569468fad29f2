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

constexpr std::string_view ResultMark = ".puffguard";

struct Found {
    FileName name;
    fs::path relative; // to the folder that was named, for the same tree elsewhere
    std::string failure;
};

bool IsRecording(const fs::path& path)
{
    return HasNameOfRecording(path.string()) && !path.stem().string().ends_with(ResultMark);
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
        found.push_back({FileName(folder), {}, FileError::FromErrno(failure.value()).what()});
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
            found.push_back({FileName(entry.path()), name, {}});
        }
    }
}

std::vector<Found> FindRecordings(const Options& options)
{
    std::vector<Found> found;
    for (const FileName& input : options.inputs) {
        const fs::path path = input.Get();
        std::error_code failure;
        if (input.IsStream() || !fs::is_directory(path, failure)) {
            found.push_back({input, path.filename(), {}});
        } else if (!options.isRecursive) {
            found.push_back({input, {}, "is a folder; --recursive takes the recordings inside"});
        } else {
            SearchFolder(path, {}, options, found);
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

FileName OutputName(const Found& found, const Options& options)
{
    if (options.isDryRun) {
        return {};
    }
    if (!options.output.IsEmpty()) {
        return options.output;
    }
    if (options.isInPlace || found.name.IsStream()) {
        return found.name;
    }
    const std::string extension = NewExtension(options);
    if (options.outputDirectory.empty()) {
        return DefaultOutputName(found.name, extension);
    }
    fs::path name = fs::path(options.outputDirectory) / found.relative;
    if (!extension.empty()) {
        name.replace_extension(extension);
    }
    return FileName(name);
}

FileName FolderReport(const FileName& pattern,
                      const Found& found,
                      std::string_view ending,
                      const Options& options)
{
    if (pattern.IsEmpty() || pattern.IsStream()) {
        return pattern;
    }
    std::error_code failure;
    const bool isFolder = !options.isSingle || pattern.Get().ends_with('/') ||
                          fs::is_directory(pattern.Get(), failure);
    return ReportName(
        pattern, options.isSingle ? found.name : FileName(found.relative), ending, isFolder);
}

bool IsSameFile(const FileName& a, const FileName& b)
{
    std::error_code failure;
    return !a.IsStream() && !b.IsStream() && fs::is_regular_file(b.Get(), failure) &&
           fs::equivalent(a.Get(), b.Get(), failure);
}

// One name for one file, whatever links lead to it; empty for what can be written any number of
// times, such as a device.
std::string IdentityOf(const FileName& name)
{
    std::error_code failure;
    const fs::file_status status = fs::status(name.Get(), failure);
    if (name.IsEmpty() || name.IsStream() || (fs::exists(status) && !fs::is_regular_file(status))) {
        return {};
    }
    // Absolute first: a relative name whose first part isn't there yet would stay as it was typed.
    const fs::path absolute = fs::absolute(name.Get(), failure);
    const fs::path identity = fs::weakly_canonical(absolute, failure);
    return failure ? absolute.lexically_normal().string() : identity.string();
}

/// Who has claimed which file of a run, so that nothing of it replaces anything else of it.
class Claims {
public:
    /// Protects a file that is read; `what` it is stands in the message to whoever wants to write
    /// it.
    void Protect(const FileName& name, const char* what)
    {
        sources.emplace(IdentityOf(name), what);
    }

    /// Claims the file of a report, which isn't given the name of a recording either.
    std::string
    ClaimReport(const FileName& name, const std::string& owner, const FileName& itself = {})
    {
        if (HasNameOfRecording(name.Get())) {
            return Printable(name.Get()) + " has the name of a recording";
        }
        return Claim(name, owner, itself);
    }

    /// Claims a file to be written; `owner` stands in the message to whoever comes later. Answers
    /// why not, or an empty text. What is read may be replaced only by what comes of `itself`.
    std::string Claim(const FileName& name, const std::string& owner, const FileName& itself = {})
    {
        const std::string identity = IdentityOf(name);
        if (identity.empty()) {
            return {};
        }
        const auto source = sources.find(identity);
        if (source != sources.end() && identity != IdentityOf(itself)) {
            return fmt::format("{} is {} of this run; nothing is written over it",
                               Printable(name.Get()),
                               source->second);
        }
        const auto [entry, isNew] = takenBy.emplace(identity, owner);
        return isNew ? std::string() : Printable(name.Get()) + " is already " + entry->second;
    }

private:
    std::map<std::string, const char*> sources;
    std::map<std::string, std::string> takenBy;
};

// The file that an option names a preset by; empty for a preset's name.
FileName FileOf(const std::string& preset)
{
    return Wrapper::Presets::IsFile(preset) ? FileName(preset) : FileName();
}

// The files of the run as a whole. A preset or session may be brought up to date in its own file.
void ClaimRunFiles(Claims& claims, const Options& options)
{
    const SessionOptions& session = options.session;
    const FileName preset = FileOf(session.preset);
    claims.Protect(preset, "the preset");
    claims.Protect(session.stateIn, "the session");
    const auto claim =
        [&](const char* option, const FileName& name, const char* owner, const FileName& itself) {
            const std::string reason = claims.ClaimReport(name, owner, itself);
            if (!reason.empty()) {
                throw UsageError(fmt::format("{}: {}", option, reason));
            }
        };
    claim("--events", options.events, "the list of events", {});
    claim("--report", IndexName(options), "the index of the pages", {});
    claim("--save-preset", FileOf(session.savePreset.Get()), "the saved preset", preset);
    claim("--state-out", session.stateOut, "the saved session", session.stateIn);
}

// What would be written over something else of the run is refused, the later one of two.
void RefuseClashes(std::vector<Task>& tasks, const Options& options)
{
    Claims claims;
    for (const Task& task : tasks) {
        claims.Protect(task.input, "a recording");
        claims.Protect(task.repairLabels, "a label track");
        claims.Protect(task.regionFile, "a list of regions");
    }
    ClaimRunFiles(claims, options);
    for (Task& task : tasks) {
        const std::string owner = "the result of " + Printable(task.input.Get());
        const FileName itself = options.isInPlace ? task.input : FileName();
        if (task.failure.empty()) {
            task.failure = claims.Claim(task.output, owner, itself);
        }
        for (const FileName* report : {&task.labels, &task.plot, &task.page}) {
            if (task.failure.empty()) {
                task.failure = claims.ClaimReport(*report, owner);
            }
        }
    }
}

} // namespace

FileName DefaultOutputName(const FileName& input, const std::string& extension)
{
    const fs::path path(input.Get());
    const std::string ending = extension.empty() ? path.extension().string() : "." + extension;
    return FileName(path.parent_path() / (path.stem().string() + std::string(ResultMark) + ending));
}

FileName
ReportName(const FileName& pattern, const FileName& input, std::string_view ending, bool isFolder)
{
    const fs::path path(input.InputLabel());
    const std::string stem = path.stem().string();
    const size_t mark = pattern.Get().find("{name}");
    if (mark != std::string::npos) {
        return FileName(std::string(pattern.Get()).replace(mark, 6, stem));
    }
    if (!isFolder) {
        return pattern;
    }
    const fs::path below = path.is_absolute() ? fs::path() : path.parent_path();
    return FileName(fs::path(pattern.Get()) / below / (stem + std::string(ending)));
}

FileName IndexName(const Options& options)
{
    if (options.isSingle || options.page.IsEmpty()) {
        return {};
    }
    return ReportName(options.page, FileName("index"), ".html", true);
}

std::vector<Task> MakeTasks(const Options& options)
{
    std::vector<Task> tasks;
    for (const Found& found : FindRecordings(options)) {
        Task task;
        task.input = found.name;
        task.failure = found.failure;
        task.output = OutputName(found, options);
        task.labels = FolderReport(options.labels, found, ".txt", options);
        task.plot = FolderReport(options.plot, found, ".png", options);
        task.repairLabels = FolderReport(options.repairLabels, found, ".txt", options);
        task.regionFile = FolderReport(options.regionFile, found, ".txt", options);
        task.page = FolderReport(options.page, found, ".html", options);
        if (task.failure.empty() && !options.isInPlace && IsSameFile(task.input, task.output)) {
            task.failure = "is its own output; --in-place repairs in place";
        }
        tasks.push_back(std::move(task));
    }
    RefuseClashes(tasks, options);
    return tasks;
}

} // namespace Cli

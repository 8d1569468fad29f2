// SPDX-License-Identifier: ISC
#include "wrappers/cli/Tasks.h"

#include "wrappers/cli/FileError.h"
#include "wrappers/cli/Text.h"

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
    const std::string extension = path.extension().string();
    return extension.size() > 1 && ContainerOfExtension(extension.substr(1)).has_value() &&
           !path.stem().string().ends_with(resultMark);
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

// Two recordings whose results would be one file: the second is refused, not the first replaced.
void RefuseClashes(std::vector<Task>& tasks)
{
    std::map<std::string, std::string> takenBy;
    for (Task& task : tasks) {
        for (const std::string* name : {&task.output, &task.labels, &task.plot}) {
            if (name->empty() || *name == "-" || !task.failure.empty()) {
                continue;
            }
            const auto [entry, isNew] =
                takenBy.emplace(fs::path(*name).lexically_normal().string(), task.input);
            if (!isNew) {
                task.failure =
                    Printable(*name) + " is already the result of " + Printable(entry->second);
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
    RefuseClashes(tasks);
    return tasks;
}

} // namespace Cli

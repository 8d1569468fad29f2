// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/Batch.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/run/Chores.h"
#include "wrappers/cli/run/FileJob.h"
#include "wrappers/cli/run/OptionChecks.h"
#include "wrappers/cli/run/PageIndex.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace Cli {

namespace {

constexpr int AllDone = 0;
constexpr int SomeFailed = 1;

void WriteText(int descriptor, std::string_view text)
{
    const int failure = WriteFully(descriptor, text);
    if (failure != 0) {
        throw FileError("standard output: " + std::string(FileError::FromErrno(failure).what()));
    }
}

Console::Config ConsoleConfig(const Options& options, size_t files)
{
    Console::Config config;
    config.showsResults = !options.isQuiet && !options.wantsJson;
    config.showsDetails = options.isVerbose;
    config.resultsOnStdErr = TakesStandardOutput(options);
    config.showsProgress = !options.isQuiet;
    config.files = files;
    return config;
}

void Tell(Console& console, const FileReport& report)
{
    if (!report.failure.empty()) {
        console.Complain(report.input.InputLabel(), report.failure);
        return;
    }
    if (report.nonFiniteSamples > 0) {
        console.Complain(report.input.InputLabel(),
                         fmt::format("{} sample{} no finite number; taken for 0",
                                     report.nonFiniteSamples,
                                     report.nonFiniteSamples == 1 ? " was" : "s were"));
    }
    if (report.lostRepairs > 0) {
        console.Complain(report.input.InputLabel(),
                         fmt::format("{} repairs were made but are missing from the reports",
                                     report.lostRepairs));
    }
    if (report.automatic && report.automatic->beat) {
        console.Complain(report.input.InputLabel(), DescribeMusic(*report.automatic));
    }
    console.Result(SummaryLine(report));
}

std::vector<FileReport>
RunTasks(const RunContext& context, const std::vector<Task>& tasks, Console& console)
{
    std::vector<FileReport> reports(tasks.size());
    std::atomic<size_t> next = 0;
    const auto jobs = static_cast<size_t>(context.options.jobs);
    JobPlaces places(jobs);
    const auto work = [&] {
        for (;;) {
            JobPlaces::Place place(places);
            const size_t i = next++;
            if (i >= tasks.size()) {
                return;
            }
            reports[i] = RunFile(context, tasks[i], i, place);
            console.Finished(i);
            Tell(console, reports[i]);
        }
    };
    // While one file is flushed to the disk, another is computed; a single job keeps their order.
    std::vector<std::thread> workers;
    const size_t count = std::min(tasks.size(), jobs == 1 ? 1 : 2 * jobs);
    for (size_t i = 1; i < count; ++i) {
        workers.emplace_back(work);
    }
    work();
    for (std::thread& worker : workers) {
        worker.join();
    }
    return reports;
}

bool HasFailure(const std::vector<FileReport>& reports)
{
    return std::any_of(reports.begin(), reports.end(), [](const FileReport& report) {
        return !report.failure.empty();
    });
}

// The table was asked for by name: --quiet doesn't hold it back.
void ShowParameters(const Options& options, const Session& session)
{
    if (!options.session.printsParams || options.wantsJson) {
        return;
    }
    const int target = TakesStandardOutput(options) ? 2 : 1;
    WriteText(target, ParameterTable(session.parameters));
}

void TellSaved(Console& console, const Session& session)
{
    if (!session.savedPreset.empty()) {
        console.Result("preset -> " + Printable(session.savedPreset));
    }
    if (!session.savedState.IsEmpty() && !session.savedState.IsStream()) {
        console.Result("session -> " + Printable(session.savedState.Get()));
    }
}

// Answers null when no list is wanted.
std::unique_ptr<EventsDocument> OpenEvents(const Options& options)
{
    if (options.events.IsEmpty()) {
        return nullptr;
    }
    const auto form = options.isSingle ? EventsDocument::Form::Object : EventsDocument::Form::Array;
    return std::make_unique<EventsDocument>(options.events, options.overwrite, form);
}

// Answers null when no index is wanted.
std::unique_ptr<PageIndex> OpenIndex(const Options& options)
{
    const FileName name = IndexName(options);
    if (name.IsEmpty()) {
        return nullptr;
    }
    MakeFolderFor(name);
    return std::make_unique<PageIndex>(name, options.overwrite);
}

// Tells what went wrong with `work`, which is about the file `name`; answers whether nothing did.
template <typename Work>
bool Succeeds(Console& console, const std::string& name, Work work)
{
    try {
        work();
    } catch (const FileError& error) {
        console.Complain(name, error.what());
        return false;
    }
    return true;
}

bool TellSummary(const Options& options,
                 const Session& session,
                 const std::vector<FileReport>& reports,
                 Console& console)
{
    const auto check = [](int failure) {
        if (failure != 0) {
            throw FileError::FromErrno(failure);
        }
    };
    return Succeeds(console, "standard output", [&] {
        check(console.GetResultFailure());
        if (options.wantsJson) {
            check(WriteFully(1, SummaryJson(session, reports)));
        }
    });
}

bool RunAll(const Options& options,
            const std::shared_ptr<const Wrapper::Module>& module,
            const Session& session,
            const std::vector<Task>& tasks)
{
    ShowParameters(options, session);
    Console console(ConsoleConfig(options, tasks.size()));
    if (module) {
        console.Detail(fmt::format("module {}, version {}",
                                   Printable(module->GetPath().string()),
                                   module->GetProduct().versionText));
    }
    TellSaved(console, session);
    std::unique_ptr<EventsDocument> events;
    if (!Succeeds(console, options.events.Get(), [&] { events = OpenEvents(options); })) {
        return false;
    }
    const FileName indexName = IndexName(options);
    std::unique_ptr<PageIndex> index;
    if (!Succeeds(console, indexName.Get(), [&] { index = OpenIndex(options); })) {
        return false;
    }
    const auto reports =
        RunTasks({options, module, session, console, events.get()}, tasks, console);
    const bool hasEvents =
        !events || Succeeds(console, options.events.Get(), [&] { events->Finish(); });
    const bool hasIndex =
        !index || Succeeds(console, indexName.Get(), [&] { index->Write(reports); });
    const bool hasSummary = TellSummary(options, session, reports, console);
    return hasEvents && hasIndex && hasSummary && !HasFailure(reports);
}

} // namespace

int RunBatch(const Options& options)
{
    if (options.session.IsChore()) {
        WriteText(1, RunChore(options, LoadModule()));
        return AllDone;
    }
    const std::vector<Task> tasks = MakeTasks(options);
    if (tasks.empty() && !options.inputs.empty()) {
        throw FileError("no recordings in " + Printable(options.inputs.front().Get()));
    }
    const auto module = options.IsForWholeFiles() ? nullptr : LoadModule();
    const Session session = module ? MakeSession(options, module) : Session();
    return RunAll(options, module, session, tasks) ? AllDone : SomeFailed;
}

} // namespace Cli

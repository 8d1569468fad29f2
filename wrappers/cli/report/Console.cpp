// SPDX-License-Identifier: ISC
#include "wrappers/cli/report/Console.h"

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace Cli {

namespace {

constexpr auto TickPeriod = std::chrono::milliseconds(100);

bool AllowsColour()
{
    // NOLINTBEGIN(concurrency-mt-unsafe): the environment is never changed
    const char* refusal = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    // NOLINTEND(concurrency-mt-unsafe)
    return ::isatty(STDERR_FILENO) != 0 && (refusal == nullptr || *refusal == '\0') &&
           terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

size_t TerminalWidth()
{
    winsize size = {};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col < 20) {
        return 79;
    }
    return size_t{size.ws_col} - 1;
}

} // namespace

std::string
FormatProgress(std::optional<double> done, double recorded, double elapsed, size_t width)
{
    const double speed = elapsed > 0 ? recorded / elapsed : 0.0;
    if (!done) {
        return fmt::format("{} done, {:.0f}x real time", FormatRemaining(recorded), speed)
            .substr(0, width);
    }
    const double share = std::clamp(*done, 0.0, 1.0);
    std::string numbers = fmt::format(" {:3.0f} %  {:.0f}x", share * 100.0, speed);
    if (share > 0) {
        numbers += fmt::format("  {} left", FormatRemaining(elapsed * (1.0 - share) / share));
    }
    if (width < numbers.size() + 12) {
        return numbers.substr(0, width);
    }
    const size_t room = std::min<size_t>(width - numbers.size() - 2, 50);
    const auto filled = static_cast<size_t>(std::lround(share * static_cast<double>(room)));
    return fmt::format(
        "[{}{}]{}", std::string(filled, '='), std::string(room - filled, ' '), numbers);
}

Console::Console(const Config& newConfig)
    : config(newConfig)
    , hasColour(AllowsColour())
    , start(std::chrono::steady_clock::now())
{
    config.showsProgress = config.showsProgress && ::isatty(STDERR_FILENO) != 0;
    if (config.showsProgress) {
        ticker = std::thread([this] { Tick(); });
    }
}

Console::~Console()
{
    {
        const std::scoped_lock lock(mutex);
        isEnding = true;
    }
    wake.notify_all();
    if (ticker.joinable()) {
        ticker.join();
    }
    EraseBar();
}

int Console::Write(int descriptor, std::string line)
{
    line += '\n';
    const std::scoped_lock lock(mutex);
    EraseBar();
    return WriteFully(descriptor, line);
}

void Console::Result(std::string_view line)
{
    if (config.showsResults) {
        const int target = config.resultsOnStdErr ? STDERR_FILENO : STDOUT_FILENO;
        const int failure = Write(target, std::string(line));
        if (failure != 0) {
            resultFailure = failure;
        }
    }
}

void Console::Detail(std::string_view line)
{
    if (config.showsDetails) {
        Write(STDERR_FILENO, std::string(line));
    }
}

void Console::Complain(std::string_view name, std::string_view reason)
{
    const char* red = hasColour ? "\033[31m" : "";
    const char* plain = hasColour ? "\033[0m" : "";
    Write(STDERR_FILENO,
          fmt::format("{}puffguard:{} {}: {}", red, plain, Printable(name), Printable(reason)));
}

void Console::Progress(size_t number, int64_t frames, std::optional<int64_t> total, int sampleRate)
{
    if (!config.showsProgress) {
        return;
    }
    const std::scoped_lock lock(mutex);
    running[number] = {frames, total, sampleRate};
}

void Console::Finished(size_t number)
{
    const std::scoped_lock lock(mutex);
    const Running& last = running[number];
    finishedSeconds += static_cast<double>(last.frames) / last.sampleRate;
    ++finishedFiles;
    running.erase(number);
}

std::string Console::BarText(size_t width) const
{
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    double recorded = finishedSeconds;
    double known = finishedSeconds; // length of the recordings that have been opened
    for (const auto& [number, file] : running) {
        const double soFar = static_cast<double>(file.frames) / file.sampleRate;
        recorded += soFar;
        if (!file.total && config.files == 1) {
            return FormatProgress(std::nullopt, recorded, elapsed.count(), width);
        }
        known += file.total ? static_cast<double>(*file.total) / file.sampleRate : soFar;
    }
    // Those to come are taken for as long as the others on average.
    const auto opened = static_cast<double>(finishedFiles + running.size());
    const double whole = opened > 0 ? known / opened * static_cast<double>(config.files) : 0.0;
    return FormatProgress(whole > 0 ? recorded / whole : 0.0, recorded, elapsed.count(), width);
}

void Console::DrawBar()
{
    if (running.empty()) {
        return;
    }
    // Written over itself, then the rest of the line is cleared: no flicker.
    const std::string line = fmt::format("\r{}\033[K", BarText(TerminalWidth()));
    static_cast<void>(WriteFully(STDERR_FILENO, line));
    isBarShown = true;
}

void Console::EraseBar()
{
    if (isBarShown) {
        static_cast<void>(WriteFully(STDERR_FILENO, "\r\033[K"));
    }
    isBarShown = false;
}

void Console::Tick()
{
    std::unique_lock lock(mutex);
    while (!wake.wait_for(lock, TickPeriod, [this] { return isEnding; })) {
        DrawBar();
    }
}

} // namespace Cli

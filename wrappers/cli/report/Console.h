// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace Cli {

/// Everything the program prints for a reader: result lines, complaints, and a progress bar while
/// standard error is a terminal. Calls may come from any thread; lines never mix.
class Console {
public:
    struct Config {
        bool showsResults = true;     ///< result and detail lines
        bool showsDetails = false;    ///< detail lines
        bool resultsOnStdErr = false; ///< standard output carries something else
        bool showsProgress = false;   ///< asked for; shown on a terminal only
        size_t files = 1;             ///< recordings of the whole run
    };

    explicit Console(const Config& config);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    Console(Console&&) = delete;
    Console& operator=(Console&&) = delete;

    /// A line about a finished recording.
    void Result(std::string_view line);

    /// Why a result line could not be written, as in errno; 0 when all were.
    int GetResultFailure() const { return resultFailure; }

    /// A line for --verbose.
    void Detail(std::string_view line);

    /// "puffguard: NAME: REASON" on standard error, whatever else is switched off.
    void Complain(std::string_view name, std::string_view reason);

    /// Tells that file `number` has done `frames` of `total` at `sampleRate`. Called once a block.
    void Progress(size_t number, int64_t frames, std::optional<int64_t> total, int sampleRate);

    /// Tells that file `number` is done with, well or not.
    void Finished(size_t number);

private:
    struct Running {
        int64_t frames = 0;
        std::optional<int64_t> total;
        int sampleRate = 1;
    };

    int Write(int descriptor, std::string line); // 0, or the reason as in errno
    void DrawBar();
    void EraseBar();
    void Tick();
    std::string BarText(size_t width) const;

    Config config;
    bool hasColour = false;
    std::mutex mutex;
    std::map<size_t, Running> running;
    size_t finishedFiles = 0;
    double finishedSeconds = 0; // of recording
    bool isBarShown = false;
    std::atomic<int> resultFailure = 0;
    std::chrono::steady_clock::time_point start;
    std::condition_variable wake;
    bool isEnding = false;
    std::thread ticker;
};

/// One line of progress for `width` columns: `done` 0 to 1 (nothing when it isn't known), seconds
/// of recording done, and seconds since the start.
std::string
FormatProgress(std::optional<double> done, double recorded, double elapsed, size_t width);

} // namespace Cli

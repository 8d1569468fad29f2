// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/Measure.h"
#include "bench/Program.h"
#include "bench/Signal.h"
#include "bench/WaveFile.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace Bench {

namespace {

constexpr uint32_t SampleRate = 44100;
constexpr int PieceSeconds = 30;
constexpr int Rounds = 5;

/// Median of `first` to `second` over runs of both by turns; 0 when a run fails.
template <typename Measure>
double CompareRuns(const std::vector<std::string>& first,
                   const std::vector<std::string>& second,
                   Measure&& measure)
{
    std::vector<double> ratios;
    for (int round = 0; round < Rounds; ++round) {
        const ProgramRun one = RunProgram(first);
        const ProgramRun other = RunProgram(second);
        if (!one.succeeded || !other.succeeded) {
            std::fputs((one.errors + other.errors).c_str(), stderr);
            return 0;
        }
        ratios.push_back(measure(one) / measure(other));
    }
    return Median(ratios);
}

void Report(TargetTable& table, const Target& target, double ratio)
{
    if (ratio == 0) {
        table.AddMissing(target);
        return;
    }
    std::printf("%s: %.2f\n", target.figure.c_str(), ratio);
    table.Add(target, ratio);
}

void CompareWithFilter(TargetTable& table,
                       const Support::TemporaryFolder& folder,
                       const std::vector<std::vector<float>>& speech)
{
    const std::string recording = folder / "long.wav";
    WriteWave(recording, speech, SampleRate, 600 / PieceSeconds);
    // Both on one thread, and by what they compute: other programs don't count.
    const double ratio = CompareRuns(
        {PUFFGUARD_COMMAND, "-q", "-f", "-j1", recording, "-o", folder / "repaired.wav"},
        {"ffmpeg",
         "-v",
         "error",
         "-y",
         "-threads",
         "1",
         "-filter_threads",
         "1",
         "-i",
         recording,
         "-af",
         "afftdn",
         "-threads",
         "1",
         folder / "denoised.wav"},
        [](const ProgramRun& run) { return run.computingSeconds; });
    Report(table, {"Command over ffmpeg -af afftdn, 10 minutes, one thread", 1.0, 0.8}, ratio);
}

void CompareJobs(TargetTable& table,
                 const Support::TemporaryFolder& folder,
                 const std::vector<std::vector<float>>& speech)
{
    constexpr int Files = 20;
    std::vector<std::string> one = {PUFFGUARD_COMMAND, "-q", "-f", "-O", folder / "results"};
    for (int i = 0; i < Files; ++i) {
        one.push_back(folder / (std::to_string(i) + ".wav"));
        WriteWave(one.back(), speech, SampleRate, 2);
    }
    std::vector<std::string> two = one;
    one.emplace_back("--jobs=1");
    two.emplace_back("--jobs=2");
    const double speedUp = CompareRuns(one, two, [](const ProgramRun& run) { return run.seconds; });
    Report(table, {"Speed-up of the command by --jobs 2, 20 files", 1.8, 1.95}, speedUp);
}

} // namespace

void PrintCommandRatios(TargetTable& table)
{
    const Support::TemporaryFolder folder;
    const auto speech = MakeSpeech(1, SampleRate, PieceSeconds);
    CompareWithFilter(table, folder, speech);
    CompareJobs(table, folder, speech);
}

} // namespace Bench

// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/Measure.h"
#include "bench/Program.h"
#include "bench/Signal.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

namespace Bench {

namespace {

constexpr uint32_t SampleRate = 44100;
constexpr int PieceSeconds = 30;
constexpr int Rounds = 5;

void Append(std::string& bytes, uint32_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i) {
        bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
    }
}

/// A WAV file of 16 bits, mono: `speech` so many times.
void WriteWave(const std::string& path, const std::vector<float>& speech, int times)
{
    std::string data;
    for (const float sample : speech) {
        const int value = static_cast<int>(std::clamp(sample, -1.0F, 1.0F) * 32767.0F);
        Append(data, static_cast<uint32_t>(value), 2);
    }
    const auto size = static_cast<uint32_t>(data.size()) * static_cast<uint32_t>(times);
    std::string header = "RIFF";
    Append(header, size + 36, 4);
    header += "WAVEfmt ";
    Append(header, 16, 4);             // size of this part
    Append(header, 1, 2);              // integers
    Append(header, 1, 2);              // channel
    Append(header, SampleRate, 4);     // frames a second
    Append(header, 2 * SampleRate, 4); // bytes a second
    Append(header, 2, 2);              // bytes a frame
    Append(header, 16, 2);             // bits
    header += "data";
    Append(header, size, 4);
    std::ofstream file(path, std::ios::binary);
    file << header;
    for (int i = 0; i < times; ++i) {
        file << data;
    }
}

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
                       const std::vector<float>& speech)
{
    const std::string recording = folder / "long.wav";
    WriteWave(recording, speech, 600 / PieceSeconds);
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
                 const std::vector<float>& speech)
{
    constexpr int Files = 20;
    std::vector<std::string> one = {PUFFGUARD_COMMAND, "-q", "-f", "-O", folder / "results"};
    for (int i = 0; i < Files; ++i) {
        one.push_back(folder / (std::to_string(i) + ".wav"));
        WriteWave(one.back(), speech, 2);
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
    const std::vector<float> speech = MakeSpeech(1, SampleRate, PieceSeconds)[0];
    CompareWithFilter(table, folder, speech);
    CompareJobs(table, folder, speech);
}

} // namespace Bench

// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/Measure.h"
#include "bench/Program.h"
#include "bench/SampleVoice.h"
#include "bench/Signal.h"
#include "bench/WaveFile.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace Bench {

namespace {

constexpr uint32_t SampleRate = 48000;
constexpr int PieceSeconds = 30;
constexpr int RecordingSeconds = 600;
constexpr int Rounds = 3;

/// Median of what `measure` makes of the runs; 0 when one fails.
double MeasureRuns(const std::function<double(bool&)>& measure)
{
    std::vector<double> values;
    for (int round = 0; round < Rounds; ++round) {
        bool succeeds = true;
        values.push_back(measure(succeeds));
        if (!succeeds) {
            return 0;
        }
    }
    return Median(values);
}

ProgramRun Run(const std::vector<std::string>& words, bool& succeeds)
{
    ProgramRun run = RunProgram(words);
    if (!run.succeeded) {
        std::fputs(run.errors.c_str(), stderr);
        succeeds = false;
    }
    return run;
}

void Report(TargetTable& table, const Target& target, double measured)
{
    if (measured == 0) {
        table.AddMissing(target);
        return;
    }
    std::printf("%s: %.2f\n", target.figure.c_str(), measured);
    table.Add(target, measured);
}

/// Ten minutes and a bit, mono, of a stretch that repeats.
std::string WriteLong(const Support::TemporaryFolder& folder,
                      const char* name,
                      const std::vector<float>& stretch)
{
    const std::string path = folder / name;
    const std::size_t frames = std::size_t{RecordingSeconds} * SampleRate;
    WriteWave(path, {stretch}, SampleRate, static_cast<int>(frames / stretch.size() + 1));
    return path;
}

/// Finding and repairing, with how it compares with the effect.
void MeasureSpeed(TargetTable& table,
                  const Support::TemporaryFolder& folder,
                  const std::string& kind,
                  const std::string& recording)
{
    const std::vector<std::string> effect = {
        PUFFGUARD_COMMAND, "-q", "-f", "-j1", recording, "-o", folder / "repaired.wav"};
    std::vector<std::string> automatic = effect;
    automatic.emplace_back("--auto");
    std::vector<double> speeds;
    const double ratio = MeasureRuns([&](bool& succeeds) {
        const ProgramRun run = Run(automatic, succeeds);
        speeds.push_back(RecordingSeconds / run.computingSeconds);
        return run.computingSeconds / Run(effect, succeeds).computingSeconds;
    });
    Report(table,
           {kind + ", 10 minutes mono at 48 kHz, one core, times real time", 200, 400, "%.0f"},
           ratio == 0 ? 0 : Median(speeds));
    Report(table, {kind + " over the effect's run of the command", 1.0, 0.4}, ratio);
}

/// As many pops as speech has, and, which shows the repair's own time, pop after pop.
void MeasureSpeed(TargetTable& table, const Support::TemporaryFolder& folder)
{
    const std::vector<float> voice = ReadSampleVoice();
    if (!voice.empty()) {
        MeasureSpeed(table, folder, "--auto", WriteLong(folder, "voice.wav", voice));
    }
    const auto dense = MakeSpeech(1, SampleRate, PieceSeconds);
    MeasureSpeed(
        table, folder, "--auto, two pops a second", WriteLong(folder, "dense.wav", dense.front()));
}

/// Greatest memory of a run in MiB, as a small program sees it that starts it: one with much memory
/// of its own, such as this, would count its own as well.
void MeasureMemory(TargetTable& table, const Support::TemporaryFolder& folder)
{
    const std::string recording = folder / "hour.wav";
    WriteWave(recording, MakeSpeech(2, SampleRate, PieceSeconds), SampleRate, 3600 / PieceSeconds);
    bool succeeds = true;
    const std::string script = "import resource, subprocess, sys\n"
                               "subprocess.run(sys.argv[1:], check=True)\n"
                               "used = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss\n"
                               "print(used / 1024, file=sys.stderr)";
    const ProgramRun run =
        Run({"python3", "-c", script, PUFFGUARD_COMMAND, "-q", "--dry-run", "--auto", recording},
            succeeds);
    Report(table,
           {"Memory of --auto for an hour of 48 kHz stereo (MiB)", 64, 32, "%.0f"},
           succeeds ? std::strtod(run.errors.c_str(), nullptr) : 0);
}

void MeasureJobs(TargetTable& table, const Support::TemporaryFolder& folder)
{
    constexpr int Files = 20;
    std::vector<std::string> one = {
        PUFFGUARD_COMMAND, "-q", "-f", "--auto", "-O", folder / "results"};
    const auto speech = MakeSpeech(1, SampleRate, PieceSeconds);
    for (int i = 0; i < Files; ++i) {
        one.push_back(folder / (std::to_string(i) + ".wav"));
        WriteWave(one.back(), speech, SampleRate, 4);
    }
    std::vector<std::string> two = one;
    one.emplace_back("--jobs=1");
    two.emplace_back("--jobs=2");
    const double speedUp = MeasureRuns([&](bool& succeeds) {
        const ProgramRun run = Run(one, succeeds);
        return run.seconds / Run(two, succeeds).seconds;
    });
    Report(table, {"Speed-up of --auto by --jobs 2, 20 files", 1.8, 1.95}, speedUp);
}

} // namespace

void PrintAutoFigures(TargetTable& table)
{
    const Support::TemporaryFolder folder;
    MeasureSpeed(table, folder);
    MeasureMemory(table, folder);
    MeasureJobs(table, folder);
}

} // namespace Bench

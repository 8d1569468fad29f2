// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/Program.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

namespace Bench {

namespace {

/// Instructions of a run of so many hops, with what the program does around them.
std::optional<double> CountInstructions(int hops)
{
    const ProgramRun run = RunProgram({"env",
                                       "PUFFGUARD_CPU=v3",
                                       "valgrind",
                                       "--tool=callgrind",
                                       "--callgrind-out-file=/dev/null",
                                       PUFFGUARD_HOPS,
                                       std::to_string(hops)});
    const std::string label = "Collected : ";
    const auto place = run.errors.find(label);
    if (!run.succeeded || place == std::string::npos) {
        return std::nullopt;
    }
    return std::strtod(run.errors.c_str() + place + label.size(), nullptr);
}

} // namespace

void PrintInstructions(TargetTable& table)
{
    constexpr int WarmUp = 100; // hops, until the history is full and the tracker settled
    constexpr int Hops = 300;
    const Target target = {"Instructions a hop, mono 44100 Hz, AVX2 (thousands)", 400, 330, "%.0f"};
    const std::optional<double> before = CountInstructions(WarmUp);
    const std::optional<double> after = CountInstructions(WarmUp + Hops);
    if (!before || !after) {
        std::printf("Instructions could not be counted: callgrind is missing or failed.\n");
        table.AddMissing(target);
        return;
    }
    const double thousands = (*after - *before) / Hops / 1000;
    std::printf("Instructions a hop, mono 44100 Hz, AVX2: %.1f thousand\n", thousands);
    table.Add(target, thousands);
}

} // namespace Bench

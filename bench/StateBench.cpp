// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/Measure.h"
#include "tests/support/ModuleHost.h"

#include <cstdint>
#include <cstdio>
#include <vector>

namespace Bench {

namespace {

constexpr int Rounds = 21;
constexpr int CallsPerRound = 200;

void RunStateCommand(TestHost::Instance& instance, int32_t op, std::vector<uint8_t>& chunk)
{
    StateRecord record{};
    record.op = op;
    record.version = 1;
    record.size = static_cast<uint32_t>(chunk.size());
    record.buffer = chunk.data();
    TestHost::Call(SelectorStateCommand, TestHost::UI, instance.Get(), &record);
    if (op == StateOpGetSize) {
        chunk.resize(record.size);
    }
}

/// Microseconds of one call of `work`.
template <typename Work>
double MeasureCall(Work&& work)
{
    std::vector<double> seconds;
    for (int round = 0; round < Rounds; ++round) {
        seconds.push_back(TimeComputing([&] {
            for (int call = 0; call < CallsPerRound; ++call) {
                work(call);
            }
        }));
    }
    return Median(seconds) / CallsPerRound * 1e6;
}

} // namespace

void PrintStateTimes()
{
    TestHost::Instance instance(44100.0F, 2);
    std::vector<uint8_t> chunk;
    const double save = MeasureCall([&](int call) {
        instance.Set(TestHost::Strength, static_cast<float>(call % 100) / 100.0F);
        RunStateCommand(instance, StateOpGetSize, chunk);
        RunStateCommand(instance, StateOpGetChunk, chunk);
    });
    // Two states by turns, so that every load changes each value.
    std::vector<uint8_t> chunks[2];
    for (int i = 0; i < 2; ++i) {
        for (const uint32_t index :
             {TestHost::Sensitivity, TestHost::Strength, TestHost::UpperFrequency}) {
            instance.Set(index, 0.25F + 0.5F * static_cast<float>(i));
        }
        RunStateCommand(instance, StateOpGetSize, chunks[i]);
        RunStateCommand(instance, StateOpGetChunk, chunks[i]);
    }
    const double load = MeasureCall(
        [&](int call) { RunStateCommand(instance, StateOpSetChunk, chunks[call % 2]); });
    std::printf("State: %.1f us to save (size and chunk, %zu bytes), %.1f us to load\n",
                save,
                chunk.size(),
                load);
}

} // namespace Bench

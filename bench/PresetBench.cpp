// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/Measure.h"
#include "tests/support/ModuleHost.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace Bench {

namespace {

constexpr int Presets = 2000;
constexpr int Rounds = 11;

void RunPresetCommand(TestHost::Instance& instance, PresetRecord& record)
{
    HostMessageRecord message{PLUGIN_CORE_MESSAGE_PRESET, sizeof record, &record};
    TestHost::Call(SelectorHostMessage, TestHost::UI, instance.Get(), &message);
}

// The first is written by the instance into the user's folder, the others are its copies.
void FillFolder(TestHost::Instance& instance)
{
    PresetRecord record{};
    record.op = PresetOpSave;
    record.name = "Preset";
    record.comment = "A comment of a common length, as somebody would type it.";
    RunPresetCommand(instance, record);
    const std::filesystem::path first = static_cast<const char*>(record.path);
    for (int i = 1; i < Presets; ++i) {
        std::filesystem::copy_file(first,
                                   first.parent_path() / ("Preset " + std::to_string(i) + ".xml"));
    }
}

} // namespace

void PrintPresetListing()
{
    const Support::UserFolders folders;
    TestHost::Instance instance(44100.0F, 2);
    FillFolder(instance);
    PresetRecord record{};
    record.op = PresetOpList;
    std::vector<double> seconds;
    for (int round = 0; round < Rounds; ++round) {
        seconds.push_back(Time([&] { RunPresetCommand(instance, record); }));
    }
    std::printf("Presets: %.1f ms to list %u\n", Median(seconds) * 1e3, record.count);
}

} // namespace Bench

// SPDX-License-Identifier: ISC
// A host may remove a plug-in from memory with its last instance. What still ran in the module then
// would run in memory that is no longer there.
#include "tests/wrappers/common/support/ModuleTest.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

using UnloadingTest = ModuleTest;

namespace {

bool IsInMemory(const std::string& file)
{
    std::ifstream maps("/proc/self/maps");
    const std::string all{std::istreambuf_iterator<char>(maps), {}};
    return all.find(file) != std::string::npos;
}

std::ptrdiff_t CountThreads()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks));
}

void ProcessNoise(Wrapper::Instance& instance)
{
    std::vector<float> audio(4096);
    float value = 0.5F;
    std::generate(
        audio.begin(), audio.end(), [&] { return value = 3.7F * value * (1.0F - value); });
    float* channels[2] = {audio.data(), audio.data()};
    instance.Activate();
    instance.Process({channels, channels, 4096}, std::nullopt);
}

} // namespace

TEST_F(UnloadingTest, TheModuleAndItsThreadsAreGoneWithTheLastInstanceEachTime)
{
    const std::string file = std::filesystem::canonical(PUFFGUARD_MODULE).string();
    std::ptrdiff_t threads = 0; // after one round: a sanitizer makes one of its own with the first
    for (int round = 0; round < 50; ++round) {
        auto first = Create(file);
        auto second = Create(file, 1, 96000);
        ASSERT_TRUE(first && second);
        ProcessNoise(*first);
        first->SetParameter(Wrapper::Side::UI, 0, 1.0F);
        const std::vector<uint8_t> state = first->SaveState();
        first.reset();
        ASSERT_TRUE(IsInMemory(file));
        EXPECT_TRUE(second->LoadState(state));
        second.reset();
        ASSERT_FALSE(IsInMemory(file)) << "round " << round;
        threads = round == 0 ? CountThreads() : threads;
        ASSERT_EQ(CountThreads(), threads) << "round " << round;
    }
}

// SPDX-License-Identifier: ISC
// run() keeps off the heap and the system, whatever the host connects. What it changes or restores
// is watched for all formats alike.
#include "tests/realtime/Probe.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/lv2/support/Lv2Host.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>

namespace {

constexpr uint32_t block = 300;
constexpr uint32_t blocks = 400;

class Lv2RealtimeTest : public testing::Test {
protected:
    // Runs noise with a watch over each block and `between` before it, which isn't watched.
    void RunWatched(const std::function<void(uint32_t)>& between)
    {
        for (uint32_t number = 0; number < blocks && !HasFailure(); ++number) {
            for (auto& channel : audio) {
                for (float& sample : channel) {
                    sample = static_cast<float>(engine() % 2001) / 1000.0F - 1.0F;
                }
            }
            between(number);
            Probe::Watch watch;
            plugin.Run(block);
            const Probe::Report report = watch.Stop(); // before a text takes memory
            EXPECT_EQ(report.heapCalls, 0U) << number;
            EXPECT_EQ(report.waits, 0U) << number;
            EXPECT_EQ(report.systemCalls, 0U) << number << ": " << report.systemCall;
        }
    }

    void Connect(float* left, float* right)
    {
        plugin.ConnectAudio(0, audio[0].data(), left);
        plugin.ConnectAudio(1, audio[1].data(), right);
    }

    void SetUp() override
    {
        ASSERT_TRUE(plugin);
        plugin.ConnectControls();
        Connect(audio[0].data(), audio[1].data());
    }

    Support::UserFolders folders;
    Lv2Host::Features features;
    Lv2Host::Instance plugin{"stereo", 2, 48000, &features};
    Lv2Host::Audio audio = Lv2Host::Audio(2, std::vector<float>(block));
    std::mt19937 engine{1};
};

} // namespace

TEST_F(Lv2RealtimeTest, TheProbeSeesThatSavingUsesTheHeap)
{
    std::optional<Lv2Host::Saved> saved;
    Probe::Watch watch;
    plugin.Save(saved);
    EXPECT_GT(watch.Stop().heapCalls, 0U);
}

TEST_F(Lv2RealtimeTest, WithChannelsCrossedOrMissing)
{
    RunWatched([&](uint32_t number) {
        switch (number % 3) {
        case 0:
            Connect(audio[1].data(), audio[0].data());
            break;
        case 1:
            Connect(nullptr, audio[1].data());
            break;
        default:
            Connect(nullptr, nullptr);
        }
    });
}

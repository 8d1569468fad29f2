// SPDX-License-Identifier: ISC
// Saving and loading through the entry, as a host does it for its sessions.
#include "tests/support/AudioThread.h"
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace {

using namespace TestHost;
using Chunk = std::vector<uint8_t>;

StateRecord Command(Instance& instance, int32_t op, uint8_t* buffer, uint32_t size)
{
    StateRecord record{};
    record.op = op;
    record.failed = 9;
    record.size = size;
    record.buffer = buffer;
    record.version = 1;
    record.equal = 9;
    EXPECT_EQ(Call(SelectorStateCommand, UI, instance.Get(), &record), PluginCoreSuccess);
    return record;
}

constexpr std::array<uint32_t, 3> Saved{Sensitivity, Strength, UpperFrequency};

void SetAll(Instance& instance, const std::array<float, 3>& values)
{
    for (const uint32_t index : Saved) {
        instance.Set(index, values[index]);
    }
}

std::array<float, 3> GetAll(Instance& instance, uint32_t context)
{
    return {instance.Value(Sensitivity, context),
            instance.Value(Strength, context),
            instance.Value(UpperFrequency, context)};
}

} // namespace

TEST(State, SizeAndChunkBelongTogether)
{
    Instance instance(44100.0F, 1);
    const uint32_t size = Command(instance, StateOpGetSize, nullptr, 0).size;
    for (const int32_t op : {StateOpGetChunk, StateOpGetCompareChunk}) {
        for (const uint32_t place : {0U, 3U, 4U, size - 1, size, size + 1}) {
            Chunk buffer(size + 8, 0xEE);
            const StateRecord record = Command(instance, op, buffer.data(), place);
            EXPECT_EQ(record.failed, place == size ? 0 : 1) << op << " " << place;
            for (std::size_t i = std::min(place, size); i < buffer.size(); ++i) {
                ASSERT_EQ(buffer[i], 0xEE) << op << " " << place << " " << i;
            }
        }
        EXPECT_EQ(Command(instance, op, nullptr, size).failed, 1);
    }
    EXPECT_EQ(instance.SaveState(), instance.SaveState()) << "the same values give the same bytes";
}

TEST(State, GoesFromAnyFormatToAnyWhileAudioRuns)
{
    Instance small(44100.0F, 1);
    const std::array<float, 3> values{0.9F, 0.4F, 0.75F};
    SetAll(small, values);
    const Chunk chunk = small.SaveState();
    Instance large(192000.0F, 6);
    {
        const AudioThread audio(large);
        for (int round = 0; round < 20; ++round) {
            ASSERT_TRUE(large.LoadState(chunk));
            EXPECT_EQ(GetAll(large, UI), values);
            EXPECT_EQ(large.SaveState(), chunk) << "also while the values are on their way";
            audio.WaitForBlocks(1);
            SetAll(large, {0.0F, 1.0F, 0.5F});
        }
        ASSERT_TRUE(large.LoadState(chunk));
        audio.WaitForBlocks(2);
        EXPECT_TRUE(audio.SawOnlyGoodAudio());
    }
    EXPECT_EQ(GetAll(large, Process), values);
    for (const HostCall& call : large.Calls()) {
        EXPECT_NE(call.opcode, static_cast<uint32_t>(HostOpcodeParamEvent)) << "its own doing";
    }
}

// Hosts take "equal" for "the session is saved", and rely on hearing it for any chunk of today.
TEST(State, ComparesEqualWhateverTheValues)
{
    Instance instance(44100.0F, 1);
    Chunk chunk = instance.SaveState();
    SetAll(instance, {0.9F, 0.4F, 0.75F});
    const auto size = static_cast<uint32_t>(chunk.size());
    StateRecord record = Command(instance, StateOpCompareChunk, chunk.data(), size);
    EXPECT_EQ(record.failed, 0);
    EXPECT_EQ(record.equal, 1U);
    record = Command(instance, StateOpCompareChunk, chunk.data(), size - 1);
    EXPECT_EQ(record.failed, 1);
    EXPECT_EQ(record.equal, 9U) << "only a comparison that was made tells";
}

TEST(State, BypassBelongsToNoSession)
{
    Instance instance(44100.0F, 1);
    const Chunk before = instance.SaveState();
    instance.Set(GlobalBypass, 1.0F);
    EXPECT_EQ(instance.SaveState(), before);
    ASSERT_TRUE(instance.LoadState(before));
    EXPECT_EQ(instance.Value(GlobalBypass), 1.0F);
}

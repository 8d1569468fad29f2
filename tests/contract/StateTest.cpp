// SPDX-License-Identifier: ISC
// Saving and loading through the entry, as a host does it for its sessions.
#include "tests/support/AudioThread.h"
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
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

uint32_t SizeOf(Instance& instance)
{
    return Command(instance, StateOpGetSize, nullptr, 0).size;
}

Chunk Save(Instance& instance, int32_t op = StateOpGetChunk)
{
    Chunk chunk(SizeOf(instance));
    EXPECT_EQ(Command(instance, op, chunk.data(), static_cast<uint32_t>(chunk.size())).failed, 0);
    return chunk;
}

bool Load(Instance& instance, Chunk chunk)
{
    const auto size = static_cast<uint32_t>(chunk.size());
    return Command(instance, StateOpSetChunk, chunk.data(), size).failed == 0;
}

constexpr std::array<uint32_t, 3> Saved{Sensitivity, Strength, UpperFrequency};

void SetAll(Instance& instance, const std::array<float, 3>& values)
{
    for (const uint32_t index : Saved)
        instance.Set(index, values[index]);
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
    const uint32_t size = SizeOf(instance);
    for (const int32_t op : {StateOpGetChunk, StateOpGetCompareChunk}) {
        for (const uint32_t place : {0U, 3U, 4U, size - 1, size, size + 1}) {
            Chunk buffer(size + 8, 0xEE);
            const StateRecord record = Command(instance, op, buffer.data(), place);
            EXPECT_EQ(record.failed, place == size ? 0 : 1) << op << " " << place;
            for (std::size_t i = std::min(place, size); i < buffer.size(); ++i)
                ASSERT_EQ(buffer[i], 0xEE) << op << " " << place << " " << i;
        }
        EXPECT_EQ(Command(instance, op, nullptr, size).failed, 1);
    }
    EXPECT_EQ(Save(instance), Save(instance)) << "the same values give the same bytes";
}

TEST(State, ADamagedChunkFailsAndChangesNothing)
{
    Instance instance(44100.0F, 1);
    const std::array<float, 3> values{0.1F, 0.9F, 0.3F};
    SetAll(instance, values);
    const Chunk good = Save(instance);
    Instance other(44100.0F, 1);
    const auto before = GetAll(other, UI);
    const auto refuses = [&](const Chunk& chunk) {
        return !Load(other, chunk) && GetAll(other, UI) == before;
    };
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_TRUE(refuses({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)}))
            << length;
    Chunk claim = good;
    std::fill_n(claim.begin(), 4, uint8_t{0xFF}); // 4 GiB of text
    EXPECT_TRUE(refuses(claim));
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        Chunk damaged = good;
        damaged[4 + random() % (good.size() - 4)] ^= static_cast<uint8_t>(1U << random() % 8);
        EXPECT_TRUE(refuses(damaged)) << round;
    }
    EXPECT_TRUE(Load(other, good));
    EXPECT_EQ(GetAll(other, UI), values);
}

TEST(State, AnInstanceWithTheStateOfAnotherSoundsTheSame)
{
    Instance first(48000.0F, 2);
    SetAll(first, {0.83F, 0.21F, 0.64F});
    Instance second(48000.0F, 2);
    Audio untouched = MakeSpeechLike(2, 60'000, 48000.0F);
    Audio expected = untouched;
    Audio heard = untouched;
    second.Run(untouched, 512);
    ASSERT_TRUE(Load(second, Save(first)));
    first.Settle();
    second.Settle();
    first.Run(expected, 512);
    second.Run(heard, 512);
    EXPECT_EQ(heard, expected);
    EXPECT_NE(heard, untouched) << "the values matter";
    for (const HostCall& call : second.Calls())
        EXPECT_NE(call.opcode, static_cast<uint32_t>(HostOpcodeParamEvent));
}

TEST(State, GoesFromAnyFormatToAnyWhileAudioRuns)
{
    Instance small(44100.0F, 1);
    const std::array<float, 3> values{0.9F, 0.4F, 0.75F};
    SetAll(small, values);
    const Chunk chunk = Save(small);
    Instance large(192000.0F, 6);
    {
        const AudioThread audio(large);
        for (int round = 0; round < 20; ++round) {
            ASSERT_TRUE(Load(large, chunk));
            EXPECT_EQ(GetAll(large, UI), values);
            EXPECT_EQ(Save(large), chunk) << "also while the values are on their way";
            audio.WaitForBlocks(1);
            SetAll(large, {0.0F, 1.0F, 0.5F});
        }
        ASSERT_TRUE(Load(large, chunk));
        audio.WaitForBlocks(2);
        EXPECT_TRUE(audio.SawOnlyGoodAudio());
    }
    EXPECT_EQ(GetAll(large, Process), values);
}

TEST(State, ANewFormatCarriesItOver)
{
    Instance instance(44100.0F, 1);
    SetAll(instance, {0.9F, 0.4F, 0.75F});
    const Chunk before = Save(instance);
    for (const auto& [rate, channels] :
         {std::pair{192000.0F, 6U}, {8000.0F, 24U}, {96000.0F, 2U}}) {
        instance.SetFormat(rate, LayoutOf(channels));
        EXPECT_EQ(Save(instance), before);
    }
}

// Hosts take "equal" for "the session is saved", and rely on hearing it for any chunk of today.
TEST(State, ComparesEqualWhateverTheValues)
{
    Instance instance(44100.0F, 1);
    Chunk chunk = Save(instance);
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
    const Chunk before = Save(instance);
    instance.Set(GlobalBypass, 1.0F);
    EXPECT_EQ(Save(instance), before);
    ASSERT_TRUE(Load(instance, before));
    EXPECT_EQ(instance.Value(GlobalBypass), 1.0F);
}

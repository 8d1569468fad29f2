// SPDX-License-Identifier: ISC
// Saving and loading through the entry, as a host does it for its sessions.
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <algorithm>
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

// Hosts take "equal" for "the session is saved", and rely on hearing it for any chunk of today.
TEST(State, ComparesEqualWhateverTheValues)
{
    Instance instance(44100.0F, 1);
    Chunk chunk = instance.SaveState();
    instance.Set(Strength, 0.9F);
    const auto size = static_cast<uint32_t>(chunk.size());
    StateRecord record = Command(instance, StateOpCompareChunk, chunk.data(), size);
    EXPECT_EQ(record.failed, 0);
    EXPECT_EQ(record.equal, 1U);
    record = Command(instance, StateOpCompareChunk, chunk.data(), size - 1);
    EXPECT_EQ(record.failed, 1);
    EXPECT_EQ(record.equal, 9U) << "only a comparison that was made tells";
}

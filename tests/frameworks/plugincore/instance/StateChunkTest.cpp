// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/StateChunk.h"

#include "frameworks/qobase/util/Compression.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Util::Bytes;

Bytes WithLength(uint32_t claimed, const Bytes& body)
{
    Bytes chunk(4 + body.size());
    for (std::size_t i = 0; i < 4; ++i) {
        chunk[i] = static_cast<uint8_t>(claimed >> 8 * i);
    }
    std::copy(body.begin(), body.end(), chunk.begin() + 4);
    return chunk;
}

} // namespace

TEST(StateChunk, TakesNoClaimForAFact)
{
    const Bytes braces = Util::Deflate(Bytes{'{', '}'});
    EXPECT_FALSE(StateChunk::ReadText({}));
    EXPECT_FALSE(StateChunk::ReadText(WithLength(0, {})));
    EXPECT_FALSE(StateChunk::ReadText(WithLength(0xFFFFFFFF, braces)));
    EXPECT_FALSE(StateChunk::ReadText(WithLength((64U << 20) + 1, braces)));
    EXPECT_FALSE(StateChunk::ReadText(WithLength(1, braces)));
    const auto less = StateChunk::ReadText(WithLength(64U << 20, braces));
    ASSERT_TRUE(less); // what there is counts
    EXPECT_EQ(less->size(), 2U);

    const Bytes bomb = Util::Deflate(Bytes((64U << 20) + 1)); // a thousandth of what it becomes
    EXPECT_LT(bomb.size(), 100'000U);
    EXPECT_FALSE(StateChunk::ReadText(WithLength(64U << 20, bomb)));
}

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/StateChunk.h"

#include "frameworks/qobase/util/Compression.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Util::Bytes;

String TextOf(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

Bytes WithLength(uint32_t claimed, const Bytes& body)
{
    Bytes chunk(4 + body.size());
    for (std::size_t i = 0; i < 4; ++i) {
        chunk[i] = static_cast<uint8_t>(claimed >> 8 * i);
    }
    std::copy(body.begin(), body.end(), chunk.begin() + 4);
    return chunk;
}

// "{}" as one stored block, put down by hand: header, last block, length and its complement, the
// text, and the Adler-32 of it (a = 1 + 0x7B + 0x7D = 0xF9, b = 0x7C + 0xF9 = 0x175).
const Bytes StoredBraces{
    0x78, 0x01, 0x01, 0x02, 0x00, 0xFD, 0xFF, '{', '}', 0x01, 0x75, 0x00, 0xF9};

} // namespace

TEST(StateChunk, ReadsAStreamThatSomethingElseHasWritten)
{
    const auto text = StateChunk::ReadText(WithLength(2, StoredBraces));
    ASSERT_TRUE(text);
    EXPECT_EQ(TextOf(*text), String("{}"));
}

TEST(StateChunk, WritesTheLengthInLittleEndianThenTheStream)
{
    const String text(std::string(0x10203, 'a') + "end");
    Bytes chunk(StateChunk::GetChunkSizeOfText(text));
    ASSERT_TRUE(StateChunk::WriteText(text, chunk));
    EXPECT_EQ(Bytes(chunk.begin(), chunk.begin() + 4), (Bytes{0x06, 0x02, 0x01, 0x00}));
    const auto body = Util::Inflate(Util::ByteSpan(chunk).subspan(4));
    ASSERT_TRUE(body);
    EXPECT_EQ(TextOf(*body), text);
}

TEST(StateChunk, TakesNoClaimForAFact)
{
    EXPECT_FALSE(StateChunk::ReadText({}));
    EXPECT_FALSE(StateChunk::ReadText(WithLength(0, {})));
    EXPECT_FALSE(StateChunk::ReadText(WithLength(0xFFFFFFFF, StoredBraces)));
    EXPECT_FALSE(StateChunk::ReadText(WithLength((64U << 20) + 1, StoredBraces)));
    EXPECT_FALSE(StateChunk::ReadText(WithLength(1, StoredBraces)));
    const auto less = StateChunk::ReadText(WithLength(64U << 20, StoredBraces));
    ASSERT_TRUE(less); // what there is counts
    EXPECT_EQ(less->size(), 2U);

    const Bytes bomb = Util::Deflate(Bytes((64U << 20) + 1)); // a thousandth of what it becomes
    EXPECT_LT(bomb.size(), 100'000U);
    EXPECT_FALSE(StateChunk::ReadText(WithLength(64U << 20, bomb)));
}

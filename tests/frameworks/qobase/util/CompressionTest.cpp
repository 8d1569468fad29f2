// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Compression.h"
#include "frameworks/qobase/util/Base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

namespace {

using Util::Bytes;

Bytes BytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}

// A stream of another program (Python's zlib), so that both directions can't be wrong alike.
constexpr std::string_view Plain = "plosive plosive plosive";
const Bytes Foreign = BytesOf("\x78\x9c\x2b\xc8\xc9\x2f\xce\x2c\x4b"
                              "\x55\x28\x40\xa5\x01\x6f\x98\x09\x47");

Bytes Noise(std::size_t count)
{
    std::mt19937 random(2);
    Bytes bytes(count);
    for (uint8_t& byte : bytes) {
        byte = static_cast<uint8_t>(random());
    }
    return bytes;
}

TEST(Base64, GivesTheVectorsOfRfc4648)
{
    const std::pair<const char*, const char*> cases[] = {{"", ""},
                                                         {"f", "Zg=="},
                                                         {"fo", "Zm8="},
                                                         {"foo", "Zm9v"},
                                                         {"foob", "Zm9vYg=="},
                                                         {"fooba", "Zm9vYmE="},
                                                         {"foobar", "Zm9vYmFy"},
                                                         {"\xfb\xff\xbf", "+/+/"}};
    for (const auto& [plain, text] : cases) {
        EXPECT_EQ(Util::EncodeBase64(BytesOf(plain)).ToStdString(), text);
        EXPECT_EQ(Util::DecodeBase64(text), BytesOf(plain)) << text;
    }
    const Bytes noise = Noise(1000);
    EXPECT_EQ(Util::DecodeBase64(Util::EncodeBase64(noise)), noise);
}

TEST(Base64, RefusesEverythingElse)
{
    const String texts(
        "Z|Zg|Zg=|Zg===|Z===|====|=|Zm9v=|Zm=v|Zm9v |Zm9\n|Zm9-|Zm9_|Zg==Zg==|Zm9\xff");
    for (const String& text : texts.Split('|')) {
        EXPECT_FALSE(Util::DecodeBase64(text)) << text.c_str();
    }
    EXPECT_EQ(Util::DecodeBase64(String()), Bytes());
}

TEST(Compression, ReadsForeignStreamsAndItsOwn)
{
    EXPECT_EQ(Util::Inflate(Foreign), BytesOf(Plain));
    for (const std::size_t size : {0UL, 1UL, 16384UL, 16385UL, 300000UL}) {
        const Bytes bytes = Noise(size);
        EXPECT_EQ(Util::Inflate(Util::Deflate(bytes)), bytes) << size;
        EXPECT_EQ(Util::Inflate(Util::Deflate(Bytes(size))), Bytes(size)) << size;
    }
}

TEST(Compression, RefusesDamagedStreams)
{
    for (std::size_t length = 0; length < Foreign.size(); ++length) {
        EXPECT_FALSE(Util::Inflate({Foreign.data(), length})) << length;
    }
    // The stream ends in a checksum of 32 bits, so that no single bit may go wrong unseen. The
    // three bits that only pad the deflated part to whole bytes carry nothing.
    std::size_t unseen = 0;
    for (std::size_t bit = 0; bit < Foreign.size() * 8; ++bit) {
        Bytes damaged = Foreign;
        damaged[bit / 8] ^= static_cast<uint8_t>(1U << bit % 8);
        const auto result = Util::Inflate(damaged);
        if (result) {
            ++unseen;
        }
        EXPECT_TRUE(!result || *result == BytesOf(Plain)) << bit;
    }
    EXPECT_LE(unseen, 7U);
    Bytes longer = Foreign;
    longer.push_back(1);
    EXPECT_EQ(Util::Inflate(longer), BytesOf(Plain)) << "bytes behind the end are no damage";
}

TEST(Compression, StopsAtTheLimit)
{
    EXPECT_EQ(Util::Inflate(Foreign, Plain.size()), BytesOf(Plain));
    EXPECT_FALSE(Util::Inflate(Foreign, Plain.size() - 1));
    EXPECT_FALSE(Util::Inflate(Foreign, 0));
    EXPECT_EQ(Util::Inflate(Util::Deflate({}), 0), Bytes());
    const Bytes bomb = Util::Deflate(Bytes(Util::MaxClaimedBytes + 1));
    EXPECT_LT(bomb.size(), 100000U);
    EXPECT_FALSE(Util::Inflate(bomb));
}

} // namespace

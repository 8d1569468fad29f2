// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/WavStream.h"

#include "tests/support/FuzzRounds.h"
#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <random>

namespace {

using Cli::WavHead;

/// Reads the head of a stream that holds `bytes`.
WavHead ReadHead(const std::string& bytes)
{
    const Cli::FileDescriptor file = Cli::OpenAnonymousFile();
    EXPECT_EQ(Cli::WriteFully(file.Get(), std::string_view(bytes).substr(12)), 0);
    ::lseek(file.Get(), 0, SEEK_SET);
    return Cli::ReadWavHead(file.Get(), bytes.substr(0, 12));
}

// A head worked out by hand: 16-bit mono at 8000 Hz, `size` bytes of samples.
std::string HandMadeHead(const std::string& size)
{
    using namespace std::string_literals;
    return "RIFF\x2C\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0\x40\x1F\0\0\x80\x3E\0\0\x02\0\x10\0data"s +
           size;
}

TEST(WavStreamTest, ReadsAHandMadeHead)
{
    using namespace std::string_literals;
    const WavHead head = ReadHead(HandMadeHead("\x08\0\0\0"s) + "12345678");
    EXPECT_EQ(head.dataBytes, 8);
    const auto description = Cli::DescribeWavHead(head);
    EXPECT_EQ(description.info.samplerate, 8000);
    EXPECT_EQ(description.info.channels, 1);
    EXPECT_EQ(description.info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    // A chunk of odd length has a byte behind it that doesn't count.
    std::string odd = HandMadeHead("\x08\0\0\0"s);
    odd.insert(odd.size() - 8, "note\x01\0\0\0n\0"s);
    EXPECT_EQ(ReadHead(odd).dataBytes, 8);
}

TEST(WavStreamTest, TakesPlaceholdersForUnknown)
{
    using namespace std::string_literals;
    for (const auto& size :
         {"\0\0\0\0"s, "\xFF\xFF\xFF\xFF"s, "\xFF\xFF\xFF\x7F"s, "\0\xF0\xFF\x7F"s}) {
        EXPECT_FALSE(ReadHead(HandMadeHead(size)).dataBytes.has_value());
    }
}

TEST(WavStreamTest, RefusesHeadsThatEndEarlyOrClaimTooMuch)
{
    using namespace std::string_literals;
    const std::string whole = HandMadeHead("\x08\0\0\0"s);
    for (size_t length = 12; length < whole.size(); ++length) {
        EXPECT_THROW(ReadHead(whole.substr(0, length)), Cli::FileError) << length;
    }
    EXPECT_THROW(ReadHead(whole.substr(0, 12) + "junk\xF0\xFF\xFF\xFF"s), Cli::FileError);
}

// What comes from a pipe is read by code of our own: each head is read or refused, and no claim of
// a length is believed.
TEST(WavHeadFuzz, ChangedBytesDoNoHarm)
{
    SF_INFO info{};
    info.samplerate = 48000;
    info.channels = 2;
    info.format = SF_FORMAT_WAVEX | SF_FORMAT_PCM_24;
    const std::string head = Cli::MakeWavHead(info, {}, 1000);
    EXPECT_EQ(Cli::DescribeWavHead(ReadHead(head)).info.channels, 2);
    std::mt19937 random(1);
    for (int change = Fuzz::GetRounds() * 300; change > 0; --change) {
        std::string changed = head;
        for (auto count = 1 + random() % 6; count != 0; --count) {
            changed[12 + random() % (changed.size() - 12)] = static_cast<char>(random());
        }
        changed.resize(12 + random() % (changed.size() + 40));
        try {
            Cli::DescribeWavHead(ReadHead(changed));
        } catch (const Cli::FileError&) {
            continue; // any other fails the test
        }
    }
}

} // namespace

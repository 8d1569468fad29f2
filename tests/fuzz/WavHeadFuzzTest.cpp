// SPDX-License-Identifier: ISC
// Heads of WAV streams with bytes changed at random and cut off anywhere: what comes from a pipe is
// read by code of our own. Each is read or refused, and no claim of a length is believed.
#include "tests/fuzz/Rounds.h"
#include "wrappers/cli/audio/WavStream.h"
#include "wrappers/cli/files/FileError.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <unistd.h>

namespace {

std::string MakeHead()
{
    SF_INFO info{};
    info.samplerate = 48000;
    info.channels = 2;
    info.format = SF_FORMAT_WAVEX | SF_FORMAT_PCM_24;
    return Cli::MakeWavHead(info, {}, 1000);
}

// True when the head was taken. Anything but a FileError fails the test.
bool IsRead(const std::string& bytes)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), &std::fclose);
    const int descriptor = fileno(file.get());
    const std::string rest = bytes.substr(std::min<size_t>(12, bytes.size()));
    EXPECT_EQ(write(descriptor, rest.data(), rest.size()), static_cast<ssize_t>(rest.size()));
    lseek(descriptor, 0, SEEK_SET);
    try {
        Cli::DescribeWavHead(Cli::ReadWavHead(descriptor, bytes.substr(0, 12)));
        return true;
    } catch (const Cli::FileError&) {
        return false;
    }
}

} // namespace

TEST(WavHeadFuzz, ChangedBytesDoNoHarm)
{
    const std::string head = MakeHead();
    ASSERT_TRUE(IsRead(head + std::string(100, '\0')));
    std::mt19937 random(1);
    const int changes = Fuzz::GetRounds() * 300;
    for (int i = 0; i < changes; ++i) {
        std::string changed = head;
        for (auto count = 1 + random() % 6; count != 0; --count) {
            changed[12 + random() % (changed.size() - 12)] = static_cast<char>(random());
        }
        changed.resize(12 + random() % (changed.size() + 40));
        IsRead(changed);
    }
}

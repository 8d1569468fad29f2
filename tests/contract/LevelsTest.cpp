// SPDX-License-Identifier: ISC
// The module as the processors of other people run it: each child loads it with PUFFGUARD_CPU set
// to another level and sends back every bit that comes out.
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <string>
#include <vector>

namespace {

using namespace TestHost;

constexpr unsigned LimitSeconds = 300; // of a child; the slowest sanitizer takes a tenth
constexpr double AudioSeconds = 2;

struct Format {
    float sampleRate; // Hz
    uint32_t channels;
    uint32_t block;
};

/// Bursts in noise with a gliding voice between them, so that there is pitch to follow.
Audio MakeTake(const Format& format)
{
    const auto rate = static_cast<double>(format.sampleRate);
    const auto frames = static_cast<uint32_t>(AudioSeconds * rate);
    Audio audio = MakeSpeechLike(format.channels, frames, format.sampleRate);
    double phase = 0;
    for (uint32_t i = 0; i < frames; ++i) {
        const double time = i / rate;
        phase += 2 * std::numbers::pi * (120 + 30 * std::sin(3 * time)) / rate;
        double voice = 0;
        for (int harmonic = 1; harmonic <= 8; ++harmonic) {
            voice += std::sin(harmonic * phase) / harmonic;
        }
        for (std::vector<float>& channel : audio) {
            channel[i] += static_cast<float>(0.05 * voice * (1 + std::sin(9 * time)));
        }
    }
    return audio;
}

void Send(int pipe, const void* bytes, std::size_t count)
{
    const char* next = static_cast<const char*>(bytes);
    while (count > 0) {
        const ssize_t sent = write(pipe, next, count);
        if (sent <= 0) {
            std::exit(2);
        }
        next += sent;
        count -= static_cast<std::size_t>(sent);
    }
}

/// What the child does; its first word says how many repairs there were.
[[noreturn]] void RunChild(const Format& format, const char* level, int pipe)
{
    alarm(LimitSeconds);
    if (level != nullptr) {
        setenv("PUFFGUARD_CPU", level, 1);
    } else {
        unsetenv("PUFFGUARD_CPU");
    }
    if (Entry() == nullptr) {
        std::exit(1);
    }
    Audio audio = MakeTake(format);
    uint32_t repairs = 0;
    {
        Instance instance(format.sampleRate, format.channels);
        instance.Set(Sensitivity, 0.9F);
        instance.Run(audio, format.block);
        repairs = instance.Detections();
    }
    Send(pipe, &repairs, sizeof repairs);
    for (const std::vector<float>& channel : audio) {
        Send(pipe, channel.data(), channel.size() * sizeof(float));
    }
    std::exit(0);
}

/// All that a child sends; empty when it fails.
std::vector<uint32_t> RunAtLevel(const Format& format, const char* level)
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        return {};
    }
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        RunChild(format, level, ends[1]);
    }
    close(ends[1]);
    std::string bytes;
    std::array<char, 65536> part{};
    ssize_t count = 0;
    while ((count = read(ends[0], part.data(), part.size())) > 0) {
        bytes.append(part.data(), static_cast<std::size_t>(count));
    }
    close(ends[0]);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    std::vector<uint32_t> words(bytes.size() / sizeof(uint32_t));
    std::copy_n(
        bytes.data(), words.size() * sizeof(uint32_t), reinterpret_cast<char*>(words.data()));
    return words;
}

class Levels : public testing::TestWithParam<Format> {};

} // namespace

TEST_P(Levels, AllGiveTheSameBits)
{
    const std::vector<uint32_t> wanted = RunAtLevel(GetParam(), "baseline");
    ASSERT_GT(wanted.size(), 1U);
    EXPECT_GT(wanted[0], 0U) << "nothing was repaired";
    const auto isNaN = [](uint32_t word) { return (word & 0x7FFFFFFFU) > 0x7F800000U; };
    EXPECT_TRUE(std::none_of(wanted.begin(), wanted.end(), isNaN));
    // What the processor lacks is as good as the best that it has, and so is what nobody knows.
    for (const char* level : {"v3", "v4", "v9000", "", static_cast<const char*>(nullptr)}) {
        EXPECT_TRUE(RunAtLevel(GetParam(), level) == wanted) << (level != nullptr ? level : "none");
    }
}

INSTANTIATE_TEST_SUITE_P(Formats,
                         Levels,
                         testing::Values(Format{8000, 1, 64},
                                         Format{11025.5F, 1, 333},
                                         Format{44100, 1, 512},
                                         Format{44100, 2, 441},
                                         Format{48000, 6, 1024},
                                         Format{57600, 1, 480},
                                         Format{96000, 2, 512},
                                         Format{192000, 1, 2048}),
                         [](const auto& test) {
                             const Format& format = test.param;
                             return std::to_string(static_cast<int>(format.sampleRate)) + "Hz" +
                                    std::to_string(format.channels);
                         });

// SPDX-License-Identifier: ISC
// The module as the processors of other people run it: each child loads it with PUFFGUARD_CPU set
// to another level and leaves every bit that comes out.
#include "tests/support/Child.h"
#include "tests/support/ModuleHost.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
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
    const auto frames = static_cast<uint32_t>(AudioSeconds * double{format.sampleRate});
    Audio audio = MakeSpeechLike(format.channels, frames, format.sampleRate);
    for (uint32_t i = 0; i < frames; ++i) {
        const double time = i / double{format.sampleRate};
        const double phase = 2 * std::numbers::pi * time * (120 + 10 * time);
        const double voice = std::sin(phase) + std::sin(2 * phase) / 2 + std::sin(3 * phase) / 3;
        for (std::vector<float>& channel : audio) {
            channel[i] += static_cast<float>(0.05 * voice);
        }
    }
    return audio;
}

/// What the child leaves in the file; its first word says how many repairs there were.
void RunChild(const Format& format, const char* level, const std::string& path)
{
    alarm(LimitSeconds);
    if (level != nullptr) {
        setenv("PUFFGUARD_CPU", level, 1);
    } else {
        unsetenv("PUFFGUARD_CPU");
    }
    Audio audio = MakeTake(format);
    uint32_t repairs = 0;
    {
        Instance instance(format.sampleRate, format.channels);
        instance.Set(Sensitivity, 0.9F);
        instance.Run(audio, format.block);
        repairs = instance.Detections();
    }
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(&repairs), sizeof repairs);
    for (const std::vector<float>& channel : audio) {
        file.write(reinterpret_cast<const char*>(channel.data()),
                   static_cast<std::streamsize>(channel.size() * sizeof(float)));
    }
}

/// All that a child leaves; empty when it fails.
std::vector<uint32_t> RunAtLevel(const Format& format, const char* level)
{
    const Support::TemporaryFolder folder;
    const std::string path = folder / "bits";
    EXPECT_EQ(Support::Child([&] { RunChild(format, level, path); }).Wait(), 0);
    std::ifstream file(path, std::ios::binary);
    std::vector<uint32_t> words(std::filesystem::file_size(path) / sizeof(uint32_t));
    file.read(reinterpret_cast<char*>(words.data()),
              static_cast<std::streamsize>(words.size() * sizeof(uint32_t)));
    return words;
}

} // namespace

TEST(Levels, AllGiveTheSameBits)
{
    for (const Format& format : {Format{8000, 1, 64},
                                 Format{11025.5F, 1, 333},
                                 Format{44100, 2, 441},
                                 Format{48000, 6, 1024},
                                 Format{57600, 1, 480},
                                 Format{96000, 2, 512},
                                 Format{192000, 1, 2048}}) {
        SCOPED_TRACE(format.sampleRate);
        const std::vector<uint32_t> wanted = RunAtLevel(format, "baseline");
        ASSERT_GT(wanted.size(), 1U);
        EXPECT_GT(wanted[0], 0U) << "nothing was repaired";
        // What the processor lacks is as good as the best that it has, and so is what nobody knows.
        for (const char* level : {"v3", "v4", "v9000", static_cast<const char*>(nullptr)}) {
            EXPECT_TRUE(RunAtLevel(format, level) == wanted) << (level != nullptr ? level : "none");
        }
    }
}

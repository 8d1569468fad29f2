// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace CliTest {

TemporaryFolder::TemporaryFolder()
{
    std::filesystem::permissions(Path(), std::filesystem::perms::all);
}

std::vector<std::string> TemporaryFolder::List() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Path())) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

namespace {

// 60 ms of 40 Hz, swelling up and down, at the beginning of each second.
double BurstAt(double t)
{
    const double sinceBurst = t - std::floor(t);
    if (sinceBurst >= 0.06) {
        return 0.0;
    }
    return std::sin(2 * std::numbers::pi * 40 * sinceBurst) *
           std::sin(std::numbers::pi * sinceBurst / 0.06);
}

} // namespace

Audio MakeSpeech(int sampleRate, int channels, double seconds)
{
    Audio audio;
    audio.sampleRate = sampleRate;
    audio.channels = channels;
    std::mt19937 random(7);
    const auto frames = static_cast<size_t>(seconds * sampleRate);
    for (size_t i = 0; i < frames; ++i) {
        const double t = static_cast<double>(i) / sampleRate;
        const double noise = (static_cast<double>(random()) / 4294967296.0 - 0.5) * 0.004;
        const double word = std::max(0.0, std::sin(2 * std::numbers::pi * 1.6 * t));
        double buzz = 0;
        for (int k = 1; k < 12; ++k) {
            buzz += std::sin(2 * std::numbers::pi * 130 * k * t) / k;
        }
        const double burst = BurstAt(t - 0.6) + 0.03 * BurstAt(t - 0.3);
        for (int channel = 0; channel < channels; ++channel) {
            audio.samples.push_back(noise + word * 0.08 * buzz + 0.5 * burst / (1 + channel));
        }
    }
    return audio;
}

void WriteAudio(const std::string& path, const Audio& audio)
{
    SF_INFO info = {};
    info.samplerate = audio.sampleRate;
    info.channels = audio.channels;
    info.format = audio.format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << path << ": " << sf_strerror(nullptr);
    sf_command(file, SFC_SET_CLIPPING, nullptr, SF_TRUE);
    const auto count = static_cast<sf_count_t>(audio.samples.size());
    EXPECT_EQ(sf_write_double(file, audio.samples.data(), count), count);
    sf_close(file);
}

std::string ReadBytes(const std::string& path)
{
    EXPECT_TRUE(std::filesystem::exists(path)) << path;
    return Support::ReadText(path);
}

} // namespace CliTest

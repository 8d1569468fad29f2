// SPDX-License-Identifier: ISC
#include "bench/SampleVoice.h"

#include <sndfile.hh>

#include <cstddef>
#include <string>

namespace Bench {

namespace {

constexpr int VoicesWithoutPops = 2;

/// Empty when it can't be read.
std::vector<float> ReadMono(const char* name)
{
    SndfileHandle file(std::string(PUFFGUARD_SAMPLE) + "/" + name);
    const bool isMono = file && file.channels() == 1;
    std::vector<float> samples(static_cast<std::size_t>(isMono ? file.frames() : 0));
    file.readf(samples.data(), static_cast<sf_count_t>(samples.size()));
    return samples;
}

/// At twice the rate, the new ones on a straight line between their neighbours.
std::vector<float> DoubleRate(const std::vector<float>& samples)
{
    std::vector<float> result;
    float former = 0;
    for (const float sample : samples) {
        result.push_back((former + sample) / 2);
        result.push_back(sample);
        former = sample;
    }
    return result;
}

} // namespace

std::vector<float> ReadSampleVoice()
{
    std::vector<float> samples = ReadMono("plosives.flac");
    const std::vector<float> voice =
        DoubleRate(ReadMono("voice.flac")); // half the rate of the other
    for (int i = 0; i < VoicesWithoutPops; ++i) {
        samples.insert(samples.end(), voice.begin(), voice.end());
    }
    return samples;
}

} // namespace Bench

// SPDX-License-Identifier: ISC
#include "bench/Signal.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <random>

namespace Bench {

namespace {

constexpr double SyllableSeconds = 0.3;
constexpr double VoiceBegins = 0.08; ///< within the syllable, in seconds, as is the next
constexpr double BurstBegins = 0.04;
constexpr int Harmonics = 12;

double GetVoice(double phase, double inSyllable)
{
    const double part = (inSyllable - VoiceBegins) / (SyllableSeconds - VoiceBegins);
    const double envelope = part > 0 ? std::sin(std::numbers::pi * part) : 0.0;
    double value = 0;
    for (int k = 1; k <= Harmonics; ++k) {
        value += std::sin(k * phase) / k;
    }
    return 0.15 * envelope * value;
}

double GetBurst(double inSyllable)
{
    const double t = inSyllable - BurstBegins;
    return t > 0 ? 0.5 * std::exp(-t / 0.02) * std::sin(2 * std::numbers::pi * 60 * t) : 0.0;
}

} // namespace

std::vector<std::vector<float>> MakeSpeech(uint32_t channels, float sampleRate, double seconds)
{
    const auto rate = static_cast<double>(sampleRate);
    std::minstd_rand random;
    std::vector<float> mono(static_cast<std::size_t>(rate * seconds));
    double phase = 0;
    for (std::size_t i = 0; i < mono.size(); ++i) {
        const double time = static_cast<double>(i) / rate;
        const double pitchHz = 130 + 40 * std::sin(2.1 * time) + 6 * std::sin(31 * time);
        phase += 2 * std::numbers::pi * pitchHz / rate;
        const double syllable = std::floor(time / SyllableSeconds);
        const double inSyllable = time - syllable * SyllableSeconds;
        const bool hasBurst = std::fmod(syllable, 2) == 0;
        const double noise = 0.002 * (static_cast<double>(random() % 2000) * 0.001 - 1);
        const double burst = hasBurst ? GetBurst(inSyllable) : 0.0;
        mono[i] = static_cast<float>(GetVoice(phase, inSyllable) + burst + noise);
    }
    std::vector<std::vector<float>> audio(channels, mono);
    for (std::size_t channel = 1; channel < channels; ++channel) {
        std::transform(mono.begin(), mono.end(), audio[channel].begin(), [&](float value) {
            return value / static_cast<float>(channel + 1);
        });
    }
    return audio;
}

} // namespace Bench

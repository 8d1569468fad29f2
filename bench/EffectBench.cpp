// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/FftwTransform.h"
#include "bench/Measure.h"
#include "bench/Signal.h"
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"
#include "restoration/dsp/puffguard/pitch/Autocorr.h"
#include "tests/support/ModuleHost.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <string>
#include <vector>

namespace Bench {

namespace {

constexpr float Rates[] = {44100, 48000, 96000};
constexpr uint32_t HostBlock = 512;
constexpr uint32_t SmallBlock = 64;
constexpr int Rounds = 101;
constexpr double FrameSeconds = 0.07; ///< least length of the main transform
constexpr int FramesPerWindow = 8;

/// The transforms that one stretch of audio takes.
struct Work {
    Work(float sampleRate, uint32_t channels, uint32_t frames)
    {
        while (mainSize < static_cast<double>(sampleRate) * FrameSeconds) {
            mainSize *= 2;
        }
        const auto sizes = DSP::Synapse::AnalysisSizes::ForRate(static_cast<double>(sampleRate));
        trackerSize = DSP::Autocorr(sizes.minLag, sizes.maxLag).GetFftSize();
        mainPairs =
            static_cast<int>(frames) / (mainSize / FramesPerWindow) * static_cast<int>(channels);
        trackerPairs = static_cast<int>(frames) / sizes.analysisHop;
    }

    int mainSize = 8;
    int trackerSize = 0;
    int mainPairs = 0;
    int trackerPairs = 0;
};

/// Reads on through a signal piece by piece, round and round, since constant input would lie.
class Feeder {
public:
    Feeder(uint32_t channels, float sampleRate, uint32_t newFrames)
        : speech(MakeSpeech(channels, sampleRate, 8))
        , frames(newFrames)
        , piece(channels, std::vector<float>(newFrames))
    {
    }

    TestHost::Audio& GetNext()
    {
        position = position + 2 * frames > speech[0].size() ? 0 : position + frames;
        for (std::size_t channel = 0; channel < speech.size(); ++channel) {
            std::copy_n(speech[channel].data() + position, frames, piece[channel].data());
        }
        return piece;
    }

private:
    TestHost::Audio speech;
    uint32_t frames;
    TestHost::Audio piece;
    std::size_t position = 0;
};

const char* GetLayoutName(uint32_t channels)
{
    return channels == 1 ? "mono" : "stereo";
}

std::string NameFigure(const char* what, float sampleRate, uint32_t channels)
{
    return std::string(what) + ", " + GetLayoutName(channels) + " " +
           std::to_string(static_cast<int>(sampleRate)) + " Hz";
}

void PrintEffectRatio(float sampleRate, uint32_t channels, TargetTable& table)
{
    // Whole hops at every rate, about a quarter of a second at 48 kHz.
    constexpr uint32_t Frames = 12 * 1024;
    TestHost::Instance instance(sampleRate, channels);
    Feeder feeder(channels, sampleRate, Frames);
    for (int warmUp = 0; warmUp < 8; ++warmUp) {
        instance.Run(feeder.GetNext(), HostBlock);
    }
    const Work work(sampleRate, channels, Frames);
    FftwTransform main(work.mainSize);
    FftwTransform tracker(work.trackerSize);
    TestHost::Audio* next = nullptr;
    const Comparison result = Compare(
        Rounds,
        [&] { next = &feeder.GetNext(); },
        [&] { instance.Run(*next, HostBlock); },
        [&] {
            main.RunPairs(work.mainPairs);
            tracker.RunPairs(work.trackerPairs);
        });
    const double audioSeconds = Frames / static_cast<double>(sampleRate);
    std::printf("  %6.0f Hz %-6s  %5.2f   (%.0f x real time, %u repairs)\n",
                static_cast<double>(sampleRate),
                GetLayoutName(channels),
                result.ratio,
                audioSeconds / result.seconds,
                instance.Detections());
    const bool isMain = sampleRate == Rates[0] && channels == 1;
    table.Add({NameFigure("Effect over FFTW for its transforms", sampleRate, channels),
               isMain ? 0.90 : 0.95,
               isMain ? 0.75 : 0.80},
              result.ratio);
}

/// Shortest time of each call over a few passes from the same start: what is left are the effect's
/// own differences, without those of the machine.
std::vector<double> TimeCalls(TestHost::Instance& instance, const TestHost::Audio& speech)
{
    constexpr int Passes = 31; // most of which something disturbs, somewhere
    const auto calls = static_cast<uint32_t>(speech[0].size()) / SmallBlock;
    std::vector<double> shortest(calls, 1e9);
    for (int pass = 0; pass < Passes; ++pass) {
        TestHost::Audio audio = speech;
        instance.Settle();
        for (uint32_t call = 0; call < calls; ++call) {
            const double seconds =
                Time([&] { instance.RunBlock(audio, call * SmallBlock, SmallBlock); });
            shortest[call] = std::min(shortest[call], seconds);
        }
    }
    return shortest;
}

void PrintLongestCall(float sampleRate, uint32_t channels, TargetTable& table)
{
    TestHost::Instance instance(sampleRate, channels);
    std::vector<double> seconds = TimeCalls(instance, MakeSpeech(channels, sampleRate, 4));
    const double mean =
        std::accumulate(seconds.begin(), seconds.end(), 0.0) / static_cast<double>(seconds.size());
    std::sort(seconds.begin(), seconds.end());
    const double longest = seconds.back();
    const double usual = seconds[seconds.size() * 999 / 1000]; // 99.9 of 100 calls are no longer
    std::printf("  %6.0f Hz %-6s  %5.1f   (longest %.0f us, %.1f %% of the block's time; "
                "99.9 %% of the calls within %.0f us)\n",
                static_cast<double>(sampleRate),
                GetLayoutName(channels),
                longest / mean,
                longest * 1e6,
                100 * longest * static_cast<double>(sampleRate) / SmallBlock,
                usual * 1e6);
    table.Add({NameFigure("Longest call over mean at 64 frames", sampleRate, channels), 1.9, 1.8},
              longest / mean);
}

} // namespace

void PrintEffectRatios(TargetTable& table)
{
    std::printf("Effect / FFTW for its transforms, host block %u:\n", HostBlock);
    for (const float sampleRate : Rates) {
        for (const uint32_t channels : {1U, 2U}) {
            PrintEffectRatio(sampleRate, channels, table);
        }
    }
}

void PrintLongestCalls(TargetTable& table)
{
    std::printf("Longest call / mean call, host block %u:\n", SmallBlock);
    for (const float sampleRate : Rates) {
        for (const uint32_t channels : {1U, 2U}) {
            PrintLongestCall(sampleRate, channels, table);
        }
    }
}

} // namespace Bench

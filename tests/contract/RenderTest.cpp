// SPDX-License-Identifier: ISC
// Regions of a recording, rendered through the C header as a stranger's host would.
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <future>
#include <limits>
#include <map>
#include <numbers>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace TestHost;

constexpr float Rate = 16000;
constexpr uint32_t Frames = 16000 * 12;

/// A recording with its regions, and what has come of it.
class Rendered {
public:
    explicit Rendered(Audio newRecording)
        : recording(std::move(newRecording))
        , result(recording)
    {
        record.fadeMilliseconds = 10;
    }

    RenderRecord& Run(PluginCore* instance, const std::vector<RenderRegionRecord>& regions)
    {
        record.recordBytes = sizeof(RenderRecord);
        record.regionBytes = sizeof(RenderRegionRecord);
        record.frames = static_cast<int64_t>(recording.front().size());
        record.regions = regions.data();
        record.regionCount = static_cast<uint32_t>(regions.size());
        record.refcon = this;
        record.read = Read;
        record.write = Write;
        record.progress = Progress;
        record.repair = [](void* refcon, const DetectionRecord* repair) {
            static_cast<Rendered*>(refcon)->repairs.push_back(*repair);
        };
        HostMessageRecord message{PLUGIN_CORE_MESSAGE_RENDER, sizeof record, &record};
        answer = Call(SelectorHostMessage, UI, instance, &message);
        return record;
    }

    /// Sample by sample, what was made of it less what it was.
    std::vector<double> GetChange(std::size_t channel = 0) const
    {
        std::vector<double> change(recording[channel].size());
        for (std::size_t i = 0; i < change.size(); ++i) {
            change[i] = static_cast<double>(result[channel][i]) -
                        static_cast<double>(recording[channel][i]);
        }
        return change;
    }

    Audio recording;
    Audio result;
    RenderRecord record{};
    uint32_t answer = 0;
    std::map<int64_t, uint32_t> written; // frames from each place on
    std::vector<double> done;
    std::vector<std::string> texts;
    std::vector<DetectionRecord> repairs;
    int readsLeft = std::numeric_limits<int>::max(); // until one fails
    int writesLeft = std::numeric_limits<int>::max();
    std::function<uint32_t()> onProgress = [] { return 0U; };

private:
    static uint32_t Read(void* refcon, int64_t position, uint32_t frames, float* const* channels)
    {
        auto& self = *static_cast<Rendered*>(refcon);
        EXPECT_GE(position, 0);
        EXPECT_LE(position + frames, self.record.frames);
        for (std::size_t channel = 0; channel < self.recording.size(); ++channel) {
            std::copy_n(self.recording[channel].begin() + position, frames, channels[channel]);
        }
        return self.readsLeft-- > 0 ? 0 : 1;
    }
    static uint32_t
    Write(void* refcon, int64_t position, uint32_t frames, const float* const* channels)
    {
        auto& self = *static_cast<Rendered*>(refcon);
        const auto last = self.written.rbegin();
        EXPECT_TRUE(last == self.written.rend() || last->first + last->second <= position);
        self.written[position] = frames;
        for (std::size_t channel = 0; channel < self.recording.size(); ++channel) {
            std::copy_n(channels[channel], frames, self.result[channel].begin() + position);
        }
        return self.writesLeft-- > 0 ? 0 : 1;
    }
    static uint32_t Progress(void* refcon, double done, const char* text)
    {
        auto& self = *static_cast<Rendered*>(refcon);
        self.done.push_back(done);
        self.texts.emplace_back(text);
        return self.onProgress();
    }
};

Audio PlainRun(Instance& instance, const Audio& recording)
{
    const uint32_t latency = instance.Latency();
    Audio audio = recording;
    for (auto& channel : audio) {
        channel.resize(channel.size() + latency);
    }
    instance.Settle();
    instance.Run(audio, 777);
    for (auto& channel : audio) {
        channel.erase(channel.begin(), channel.begin() + latency);
    }
    return audio;
}

/// Where most is changed, in frames.
int64_t FindLoudest(const std::vector<double>& change)
{
    const auto loudest = std::max_element(
        change.begin(), change.end(), [](double a, double b) { return std::abs(a) < std::abs(b); });
    return loudest - change.begin();
}

double Energy(const std::vector<double>& samples)
{
    double sum = 0;
    for (const double sample : samples) {
        sum += sample * sample;
    }
    return sum;
}

/// By frequencies well above `hertz`: high-passes of first order, one behind the other.
double EnergyAbove(std::vector<double> samples, double hertz)
{
    const double keep = std::exp(-2 * std::numbers::pi * hertz / static_cast<double>(Rate));
    for (int pass = 0; pass < 4; ++pass) {
        double before = 0;
        double made = 0;
        for (double& sample : samples) {
            made = keep * (made + sample - before);
            before = std::exchange(sample, made);
        }
    }
    return Energy(samples);
}

/// A recording, what the running effect makes of it, and where it changes most.
class RenderTest : public testing::Test {
protected:
    RenderTest()
    {
        instance.Set(Strength, 0.9F);
        instance.Set(Sensitivity, 0.8F);
        const Audio plain = PlainRun(instance, recording);
        Rendered run(recording);
        run.result = plain;
        whole = run.GetChange();
        loudest = FindLoudest(whole);
        EXPECT_GT(std::abs(whole[static_cast<std::size_t>(loudest)]), 1e-3);
    }

    RenderRegionRecord Around(int64_t centre, int64_t reach, float low = 0, float high = 0) const
    {
        return {std::max<int64_t>(centre - reach, 0), centre + reach - 1, low, high};
    }

    const Audio recording = MakeSpeechLike(2, Frames, Rate);
    Instance instance{Rate, 2};
    std::vector<double> whole; // the running effect's change
    int64_t loudest = 0;
};

TEST_F(RenderTest, ARegionOverAllOfItIsWhatTheRunningEffectMakes)
{
    Rendered run(recording);
    EXPECT_EQ(run.Run(instance.Get(), {{0, Frames - 1, 0, 0}}).result, RenderDone);
    EXPECT_EQ(run.answer, PluginCoreSuccess);
    EXPECT_EQ(run.record.message, std::string());
    EXPECT_EQ(run.result, PlainRun(instance, recording));
    EXPECT_EQ(2 * run.repairs.size(), instance.Detections()); // of two runs
    EXPECT_GT(run.record.hops, 0U);
    EXPECT_GT(run.record.bandEnergy, 0);
    EXPECT_TRUE(std::is_sorted(run.done.begin(), run.done.end()));
    EXPECT_EQ(run.done.back(), 1);
    EXPECT_EQ(run.texts.front(), "Initializing crossover");
    EXPECT_EQ(run.texts.back(), "Running Puffguard");
}

TEST_F(RenderTest, RegionsFarApartAreRenderedEachAsIfItWereAlone)
{
    const std::array regions = {Around(loudest, 1600),
                                Around((loudest + 6 * 16000) % Frames, 4000)};
    Rendered both(recording);
    EXPECT_EQ(both.Run(instance.Get(), {regions[1], regions[0]}).result, RenderDone);
    Audio expected = recording;
    for (const RenderRegionRecord& region : regions) {
        Rendered one(recording);
        one.Run(instance.Get(), {region});
        for (const auto& [begin, count] : one.written) {
            EXPECT_GE(begin, region.first - 80); // half of 10 ms
            EXPECT_LE(begin + count, region.last + 1 + 80);
            for (std::size_t channel = 0; channel < expected.size(); ++channel) {
                std::copy_n(
                    one.result[channel].begin() + begin, count, expected[channel].begin() + begin);
            }
        }
    }
    EXPECT_EQ(both.result, expected);
    // Led up to by two seconds, it repairs there about what it repairs when it has always run.
    const auto part = [&](std::vector<double> change) {
        const auto first = change.begin() + regions[0].first;
        return Energy({first, first + 3200});
    };
    EXPECT_NEAR(part(both.GetChange()) / part(whole), 1, 0.3);
    EXPECT_TRUE(std::is_sorted(both.done.begin(), both.done.end()));
    EXPECT_EQ(both.done.back(), 1);
    EXPECT_NE(std::find(both.texts.begin(), both.texts.end(), "Running Puffguard (region 1/2)"),
              both.texts.end());
    EXPECT_EQ(both.texts.back(), "Running Puffguard (region 2/2)");
}

TEST_F(RenderTest, EdgesInTheMiddleOfARepairHaveNoStep)
{
    const RenderRegionRecord region = Around(loudest + 400, 400);
    Rendered hard(recording);
    hard.record.fadeMilliseconds = 0;
    hard.Run(instance.Get(), {region});
    Rendered faded(recording);
    faded.Run(instance.Get(), {region});
    const auto first = static_cast<std::size_t>(region.first - 80);
    const auto last = static_cast<std::size_t>(region.last + 80);
    const std::vector<double> change = faded.GetChange();
    EXPECT_LT(std::abs(change[first]), 1e-4 * std::abs(whole[first]) + 1e-9);
    EXPECT_LT(std::abs(change[last]), 1e-4 * std::abs(whole[last]) + 1e-9);
    EXPECT_EQ(change[first - 1], 0);
    EXPECT_EQ(change[last + 1], 0);
    EXPECT_LT(EnergyAbove(change, 1000), 1e-4 * EnergyAbove(hard.GetChange(), 1000));
    // Beyond the fade it's what it is without one.
    EXPECT_EQ(faded.result[0][first + 200], hard.result[0][first + 200]);
}

TEST_F(RenderTest, ABandIsRepairedAndNothingBesideIt)
{
    Rendered all(recording);
    all.Run(instance.Get(), {Around(loudest, 4000)});
    Rendered band(recording);
    EXPECT_EQ(band.Run(instance.Get(), {Around(loudest, 4000, 0, 90)}).result, RenderDone);
    const std::vector<double> change = band.GetChange();
    EXPECT_GT(Energy(change), 0.3 * Energy(all.GetChange()));
    EXPECT_LT(EnergyAbove(change, 400),
              1e-3 * EnergyAbove(all.GetChange(), 400) + 1e-6 * Energy(change));
    EXPECT_TRUE(std::any_of(band.repairs.begin(), band.repairs.end(), [&](const auto& repair) {
        return std::abs(repair.centre - loudest) < 800;
    }));
    // Where it is too high for any repair, all is as it was: to the bit, not to some rounding.
    Rendered high(recording);
    EXPECT_EQ(high.Run(instance.Get(), {Around(loudest, 4000, 3000, 5000)}).result, RenderDone);
    EXPECT_FALSE(high.written.empty());
    EXPECT_EQ(high.result, recording);
    // In a region of two boxes, each has its own band for as long as it lasts.
    Rendered two(recording);
    two.Run(instance.Get(),
            {Around(loudest - 3000, 5000, 3000, 5000), Around(loudest + 4000, 2000, 0, 90)});
    EXPECT_LT(Energy(two.GetChange()), 0.01 * Energy(change));
    // Two bands side by side are one region, 1 Hz apart or not.
    for (const float low : {90.0F, 89.0F}) {
        Rendered joined(recording);
        joined.Run(instance.Get(), {Around(loudest, 4000, 0, 90), Around(loudest, 4000, low, 200)});
        EXPECT_EQ(joined.record.result, RenderDone);
        EXPECT_GT(Energy(joined.GetChange()), 0.3 * Energy(all.GetChange()));
    }
}

TEST_F(RenderTest, WhatCannotBeDoneSaysWhyAndLeavesNothingLocked)
{
    const auto expect = [&](const RenderRegionRecord& region, uint32_t result, const char* reason) {
        Rendered run(recording);
        run.Run(instance.Get(), {Around(loudest, 800), region});
        EXPECT_EQ(run.record.result, result);
        EXPECT_EQ(run.record.failedRegion, result == RenderBadRegion ? 1U : 0U);
        EXPECT_NE(std::string(run.record.message).find(reason), std::string::npos)
            << run.record.message;
        EXPECT_EQ(run.written.empty(), result == RenderBadRegion);
    };
    expect({100, 99, 0, 0}, RenderBadRegion, "Region 2 is empty");
    expect({Frames, Frames + 5, 0, 0}, RenderBadRegion, "outside of the recording");
    expect({-9, -1, 0, 0}, RenderBadRegion, "outside of the recording");
    expect({100, 900, 200, 100}, RenderBadRegion, "no frequencies");
    expect({100, 900, NAN, 100}, RenderBadRegion, "no frequencies");
    expect({100, 900, Rate / 2, 0}, RenderBadRegion, "above half the sample rate");
    // These are good: a sample, partly outside, above Nyquist, a hertz.
    for (const RenderRegionRecord region : {RenderRegionRecord{100, 100, 0, 0},
                                            RenderRegionRecord{-50, 5000, 0, 0},
                                            RenderRegionRecord{Frames - 10, Frames + 10, 0, 0},
                                            RenderRegionRecord{9000, 9900, 100, 1e6F},
                                            RenderRegionRecord{9000, 9000, 100, 101}}) {
        expect(region, RenderDone, "");
    }
    const auto runWith = [&](const std::function<void(Rendered&)>& prepare) {
        Rendered run(recording);
        prepare(run);
        return run.Run(instance.Get(), {{100, Frames - 1, 0, 0}}).result;
    };
    EXPECT_EQ(runWith([](Rendered& run) { run.readsLeft = 0; }), RenderSourceFailed);
    EXPECT_EQ(runWith([](Rendered& run) { run.readsLeft = 1; }), RenderSourceFailed);
    EXPECT_EQ(runWith([](Rendered& run) { run.writesLeft = 1; }), RenderSinkFailed);
    EXPECT_EQ(runWith([](Rendered& run) { run.record.fadeMilliseconds = NAN; }), RenderFailed);
    for (const std::size_t block : {0U, 1U, 20U, 40U}) {
        EXPECT_EQ(runWith([&](Rendered& run) {
                      run.onProgress = [&run, block] { return run.done.size() > block ? 1U : 0U; };
                  }),
                  RenderCancelled);
    }
    EXPECT_EQ(runWith([&](Rendered& run) {
                  run.onProgress = [&] {
                      Rendered nested(recording);
                      EXPECT_EQ(nested.Run(instance.Get(), {}).result, RenderBusy);
                      instance.SetFormat(48000.0F, LayoutOf(2)); // holds both locks
                      return 0U;
                  };
              }),
              RenderStopped);
    instance.SetFormat(Rate, LayoutOf(2));
    Rendered broken(recording);
    broken.recording[0][static_cast<std::size_t>(loudest)] = NAN;
    EXPECT_EQ(broken.Run(instance.Get(), {Around(loudest, 800)}).result, RenderDone);
    EXPECT_FALSE(std::isnan(broken.result[0][static_cast<std::size_t>(loudest)]));
    RenderRecord record{};
    record.recordBytes = sizeof record + 8;
    HostMessageRecord message{PLUGIN_CORE_MESSAGE_RENDER, sizeof record, &record};
    EXPECT_EQ(Call(SelectorHostMessage, UI, instance.Get(), &message), PluginCoreUnsupported);
    EXPECT_EQ(Call(SelectorHostMessage, Process, instance.Get(), &message), PluginCoreUnsupported);
    message.length = 8;
    EXPECT_EQ(Call(SelectorHostMessage, UI, instance.Get(), &message), PluginCoreUnsupported);
    EXPECT_EQ(Rendered(recording).Run(instance.Get(), {}).result, RenderDone);
}

TEST_F(RenderTest, TenThousandRegionsAreOneWhereTheyTouch)
{
    std::vector<RenderRegionRecord> regions;
    for (int64_t i = 0; i < 10000; ++i) {
        regions.push_back({(i * 7919) % 10000 * 19, (i * 7919) % 10000 * 19 + 18, 0, 0});
    }
    regions.push_back({190000, Frames - 1, 0, 0});
    Rendered run(recording);
    EXPECT_EQ(run.Run(instance.Get(), regions).result, RenderDone);
    EXPECT_EQ(run.result, PlainRun(instance, recording));
}

TEST_F(RenderTest, AudioGoesOnMeanwhileAsIfNothingHappened)
{
    Audio audio = recording;
    Audio expected = recording;
    Instance other(Rate, 2);
    other.Set(Strength, 0.9F);
    other.Set(Sensitivity, 0.8F);
    other.Settle();
    other.Run(expected, 512);
    instance.Settle();
    Rendered run(recording);
    uint32_t begin = 0;
    run.onProgress = [&] {
        const uint32_t frames = std::min(512U, Frames - begin);
        instance.RunBlock(audio, begin, frames);
        begin += frames;
        return begin < Frames ? 0U : 1U;
    };
    run.Run(instance.Get(), {{0, Frames - 1, 0, 0}});
    while (begin < Frames) {
        run.onProgress();
    }
    EXPECT_EQ(audio, expected);
    // The bypass leaves nothing to render.
    instance.Set(GlobalBypass, 1);
    Rendered bypassed(recording);
    EXPECT_EQ(bypassed.Run(instance.Get(), {{0, Frames - 1, 0, 0}}).result, RenderDone);
    EXPECT_TRUE(bypassed.written.empty());
}

TEST(RenderEnd, AnInstanceThatEndsWaitsForItsRendering)
{
    auto instance = std::make_unique<Instance>(Rate, 1U);
    Rendered run(MakeSpeechLike(1, Frames, Rate));
    std::promise<void> begun;
    std::thread renderer([&] {
        run.onProgress = [&, isFirst = true]() mutable {
            if (std::exchange(isFirst, false)) {
                begun.set_value();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1)); // goes on until it's stopped
            return 0U;
        };
        run.Run(instance->Get(), {{0, Frames - 1, 0, 0}});
    });
    begun.get_future().wait();
    instance.reset();
    EXPECT_EQ(run.record.result, RenderStopped);
    renderer.join();
}

} // namespace

// SPDX-License-Identifier: ISC
#include "wrappers/cli/page/ClipRecorder.h"
#include "wrappers/cli/page/Template.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

namespace {

using Cli::ClipRecorder;

// A recording whose samples say where they are, so that each clip shows what it is of: `before`
// counts up in steps of 16 bits, `after` down; the second channel is half of the first.
class Recording {
public:
    Recording(int sampleRate, int channels, double seconds)
    {
        const auto frames = static_cast<int64_t>(sampleRate * seconds);
        for (int64_t i = 0; i < frames; ++i) {
            for (int channel = 0; channel < channels; ++channel) {
                before.push_back(StepAt(i, channel));
                after.push_back(-before.back());
            }
        }
    }

    static double StepAt(int64_t frame, int channel)
    {
        return static_cast<double>(frame % 16000 * 2) / 32768.0 / (channel + 1);
    }

    void Feed(ClipRecorder& clips, size_t block) const
    {
        for (size_t i = 0; i < before.size(); i += block) {
            const size_t count = std::min(block, before.size() - i);
            clips.Add(std::span(before).subspan(i, count), std::span(after).subspan(i, count));
        }
        clips.Finish();
    }

    std::vector<double> before;
    std::vector<double> after;
};

TEST(ClipRecorderTest, AClipHoldsWhatTheRecordingHasThereWhateverTheBlocks)
{
    for (const size_t block : {size_t{2}, size_t{1202}, size_t{400000}}) {
        ClipRecorder clips(44100, 2);
        clips.Want({7, 2.0, 2.2, 1.0});
        clips.Want({8, 0.1, 0.2, 1.0}); // begins before the recording
        clips.Want({9, 3.9, 4.0, 1.0}); // ends behind it
        Recording(44100, 2, 4.0).Feed(clips, block);
        // The first is whole; the others lose what would lie outside.
        for (const auto& [event, seconds] :
             std::map<uint64_t, double>{{7, 1.1}, {8, 0.65}, {9, 0.55}}) {
            const auto clip = clips.Read(event, {});
            ASSERT_TRUE(clip.has_value());
            ASSERT_EQ(clip->before.size(), clip->after.size());
            EXPECT_EQ(clip->sampleRate, 44100.0);
            const auto first = static_cast<int64_t>(std::lround(clip->start * 44100));
            const auto frames = static_cast<int64_t>(clip->before.size() / 2);
            EXPECT_NEAR(static_cast<double>(frames) / 44100, seconds, 1e-3) << event;
            for (int64_t i = 0; i < frames; ++i) {
                const auto at = static_cast<size_t>(2 * i);
                const double step = Recording::StepAt(first + i, 0) * 32768;
                ASSERT_EQ(clip->before[at], step);
                ASSERT_EQ(clip->before[at + 1], step / 2);
                ASSERT_EQ(clip->after[at], -step);
            }
        }
        EXPECT_FALSE(clips.Has(1));
        EXPECT_FALSE(clips.Read(1, {}).has_value());
    }
}

TEST(ClipRecorderTest, TheStrongestAreKeptInAFixedRoom)
{
    ClipRecorder clips(192000, 2);
    std::vector<uint64_t> kept;
    // The strengths are a permutation of 0 to 129, so that 30 to 129 are the strongest 100; the
    // spans are longer than any clip.
    for (uint64_t i = 0; i < 130; ++i) {
        const uint64_t strength = i * 37 % 130;
        const double start = static_cast<double>(i) * 0.01;
        clips.Want({i, start, start + 5, static_cast<double>(strength)});
        if (strength >= 30) {
            kept.push_back(i);
        }
    }
    Recording(192000, 2, 5.2).Feed(clips, 8192);
    for (uint64_t i = 0; i < 130; ++i) {
        EXPECT_EQ(clips.Has(i), std::find(kept.begin(), kept.end(), i) != kept.end()) << i;
    }
    constexpr size_t Room = 13'500'000;
    const auto quality = clips.ChooseQuality(kept, Room);
    size_t bytes = 0;
    for (const uint64_t event : kept) {
        const auto clip = clips.Read(event, quality);
        bytes += 2 * (clip->before.size() + clip->after.size());
        EXPECT_EQ(clip->sampleRate, 24000.0);
        EXPECT_EQ(clip->channels, 1);
    }
    EXPECT_LE(bytes, Room);
    const auto few = clips.ChooseQuality(std::span(kept).first(10), Room);
    EXPECT_EQ(clips.Read(kept.front(), few)->sampleRate, 48000.0);
    EXPECT_EQ(clips.Read(kept.front(), few)->channels, 2);
}

TEST(ClipRecorderTest, ALowerRateKeepsSpeechAndLosesWhatWouldFold)
{
    // Theory: half of full scale has an effective value of 0.5 / sqrt(2) where the low-pass passes,
    // and next to nothing far above half of 24 kHz.
    for (const double hertz : {200.0, 8000.0, 20000.0}) {
        ClipRecorder clips(96000, 1);
        clips.Want({0, 1.0, 1.1, 1.0});
        std::vector<double> sine(192000);
        for (size_t i = 0; i < sine.size(); ++i) {
            sine[i] = 0.5 * std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / 96000);
        }
        clips.Add(sine, sine);
        clips.Finish();
        const auto clip = clips.Read(0, {2, true});
        double sum = 0;
        const size_t edge = 100; // the low-pass reaches beyond the clip there
        for (size_t i = edge; i < clip->after.size() - edge; ++i) {
            sum += std::pow(clip->after[i] / 32768.0, 2);
        }
        const double value = std::sqrt(sum / static_cast<double>(clip->after.size() - 2 * edge));
        EXPECT_NEAR(value, hertz < 10000 ? 0.5 / std::numbers::sqrt2 : 0.0, 1e-3) << hertz;
    }
}

TEST(TemplateTest, NoTextEndsWhatItStandsIn)
{
    EXPECT_EQ(Cli::EscapeHtml(R"(<a href="x">'&')"), "&lt;a href=&quot;x&quot;&gt;&#39;&amp;&#39;");
    EXPECT_EQ(Cli::EscapeScript(R"(["</script><!--"])"), R"(["\u003c/script>\u003c!--"])");
    std::string page;
    const std::string title = "{{data}}"; // what is filled in isn't filled again
    Cli::FillTemplate("clip.html",
                      {{"number", [&](const Cli::TextSink& sink) { sink("7"); }},
                       {"clip", [&](const Cli::TextSink& sink) { sink(title); }}},
                      [&](std::string_view text) { page += text; });
    EXPECT_NE(page.find("id=\"clip-7\">{{data}}</script>"), std::string::npos) << page;
}

} // namespace

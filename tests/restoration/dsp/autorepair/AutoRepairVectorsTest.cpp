// SPDX-License-Identifier: ISC
// Finds and repairs recordings for which an independent calculation, in double precision and at the
// recording's own rate, has left its scores, candidates and changes.
#include "restoration/dsp/autorepair/KeepRule.h"
#include "restoration/dsp/autorepair/PopFinder.h"
#include "restoration/dsp/autorepair/SpanRepair.h"
#include "tests/restoration/dsp/autorepair/MemoryStore.h"
#include "tests/support/AudioFile.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using namespace AutoRepair;

constexpr double LargestScoreError = 0.01;
constexpr double LargestKeepError = 0.01;
const double LargestChange = std::pow(10.0, -90.0 / 20); // -90 dBFS
// Times in the vectors have four decimals: half a step beside the one sample.
constexpr double TimeRounding = 0.5e-4;

using Audio = Support::AudioFile;

Findings Find(const Audio& audio)
{
    Support::MemoryStore store;
    PopFinder finder(audio.sampleRate, audio.channels, store);
    finder.Push(audio.samples);
    return finder.Finish();
}

struct Outcome {
    std::vector<double> keep;
    std::vector<bool> isPop;
    std::vector<double> change; // as long as the recording
};

Outcome Repair(const Audio& audio, const Findings& findings)
{
    SpanRepair repair(audio.sampleRate, audio.channels);
    Outcome outcome;
    outcome.change.resize(audio.samples.size());
    std::vector<Change> changes;
    KeepRule rule(0);
    for (const Candidate& candidate : findings.candidates) {
        changes.push_back(repair.Compute(candidate.span, {0, audio.samples}));
        outcome.keep.push_back(
            GetKeep(candidate, changes.back().removed - findings.scale.speechLevel));
        rule.Count(outcome.keep.back());
    }
    const auto channels = static_cast<std::size_t>(audio.channels);
    const std::size_t frames = audio.samples.size() / channels;
    const double seconds = static_cast<double>(frames) / audio.sampleRate;
    for (std::size_t i = 0; i < changes.size(); ++i) {
        outcome.isPop.push_back(outcome.keep[i] > rule.GetThreshold(seconds));
        const std::ptrdiff_t offset = changes[i].first * audio.channels;
        for (std::size_t j = 0; outcome.isPop[i] && j < changes[i].samples.size(); ++j) {
            const std::ptrdiff_t place = offset + static_cast<std::ptrdiff_t>(j);
            if (place >= 0 && place < static_cast<std::ptrdiff_t>(outcome.change.size())) {
                outcome.change[static_cast<std::size_t>(place)] += changes[i].samples[j];
            }
        }
    }
    return outcome;
}

double CompareScores(const ScoreTrack& track, const nlohmann::json& vector)
{
    const auto expected = vector.at("score").get<std::vector<double>>();
    EXPECT_EQ(track.score.size(), expected.size());
    double worst = 0;
    for (std::size_t i = 0; i < std::min(expected.size(), track.score.size()); ++i) {
        worst = std::max(worst, std::abs(static_cast<double>(track.score[i]) - expected[i]));
    }
    return worst;
}

void CompareVector(const fs::path& path, const fs::path& recordings)
{
    const nlohmann::json vector = nlohmann::json::parse(std::ifstream(path));
    const Audio audio = Support::ReadAudio(recordings / vector.at("recording").get<std::string>());
    const Findings findings = Find(audio);
    EXPECT_NEAR(findings.scale.speechLevel, vector.at("speechLevelDb").get<double>(), 0.01);
    const double scoreError = CompareScores(findings.track, vector);
    EXPECT_LE(scoreError, LargestScoreError);

    const auto& events = vector.at("events");
    ASSERT_EQ(findings.candidates.size(), events.size());
    const Outcome outcome = Repair(audio, findings);
    const double oneSample = 1.0 / audio.sampleRate + TimeRounding;
    double keepError = 0;
    for (std::size_t i = 0; i < events.size(); ++i) {
        EXPECT_NEAR(findings.candidates[i].span.start, events[i].at("start"), oneSample);
        EXPECT_NEAR(findings.candidates[i].span.end, events[i].at("end"), oneSample);
        EXPECT_EQ(outcome.isPop[i], events[i].at("pop").get<bool>());
        keepError =
            std::max(keepError, std::abs(outcome.keep[i] - events[i].at("keep").get<double>()));
    }
    EXPECT_LE(keepError, LargestKeepError);

    fs::path changePath = path;
    const Audio expected = Support::ReadAudio(changePath.replace_extension("change.flac"));
    ASSERT_EQ(expected.samples.size(), outcome.change.size());
    double changeError = 0;
    for (std::size_t i = 0; i < expected.samples.size(); ++i) {
        changeError = std::max(changeError, std::abs(expected.samples[i] - outcome.change[i]));
    }
    EXPECT_LE(changeError, LargestChange);
    std::printf("%s: score within %.5f, keep %.5f, change %.1f dBFS\n",
                path.stem().c_str(),
                scoreError,
                keepError,
                20 * std::log10(changeError + 1e-12));
}

TEST(AutoRepairVectors, ScoresDecisionsAndChangesAreThoseOfTheIndependentCalculation)
{
    const fs::path material = PUFFGUARD_MATERIAL;
    if (!fs::exists(material / "auto/vectors")) {
        GTEST_SKIP() << "no vectors in " << material;
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(material / "auto/vectors")) {
        if (entry.path().extension() == ".json") {
            SCOPED_TRACE(entry.path().string());
            CompareVector(entry.path(), material / "audio");
        }
    }
}

} // namespace

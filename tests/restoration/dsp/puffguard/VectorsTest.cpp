// SPDX-License-Identifier: ISC
// Runs the element over recordings for which an independent calculation has left its detections and
// its output. The limits are those that rounding of the last bit stays below by a wide margin.
#include "restoration/dsp/puffguard/PuffGuard.h"
#include "tests/support/AudioFile.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;
using DSP::Context;
using DSP::Shared::PuffGuard;

// Severity is a difference to 1, divided by 24: close to 0, a detection value within its own limit
// is worth more than this. The file has six decimals.
constexpr double LargestSeverityError = 1e-3;  // relative
constexpr double LargestDetectionError = 1e-4; // of the larger of value and threshold
constexpr double LargestPitchError = 0.005;    // relative
constexpr double LeastPitchAgreement = 0.98;   // of the hops
constexpr double LargestRmsError = -100;       // dBFS
constexpr double LargestPeakError = -70;       // dBFS

struct Audio {
    std::vector<std::vector<float>> channels;
    int sampleRate = 0;

    std::size_t GetFrames() const { return channels.front().size(); }
};

Audio ReadAudio(const fs::path& path)
{
    const Support::AudioFile file = Support::ReadAudio(path.string());
    const auto count = static_cast<std::size_t>(file.channels);
    Audio audio{std::vector<std::vector<float>>(count), file.sampleRate};
    for (std::size_t i = 0; i < file.samples.size(); ++i) {
        audio.channels[i % count].push_back(static_cast<float>(file.samples[i]));
    }
    return audio;
}

/// What the element has given for one recording.
struct Outcome {
    std::vector<PuffGuard::FrameReport> hops;
    std::vector<DetectionRecord> repairs;
    Audio output; // lined up with the input
    uint32_t latency = 0;
};

void SetParams(PuffGuard& element, const nlohmann::json& params)
{
    const auto set = [&](uint32_t index, const char* name) {
        element.SetFloatValue(index, params.at(name).get<float>(), Context::Process, {});
    };
    set(PuffGuard::Sensitivity, "sensitivity");
    set(PuffGuard::Strength, "strength");
    set(PuffGuard::FrequencyLimit, "upperFrequency");
    set(PuffGuard::LatencyScaling, "latencyScaling");
}

Outcome RunElement(const Audio& input, const nlohmann::json& params)
{
    Support::TestElementHost host;
    DSP::DetectionLog log;
    const uint32_t layout = input.channels.size() == 1 ? 0 : 1;
    PuffGuard element({host, static_cast<float>(input.sampleRate), layout}, log);
    SetParams(element, params);
    element.Reset();

    Outcome outcome;
    outcome.latency = element.GetLatency(Context::Process);
    outcome.output.sampleRate = input.sampleRate;
    const std::size_t hop = element.GetHop();
    // What a hop has shown is known by the end of the next one.
    const std::size_t total = (input.GetFrames() + outcome.latency + 2 * hop - 1) / hop * hop;
    Audio audio = input;
    for (std::vector<float>& channel : audio.channels) {
        channel.resize(total);
    }
    uint32_t position = 0;
    for (std::size_t done = 0; done < total; done += hop) {
        std::vector<float*> pointers;
        for (std::vector<float>& channel : audio.channels) {
            pointers.push_back(channel.data() + done);
        }
        element.Process(static_cast<uint32_t>(hop), pointers.data());
        if (done > 0) {
            outcome.hops.push_back(element.GetLatest());
        }
        DetectionRecord record;
        while (log.Read(position, {&record, 1}) > 0) {
            outcome.repairs.push_back(record);
        }
    }
    for (const std::vector<float>& channel : audio.channels) {
        const auto start = channel.begin() + outcome.latency;
        outcome.output.channels.emplace_back(
            start, start + static_cast<std::ptrdiff_t>(input.GetFrames()));
    }
    return outcome;
}

double ToDecibels(double value)
{
    return value > 0 ? 20 * std::log10(value) : -200.0;
}

void CompareHops(const Outcome& outcome, const nlohmann::json& vector)
{
    const auto& detections = vector.at("detectionPerHop");
    const auto& pitches = vector.at("pitchPerHop");
    ASSERT_GE(outcome.hops.size(), detections.size());
    double largestError = 0;
    std::size_t agreeing = 0;
    for (std::size_t i = 0; i < detections.size(); ++i) {
        const PuffGuard::FrameReport& hop = outcome.hops[i];
        const double wanted = detections[i].get<double>();
        const double scale = std::max({std::abs(wanted), double{hop.threshold}, 1e-30});
        largestError = std::max(largestError, std::abs(double{hop.detection} - wanted) / scale);
        const double pitch = pitches[i].get<double>();
        // The file has two decimals.
        const double allowed = LargestPitchError * pitch + (pitch > 0 ? 0.005 : 0.0);
        agreeing += std::abs(double{hop.pitchHz} - pitch) <= allowed ? 1U : 0U;
    }
    EXPECT_LE(largestError, LargestDetectionError);
    EXPECT_GE(static_cast<double>(agreeing),
              LeastPitchAgreement * static_cast<double>(detections.size()));
}

void CompareEvents(const Outcome& outcome, const nlohmann::json& vector)
{
    const auto& events = vector.at("events");
    const double rate = vector.at("sampleRate").get<double>();
    ASSERT_EQ(outcome.repairs.size(), events.size());
    for (std::size_t i = 0; i < events.size(); ++i) {
        SCOPED_TRACE("event " + std::to_string(i));
        const DetectionRecord& made = outcome.repairs[i];
        const auto& wanted = events[i];
        EXPECT_EQ(made.hop, wanted.at("frame").get<uint32_t>());
        EXPECT_EQ(made.regionStart, wanted.at("regionStart").get<uint32_t>());
        EXPECT_EQ(made.regionEnd, wanted.at("regionEnd").get<uint32_t>());
        EXPECT_EQ(made.repairedBins, wanted.at("B").get<uint32_t>());
        EXPECT_NEAR(static_cast<double>(made.centre) / rate,
                    wanted.at("centreTimeSeconds").get<double>(),
                    1e-6);
        const double severity = wanted.at("severity").get<double>();
        EXPECT_NEAR(double{made.severity},
                    severity,
                    std::max(LargestSeverityError * severity,
                             LargestDetectionError * (1 + 24 * severity) / 24 + 5e-7));
        const double f0 = wanted.at("voiced").get<bool>() ? wanted.at("f0").get<double>() : 0.0;
        EXPECT_NEAR(double{made.pitchHz}, f0, LargestPitchError * f0 + 0.005);
    }
}

void CompareAudio(const Outcome& outcome, const Audio& wanted)
{
    double square = 0;
    double peak = 0;
    ASSERT_EQ(outcome.output.channels.size(), wanted.channels.size());
    ASSERT_EQ(outcome.output.GetFrames(), wanted.GetFrames());
    for (std::size_t channel = 0; channel < wanted.channels.size(); ++channel) {
        for (std::size_t i = 0; i < wanted.GetFrames(); ++i) {
            const double error = std::abs(double{outcome.output.channels[channel][i]} -
                                          double{wanted.channels[channel][i]});
            square += error * error;
            peak = std::max(peak, error);
        }
    }
    const double count =
        static_cast<double>(wanted.GetFrames()) * static_cast<double>(wanted.channels.size());
    EXPECT_LE(ToDecibels(std::sqrt(square / count)), LargestRmsError);
    EXPECT_LE(ToDecibels(peak), LargestPeakError);
}

void CompareVector(const fs::path& path, const fs::path& recordings)
{
    const nlohmann::json vector = nlohmann::json::parse(std::ifstream(path));
    const Outcome outcome = RunElement(
        ReadAudio(recordings / vector.at("input").get<std::string>()), vector.at("parameters"));
    EXPECT_EQ(outcome.latency, vector.at("latency").get<uint32_t>());
    CompareHops(outcome, vector);
    CompareEvents(outcome, vector);
    CompareAudio(outcome, ReadAudio(fs::path(path).replace_extension("out.flac")));
}

TEST(Vectors, DetectionsAndAudioAreThoseOfTheIndependentCalculation)
{
    const fs::path material = PUFFGUARD_MATERIAL;
    if (!fs::exists(material / "vectors")) {
        GTEST_SKIP() << "no vectors in " << material;
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(material / "vectors")) {
        if (entry.path().extension() == ".json") {
            SCOPED_TRACE(entry.path().string());
            CompareVector(entry.path(), material / "audio");
        }
    }
}

} // namespace

// SPDX-License-Identifier: ISC
#include "wrappers/cli/report/Events.h"
#include "wrappers/cli/report/Labels.h"
#include "wrappers/cli/run/EventsDocument.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using Cli::Event;
using Cli::MakeEvent;
using Wrapper::Detection;

Detection MakeDetection()
{
    Detection detection;
    detection.centre = 96000;
    detection.start = 94464;
    detection.end = 97536;
    detection.severity = 0.5F;
    detection.pitchHz = 125.0F;
    detection.energyBefore = 1000.0;
    detection.energyAfter = 100.0;
    detection.frames = 9;
    return detection;
}

TEST(EventsTest, TimesAreSamplesOverRateAndDecibelsOfEnergies)
{
    // Reduction: 10 log10(100 / 1000) = -10. Removed: 900 against an average of 1 in each of nine
    // frames: 10 log10(900 / 9) = 20.
    const Event event = MakeEvent(MakeDetection(), {1.0}, 48000);
    EXPECT_DOUBLE_EQ(event.time, 2.0);
    EXPECT_DOUBLE_EQ(event.start, 1.968);
    EXPECT_DOUBLE_EQ(event.end, 2.032);
    EXPECT_NEAR(event.reduction, -10.0, 1e-12);
    EXPECT_NEAR(event.removed, 20.0, 1e-12);
    EXPECT_EQ(event.pitch, 125.0);
    // Prominent is what takes out half of the average: 900 over nine frames of 200 each.
    EXPECT_TRUE(MakeEvent(MakeDetection(), {200.0}, 48000).isProminent);
    EXPECT_FALSE(MakeEvent(MakeDetection(), {200.1}, 48000).isProminent);
}

TEST(EventsTest, StaysFiniteWhereThereIsNothing)
{
    Detection silent = MakeDetection();
    silent.energyBefore = silent.energyAfter = 0;
    EXPECT_EQ(MakeEvent(silent, {1.0}, 48000).reduction, 0.0);
    EXPECT_EQ(MakeEvent(silent, {1.0}, 48000).removed, Cli::LeastDecibel);
    Detection erased = MakeDetection();
    erased.energyAfter = 0;
    EXPECT_EQ(MakeEvent(erased, {1.0}, 48000).reduction, Cli::LeastDecibel);
    Detection empty = MakeDetection();
    empty.frames = 0;
    EXPECT_EQ(MakeEvent(empty, {1.0}, 48000).removed, Cli::LeastDecibel);
    EXPECT_EQ(MakeEvent(MakeDetection(), Cli::AverageOf({}), 48000).removed, Cli::LeastDecibel);
}

TEST(EventsTest, UnvoicedHasNoPitch)
{
    Detection detection = MakeDetection();
    detection.pitchHz = 0;
    const auto json = nlohmann::json::parse(Cli::EventJson(MakeEvent(detection, {1.0}, 48000)));
    EXPECT_TRUE(json["pitch"].is_null());
    EXPECT_FALSE(json["voiced"].get<bool>());
}

TEST(EventsTest, LabelsAreInSecondsAndNeverBeforeTheRecording)
{
    Detection detection = MakeDetection();
    EXPECT_EQ(Cli::LabelLine(MakeEvent(detection, {1.0}, 48000)),
              "1.968000\t2.032000\tplosive -10.0 dB\n");
    detection.start = -512;
    EXPECT_EQ(Cli::LabelLine(MakeEvent(detection, {1.0}, 48000)),
              "0.000000\t2.032000\tplosive -10.0 dB\n");
}

TEST(EventsTest, SpoolGivesBackWhatItTookInOrder)
{
    Cli::EventSpool spool;
    for (uint32_t i = 0; i < 1000; i += 8) {
        std::vector<Detection> some(8);
        for (uint32_t k = 0; k < 8; ++k) {
            some[k].number = i + k;
        }
        spool.Append(some);
    }
    uint32_t expected = 0;
    spool.ForEach([&](const Detection& detection) { EXPECT_EQ(detection.number, expected++); });
    EXPECT_EQ(expected, 1000U);
}

} // namespace

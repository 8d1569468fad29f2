// SPDX-License-Identifier: ISC
#include "wrappers/cli/Events.h"
#include "wrappers/cli/EventsDocument.h"
#include "wrappers/cli/Labels.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

using Cli::BandAverage;
using Cli::Event;
using Cli::MakeEvent;

DetectionRecord MakeRecord()
{
    DetectionRecord record = {};
    record.centre = 96000;
    record.start = 94464;
    record.end = 97536;
    record.severity = 0.5F;
    record.pitchHz = 125.0F;
    record.energyBefore = 1000.0;
    record.energyAfter = 100.0;
    record.regionStart = 10;
    record.regionEnd = 18; // nine frames
    return record;
}

TEST(EventsTest, TimesAreSamplesOverRate)
{
    const Event event = MakeEvent(MakeRecord(), {1.0}, 48000);
    EXPECT_DOUBLE_EQ(event.time, 2.0);
    EXPECT_DOUBLE_EQ(event.start, 1.968);
    EXPECT_DOUBLE_EQ(event.end, 2.032);
}

TEST(EventsTest, DecibelsAreOfEnergies)
{
    // Reduction: 10 log10(100 / 1000) = -10. Removed: 900 against an average of 1 in each of nine
    // frames: 10 log10(900 / 9) = 20.
    const Event event = MakeEvent(MakeRecord(), {1.0}, 48000);
    EXPECT_NEAR(event.reduction, -10.0, 1e-12);
    EXPECT_NEAR(event.removed, 20.0, 1e-12);
    EXPECT_TRUE(event.isProminent);
}

TEST(EventsTest, HalfOfTheAverageIsProminent)
{
    // 900 taken out over nine frames of 200 each is exactly a half.
    EXPECT_TRUE(MakeEvent(MakeRecord(), {200.0}, 48000).isProminent);
    EXPECT_FALSE(MakeEvent(MakeRecord(), {200.1}, 48000).isProminent);
}

TEST(EventsTest, StaysFiniteWhereThereIsNothing)
{
    DetectionRecord silent = MakeRecord();
    silent.energyBefore = silent.energyAfter = 0;
    EXPECT_EQ(MakeEvent(silent, {1.0}, 48000).reduction, 0.0);
    EXPECT_EQ(MakeEvent(silent, {1.0}, 48000).removed, Cli::leastDecibel);
    DetectionRecord erased = MakeRecord();
    erased.energyAfter = 0;
    EXPECT_EQ(MakeEvent(erased, {1.0}, 48000).reduction, Cli::leastDecibel);
    DetectionRecord empty = MakeRecord();
    empty.regionEnd = empty.regionStart - 1;
    EXPECT_EQ(MakeEvent(empty, {1.0}, 48000).removed, Cli::leastDecibel);
    EXPECT_EQ(MakeEvent(MakeRecord(), Cli::AverageOf({}), 48000).removed, Cli::leastDecibel);
}

TEST(EventsTest, UnvoicedHasNoPitch)
{
    DetectionRecord record = MakeRecord();
    EXPECT_EQ(MakeEvent(record, {1.0}, 48000).pitch, 125.0);
    record.pitchHz = 0;
    const auto json = nlohmann::json::parse(Cli::EventJson(MakeEvent(record, {1.0}, 48000)));
    EXPECT_TRUE(json["pitch"].is_null());
    EXPECT_FALSE(json["voiced"].get<bool>());
}

TEST(EventsTest, LabelsAreInSecondsAndNeverBeforeTheRecording)
{
    DetectionRecord record = MakeRecord();
    EXPECT_EQ(Cli::LabelLine(MakeEvent(record, {1.0}, 48000)),
              "1.968000\t2.032000\tplosive -10.0 dB\n");
    record.start = -512;
    EXPECT_EQ(Cli::LabelLine(MakeEvent(record, {1.0}, 48000)),
              "0.000000\t2.032000\tplosive -10.0 dB\n");
}

TEST(EventsTest, SpoolGivesBackWhatItTookInOrder)
{
    Cli::EventSpool spool;
    for (uint32_t i = 0; i < 1000; i += 8) {
        std::vector<DetectionRecord> some(8);
        for (uint32_t k = 0; k < 8; ++k)
            some[k].number = i + k;
        spool.Append(some);
    }
    uint32_t expected = 0;
    spool.ForEach([&](const DetectionRecord& record) { EXPECT_EQ(record.number, expected++); });
    EXPECT_EQ(expected, 1000U);
}

} // namespace

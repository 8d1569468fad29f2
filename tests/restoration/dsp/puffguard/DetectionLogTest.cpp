// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/DetectionLog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

/// A record whose fields all tell the same number, so that a mixture of two shows.
DetectionRecord MakeRecord(uint32_t number)
{
    DetectionRecord record{};
    record.centre = number;
    record.start = number;
    record.end = number;
    record.severity = static_cast<float>(number);
    record.energyBefore = number;
    record.energyAfter = number;
    record.repairedBins = number;
    return record;
}

bool IsWhole(const DetectionRecord& record)
{
    const uint32_t number = record.number;
    return record.centre == number && record.start == number && record.end == number &&
           record.energyBefore == number && record.energyAfter == number &&
           record.repairedBins == number;
}

class DetectionLogTest : public testing::Test {
protected:
    void Append(uint32_t count)
    {
        for (uint32_t i = 0; i < count; ++i) {
            log->CountHop();
            log->AddEnergy(0.5);
            log->Append(MakeRecord(log->GetNextNumber()));
        }
    }

    std::unique_ptr<DSP::DetectionLog> log = std::make_unique<DSP::DetectionLog>();
    std::array<DetectionRecord, 2048> records{};
};

TEST_F(DetectionLogTest, RecordsComeInOrderAndInPieces)
{
    uint32_t position = 0;
    EXPECT_EQ(log->Read(position, records), 0U);
    Append(5);
    EXPECT_EQ(log->Read(position, std::span(records).first(3)), 3U);
    EXPECT_EQ(position, 3U);
    EXPECT_EQ(records[2].number, 2U);
    EXPECT_EQ(records[2].hop, 2U); // the third hop
    EXPECT_EQ(log->Read(position, records), 2U);
    EXPECT_EQ(records[1].number, 4U);
    EXPECT_EQ(log->Read(position, records), 0U);
    EXPECT_EQ(position, 5U);
    position = 9; // ahead of the log: it waits
    EXPECT_EQ(log->Read(position, records), 0U);
    EXPECT_EQ(position, 9U);
    position = 1; // nothing was removed
    EXPECT_EQ(log->Read(position, records), 4U);
}

TEST_F(DetectionLogTest, OldestAreLostAndTheJumpShows)
{
    Append(DSP::DetectionLog::Capacity + 10);
    uint32_t position = 3;
    EXPECT_EQ(log->Read(position, records), DSP::DetectionLog::Capacity);
    EXPECT_EQ(records[0].number, 10U);
    EXPECT_EQ(records[DSP::DetectionLog::Capacity - 1].number, DSP::DetectionLog::Capacity + 9);
    EXPECT_EQ(position, DSP::DetectionLog::Capacity + 10);
}

TEST_F(DetectionLogTest, TotalsRestartButNumbersGoOn)
{
    Append(3);
    EXPECT_EQ(log->GetTotals().hops, 3U);
    EXPECT_EQ(log->GetTotals().bandEnergy, 1.5);
    log->Restart();
    log->Restart(); // no hop since: the same start
    EXPECT_EQ(log->GetTotals().hops, 0U);
    EXPECT_EQ(log->GetTotals().bandEnergy, 0.0);
    EXPECT_EQ(log->GetTotals().restart, 1U);
    EXPECT_EQ(log->GetTotals().detections, 3U);
    Append(1);
    uint32_t position = 3;
    EXPECT_EQ(log->Read(position, records), 1U);
    EXPECT_EQ(records[0].restart, 1U);
    EXPECT_EQ(records[0].number, 3U);
    EXPECT_EQ(records[0].hop, 0U);
}

TEST_F(DetectionLogTest, ReadersSeeWholeRecordsWhileTheWriterLaps)
{
    // The writer goes round the ring many times; each reader must get rising numbers and no
    // mixture.
    constexpr uint32_t Count = 200000;
    std::atomic<bool> isDone{false};
    std::atomic<int> faults{0};
    std::atomic<uint32_t> seen{0};
    const auto read = [&] {
        uint32_t position = 0;
        std::vector<DetectionRecord> some(64);
        uint32_t last = 0;
        bool isFirst = true;
        while (!isDone.load() || position != log->GetNextNumber()) {
            const uint32_t count = log->Read(position, some);
            for (uint32_t i = 0; i < count; ++i) {
                const bool isRising = isFirst || some[i].number > last;
                const bool isAsked = some[i].number < position;
                faults += IsWhole(some[i]) && isRising && isAsked ? 0 : 1;
                last = some[i].number;
                isFirst = false;
            }
            seen += count;
            const DetectionTotalsRecord totals = log->GetTotals();
            // One repair a hop at 0.5: after a hop was counted, its energy and then its repair may
            // still be missing.
            const auto measured = static_cast<uint64_t>(totals.bandEnergy * 2);
            const bool isInOrder = totals.detections <= measured && measured <= totals.hops;
            faults += isInOrder && totals.hops - totals.detections <= 1 ? 0 : 1;
        }
    };
    std::thread first(read);
    std::thread second(read);
    Append(Count);
    isDone = true;
    first.join();
    second.join();
    EXPECT_EQ(faults.load(), 0);
    EXPECT_GE(seen.load(), 2 * DSP::DetectionLog::Capacity); // at least the last lap, each
}

} // namespace

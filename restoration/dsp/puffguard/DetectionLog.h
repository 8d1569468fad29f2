// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/PublishedRecord.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <span>

namespace DSP {

/// The repairs that an instance has made, by running number, for readers outside the audio thread.
///
/// It holds the latest `Capacity` of them; older ones are overwritten, which a reader sees by a
/// jump of the numbers. Reading removes nothing.
///
/// Threads: one thread at a time writes, [process]; any number of threads read at the same time,
/// [any]. None waits for another.
class DetectionLog {
public:
    static constexpr uint32_t Capacity = 1024;

    /// An empty log; about 90 KiB. [setup]
    DetectionLog();

    /// The repair starts anew: hops and energy count from 0, repairs keep counting. Without a hop
    /// since the last time it is the same start. [process]
    void Restart() noexcept UTIL_NONBLOCKING;

    /// Another hop has come in. [process]
    void CountHop() noexcept UTIL_NONBLOCKING;

    /// What the frame of the hop that was counted last holds: `bandEnergy` as in
    /// DetectionTotalsRecord. [process]
    void AddEnergy(double bandEnergy) noexcept UTIL_NONBLOCKING;

    /// Hops since the last restart. [process]
    uint64_t GetHopCount() const noexcept { return totals.hops; }

    /// Enters a repair made in the hop that was counted last; number, restart and hop are filled in
    /// here. [process]
    void Append(DetectionRecord record) noexcept UTIL_NONBLOCKING;

    /// Copies repairs from number `position` on, oldest first, and moves `position` behind the last
    /// one given; numbers that were overwritten are passed over. Answers how many. [any]
    uint32_t Read(uint32_t& position, std::span<DetectionRecord> target) const noexcept;

    /// Number that the next repair will get. [any]
    uint32_t GetNextNumber() const noexcept;

    /// Sums since the last restart. [any]
    DetectionTotalsRecord GetTotals() const noexcept;

private:
    void PublishTotals() noexcept UTIL_NONBLOCKING;

    DetectionTotalsRecord totals{}; // the writer's own copy
    uint64_t totalsTag = 0;
    PublishedRecord<DetectionTotalsRecord> publishedTotals;
    std::atomic<uint32_t> nextNumber{0};
    std::array<PublishedRecord<DetectionRecord>, Capacity> slots; // a repair's is number % Capacity
};

} // namespace DSP

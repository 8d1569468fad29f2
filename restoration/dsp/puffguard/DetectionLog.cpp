// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/DetectionLog.h"

#include <algorithm>
#include <optional>

namespace DSP {

namespace {

/// Tags are above 0.
uint64_t TagOf(uint32_t number)
{
    return uint64_t{number} + 1;
}

} // namespace

DetectionLog::DetectionLog()
{
    PublishTotals();
}

void DetectionLog::Restart() noexcept UTIL_NONBLOCKING
{
    if (totals.hops == 0) {
        return;
    }
    totals.hops = 0;
    totals.bandEnergy = 0;
    ++totals.restart;
    PublishTotals();
}

void DetectionLog::CountHop() noexcept UTIL_NONBLOCKING
{
    ++totals.hops;
    PublishTotals();
}

void DetectionLog::AddEnergy(double bandEnergy) noexcept UTIL_NONBLOCKING
{
    totals.bandEnergy += bandEnergy;
    PublishTotals();
}

void DetectionLog::PublishTotals() noexcept UTIL_NONBLOCKING
{
    publishedTotals.Store(totals, ++totalsTag);
}

void DetectionLog::Append(DetectionRecord record) noexcept UTIL_NONBLOCKING
{
    const uint32_t number = totals.detections;
    record.number = number;
    record.restart = totals.restart;
    record.hop = static_cast<uint32_t>(totals.hops - 1);
    slots[number % Capacity].Store(record, TagOf(number));
    ++totals.detections;
    PublishTotals();
    // Pairs with GetNextNumber(): a number that a reader may ask for lies in its slot.
    nextNumber.store(number + 1, std::memory_order_release);
}

uint32_t DetectionLog::GetNextNumber() const noexcept
{
    return nextNumber.load(std::memory_order_acquire);
}

uint32_t DetectionLog::Read(uint32_t& position, std::span<DetectionRecord> target) const noexcept
{
    const uint32_t next = GetNextNumber();
    // As a signed difference, a position ahead of the log is below 0 and gives nothing.
    const auto waiting = static_cast<int32_t>(next - position);
    if (waiting > static_cast<int32_t>(Capacity)) {
        position = next - Capacity;
    }
    uint32_t count = 0;
    while (static_cast<int32_t>(next - position) > 0 && count < target.size()) {
        const auto found = slots[position % Capacity].Load();
        if (found && found->tag == TagOf(position)) {
            target[count] = found->record;
            ++count;
        }
        ++position;
    }
    return count;
}

DetectionTotalsRecord DetectionLog::GetTotals() const noexcept
{
    // Tries again only after having met the writer in the middle of one of its rare, short stores.
    for (;;) {
        if (const auto found = publishedTotals.Load()) {
            return found->record;
        }
    }
}

} // namespace DSP

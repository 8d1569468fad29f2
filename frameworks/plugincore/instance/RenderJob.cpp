// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/RenderJob.h"

#include "frameworks/plugincore/instance/UsableSamples.h"

#include <algorithm>
#include <array>
#include <limits>

DSP::RegionBox MakeBox(const RenderRegionRecord& region)
{
    DSP::RegionBox box;
    box.first = region.first;
    box.end = region.last < std::numeric_limits<int64_t>::max() ? region.last + 1 : region.last;
    box.lowHz = static_cast<double>(region.lowHz);
    if (region.highHz != 0) {
        box.highHz = static_cast<double>(region.highHz);
    }
    return box;
}

RenderJob::RenderJob(RenderRecord& newRecord,
                     DSP::TransformBase& newPath,
                     const std::atomic<bool>& newStopped)
    : record(newRecord)
    , path(newPath)
    , stopped(newStopped)
{
    boxes.reserve(record.regionCount);
    for (const RenderRegionRecord& given : std::span(record.regions, record.regionCount)) {
        boxes.push_back(MakeBox(given));
    }
}

double RenderJob::GetFadeMilliseconds() const
{
    return static_cast<double>(record.fadeMilliseconds);
}

bool RenderJob::Read(int64_t position, const DSP::MultichannelBufferView<float>& target)
{
    if (record.read(record.refcon, position, target.GetFrames(), target.GetChannels()) != 0) {
        return false;
    }
    for (uint32_t channel = 0; channel < target.GetChannelCount(); ++channel) {
        ReplaceUnusable(std::span(target.GetChannel(channel), target.GetFrames()));
    }
    return true;
}

bool RenderJob::Write(int64_t position, const DSP::MultichannelBufferView<float>& samples)
{
    std::array<const float*, DSP::MaxChannels> channels{};
    std::copy_n(samples.GetChannels(), samples.GetChannelCount(), channels.begin());
    return record.write(record.refcon, position, samples.GetFrames(), channels.data()) == 0;
}

void RenderJob::onRegionBegins(const DSP::Region& newRegion, int64_t begin)
{
    CloseTotals();
    region = &newRegion;
    regionBegin = begin;
}

bool RenderJob::Progress(double fraction, const String& text)
{
    ReadTotals();
    GiveRepairs();
    if (stopped) {
        wasStopped = true;
        return false;
    }
    return record.progress == nullptr ||
           record.progress(record.refcon, fraction, text.c_str()) == 0;
}

void RenderJob::ReadTotals()
{
    DetectionTotalsRecord totals{};
    TransformReadRecord read{};
    read.request = TransformReadTotals;
    read.capacity = 1;
    read.recordBytes = sizeof totals;
    read.buffer = &totals;
    if (path.Read(read)) {
        latest = {totals.hops, totals.bandEnergy};
    }
}

void RenderJob::CloseTotals()
{
    before.hops += latest.hops;
    before.bandEnergy += latest.bandEnergy;
    latest = {};
}

void RenderJob::WriteTotals()
{
    CloseTotals();
    record.hops = before.hops;
    record.bandEnergy = before.bandEnergy;
}

void RenderJob::GiveRepairs()
{
    std::array<DetectionRecord, 16> repairs{};
    TransformReadRecord read{};
    do {
        read = {};
        read.request = TransformReadDetections;
        read.capacity = static_cast<uint32_t>(repairs.size());
        read.recordBytes = sizeof(DetectionRecord);
        read.buffer = repairs.data();
        read.position = nextRepair;
        if (!path.Read(read)) {
            return;
        }
        nextRepair = read.position;
        for (const DetectionRecord& repair : std::span(repairs).first(read.count)) {
            GiveRepair(repair);
        }
    } while (read.flag != 0);
}

// Those of the way up to the region aren't part of what is written.
void RenderJob::GiveRepair(DetectionRecord repair) const
{
    repair.centre += regionBegin;
    repair.start += regionBegin;
    repair.end += regionBegin;
    const bool isInside =
        region != nullptr && repair.end >= region->GetFirst() && repair.start < region->GetEnd();
    if (isInside && record.repair != nullptr) {
        record.repair(record.refcon, &repair);
    }
}

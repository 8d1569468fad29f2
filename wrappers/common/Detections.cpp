// SPDX-License-Identifier: ISC
#include "wrappers/common/Detections.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/DetectionRecords.h"

#include <algorithm>
#include <array>

namespace Wrapper {

Detections::Detections(const Instance& newInstance)
    : instance(newInstance)
{
    next = ReadTotals().value_or(DetectionTotals()).detections;
}

bool Detections::Ask(TransformReadRecord& record, const char* complaint) const
{
    const uint32_t answer = instance.Call({}, SelectorTransformRead, Side::UI, &record);
    if (answer == PluginCoreSuccess && record.answered != 0) {
        return true;
    }
    instance.Log({}, complaint);
    return false;
}

bool Detections::Read(std::vector<Detection>& detections)
{
    std::array<DetectionRecord, 64> buffer{};
    TransformReadRecord record;
    do {
        record = {};
        record.request = TransformReadDetections;
        record.capacity = static_cast<uint32_t>(buffer.size());
        record.recordBytes = sizeof(DetectionRecord);
        record.buffer = buffer.data();
        record.position = next;
        if (!Ask(record, "the module doesn't tell its repairs")) {
            return false;
        }
        for (uint32_t i = 0; i < std::min(record.count, record.capacity); ++i) {
            lost += buffer[i].number - next;
            next = buffer[i].number + 1;
            detections.push_back(MakeDetection(buffer[i]));
        }
    } while (record.flag != 0 && record.count > 0);
    return true;
}

std::optional<DetectionTotals> Detections::ReadTotals() const
{
    DetectionTotalsRecord totals = {};
    TransformReadRecord record = {};
    record.request = TransformReadTotals;
    record.capacity = 1;
    record.recordBytes = sizeof totals;
    record.buffer = &totals;
    if (!Ask(record, "the module doesn't tell its sums")) {
        return std::nullopt;
    }
    return DetectionTotals{totals.hops, totals.bandEnergy, totals.detections};
}

} // namespace Wrapper

// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/Transform.h"

#include <cstring>

namespace DSP {
namespace {

template <typename Wanted>
bool FitsBuffer(const TransformReadRecord& record)
{
    return record.recordBytes == sizeof(Wanted) &&
           (record.buffer != nullptr || record.capacity == 0);
}

} // namespace

Transform::Transform(ElementHost& owner, Parts parts, float sampleRate, uint32_t channelConfig)
    : TransformBase(owner, std::move(parts.set), parts.automatableRows)
    , log(std::move(parts.log))
{
    SetFormat(sampleRate, channelConfig);
}

bool Transform::Read(TransformReadRecord& record)
{
    record.count = 0;
    record.flag = 0;
    switch (record.request) {
    case TransformReadDetections:
        return ReadDetections(record);
    case TransformReadTotals:
        return ReadTotals(record);
    default:
        return false;
    }
}

bool Transform::ReadDetections(TransformReadRecord& record) const
{
    if (!FitsBuffer<DetectionRecord>(record)) {
        return false;
    }
    auto* target = static_cast<DetectionRecord*>(record.buffer);
    record.count = log->Read(record.position, {target, record.capacity});
    // Numbers wrap, so that the distance decides; a reader that is ahead waits.
    const auto waiting = static_cast<int32_t>(log->GetNextNumber() - record.position);
    record.flag = waiting > 0 ? 1 : 0;
    return true;
}

bool Transform::ReadTotals(TransformReadRecord& record) const
{
    if (!FitsBuffer<DetectionTotalsRecord>(record) || record.capacity == 0) {
        return false;
    }
    const DetectionTotalsRecord totals = log->GetTotals();
    std::memcpy(record.buffer, &totals, sizeof totals);
    record.count = 1;
    return true;
}

} // namespace DSP

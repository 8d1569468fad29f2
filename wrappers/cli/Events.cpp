// SPDX-License-Identifier: ISC
#include "wrappers/cli/Events.h"

#include "wrappers/cli/FileError.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <string_view>

namespace Cli {

namespace {

double Decibel(double energyRatio)
{
    return energyRatio > 0 ? std::max(10.0 * std::log10(energyRatio), leastDecibel) : leastDecibel;
}

} // namespace

BandAverage AverageOf(const DetectionTotalsRecord& totals)
{
    if (totals.hops == 0) {
        return {};
    }
    return {totals.bandEnergy / static_cast<double>(totals.hops)};
}

Event MakeEvent(const DetectionRecord& record, const BandAverage& average, int sampleRate)
{
    const auto seconds = [&](int64_t samples) {
        return static_cast<double>(samples) / static_cast<double>(sampleRate);
    };
    Event event;
    event.time = seconds(record.centre);
    event.start = seconds(record.start);
    event.end = seconds(record.end);
    event.severity = static_cast<double>(record.severity);
    if (record.pitchHz > 0) {
        event.pitch = static_cast<double>(record.pitchHz);
    }
    if (record.energyBefore > 0) {
        event.reduction = Decibel(record.energyAfter / record.energyBefore);
    }
    const double frames = record.regionEnd < record.regionStart
                              ? 0.0
                              : static_cast<double>(record.regionEnd - record.regionStart) + 1.0;
    const double usual = average.energyPerHop * frames;
    const double ratio = usual > 0 ? (record.energyBefore - record.energyAfter) / usual : 0.0;
    event.removed = Decibel(ratio);
    event.isProminent = ratio >= 0.5;
    return event;
}

void EventSpool::Append(std::span<const DetectionRecord> records)
{
    const auto bytes = std::as_bytes(records);
    const int failure =
        WriteFully(file.Get(), {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (failure != 0) {
        throw FileError::FromErrno(failure);
    }
    count += records.size();
}

void EventSpool::ForEach(const std::function<void(const DetectionRecord&)>& visit) const
{
    std::vector<DetectionRecord> buffer(256);
    for (uint64_t first = 0; first < count; first += buffer.size()) {
        buffer.resize(static_cast<size_t>(std::min<uint64_t>(buffer.size(), count - first)));
        const size_t bytes = buffer.size() * sizeof(DetectionRecord);
        const auto offset = static_cast<off_t>(first * sizeof(DetectionRecord));
        if (::pread(file.Get(), buffer.data(), bytes, offset) != static_cast<ssize_t>(bytes)) {
            throw FileError("the list of repairs can't be read back");
        }
        std::for_each(buffer.begin(), buffer.end(), visit);
    }
}

} // namespace Cli

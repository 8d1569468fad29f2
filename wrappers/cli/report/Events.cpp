// SPDX-License-Identifier: ISC
#include "wrappers/cli/report/Events.h"

#include "wrappers/cli/files/FileError.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <string_view>

namespace Cli {

double EnergyDecibel(double ratio)
{
    return ratio > 0 ? std::max(10.0 * std::log10(ratio), LeastDecibel) : LeastDecibel;
}

BandAverage AverageOf(const Wrapper::DetectionTotals& totals)
{
    if (totals.hops == 0) {
        return {};
    }
    return {totals.bandEnergy / static_cast<double>(totals.hops)};
}

Event MakeEvent(const Wrapper::Detection& detection, const BandAverage& average, int sampleRate)
{
    const auto seconds = [&](int64_t samples) {
        return static_cast<double>(samples) / static_cast<double>(sampleRate);
    };
    Event event;
    event.time = seconds(detection.centre);
    event.start = seconds(detection.start);
    event.end = seconds(detection.end);
    event.severity = static_cast<double>(detection.severity);
    if (detection.pitchHz > 0) {
        event.pitch = static_cast<double>(detection.pitchHz);
    }
    if (detection.energyBefore > 0) {
        event.reduction = EnergyDecibel(detection.energyAfter / detection.energyBefore);
    }
    const double usual = average.energyPerHop * static_cast<double>(detection.frames);
    const double ratio = usual > 0 ? (detection.energyBefore - detection.energyAfter) / usual : 0.0;
    event.removed = EnergyDecibel(ratio);
    event.isProminent = ratio >= 0.5;
    return event;
}

void EventSpool::Append(std::span<const Wrapper::Detection> detections)
{
    const auto bytes = std::as_bytes(detections);
    const int failure =
        WriteFully(file.Get(), {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (failure != 0) {
        throw FileError::FromErrno(failure);
    }
    count += detections.size();
}

void EventSpool::ForEach(const std::function<void(const Wrapper::Detection&)>& visit) const
{
    std::vector<Wrapper::Detection> buffer(256);
    for (uint64_t first = 0; first < count; first += buffer.size()) {
        buffer.resize(static_cast<size_t>(std::min<uint64_t>(buffer.size(), count - first)));
        const size_t bytes = buffer.size() * sizeof(Wrapper::Detection);
        const auto offset = static_cast<off_t>(first * sizeof(Wrapper::Detection));
        if (::pread(file.Get(), buffer.data(), bytes, offset) != static_cast<ssize_t>(bytes)) {
            throw FileError("the list of repairs can't be read back");
        }
        std::for_each(buffer.begin(), buffer.end(), visit);
    }
}

} // namespace Cli

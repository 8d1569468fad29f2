// SPDX-License-Identifier: ISC
#include "wrappers/cli/autorepair/RecordingRepairs.h"

#include "restoration/dsp/autorepair/KeepRule.h"
#include "wrappers/cli/autorepair/MovingExcerpt.h"

#include <algorithm>
#include <utility>

namespace Cli {

RecordingRepairs::RecordingRepairs(RepeatedInput& newInput,
                                   size_t newFramesAtOnce,
                                   const AutoRepair::RecordingScale& newScale,
                                   std::function<void()> newOnRead)
    : input(newInput)
    , framesAtOnce(newFramesAtOnce)
    , channels(static_cast<size_t>(input.GetDescription().GetChannels()))
    , sampleRate(input.GetDescription().GetSampleRate())
    , frames(input.GetPosition())
    , scale(newScale)
    , onRead(std::move(newOnRead))
    , changes(channels)
{
}

AutoRepair::SpanRepair& RecordingRepairs::GetRepair(double upperFrequency)
{
    const auto found =
        repairs.try_emplace(upperFrequency, sampleRate, static_cast<int>(channels), upperFrequency);
    return found.first->second;
}

double RecordingRepairs::MeasureAfter(const Attempt& attempt, AutoRepair::SpanRepair& repair)
{
    repaired.assign(attempt.around.samples.begin(), attempt.around.samples.end());
    const int64_t offset =
        (attempt.change.first - attempt.around.first) * static_cast<int64_t>(channels);
    const auto end = static_cast<int64_t>(repaired.size());
    for (size_t i = 0; i < attempt.change.samples.size(); ++i) {
        const int64_t place = offset + static_cast<int64_t>(i);
        if (place >= 0 && place < end) {
            repaired[static_cast<size_t>(place)] += attempt.change.samples[i];
        }
    }
    return repair.MeasureLowEnd(attempt.span, {attempt.around.first, repaired});
}

AutoEvent& RecordingRepairs::Add(const Attempt& attempt, AutoRepair::SpanRepair& repair)
{
    const auto toSeconds = [this](int64_t count) {
        return static_cast<double>(count) / sampleRate;
    };
    stretches.push_back(changes.Append(attempt.change.first, attempt.change.samples));
    AutoEvent& event = events.emplace_back();
    event.start = attempt.span.start;
    event.end = attempt.span.end;
    event.removed = attempt.change.removed - scale.speechLevel;
    event.peak = std::clamp(toSeconds(attempt.change.loudest), 0.0, toSeconds(frames));
    event.before = attempt.change.lowEnd - scale.lowEnd;
    event.after = MeasureAfter(attempt, repair) - scale.lowEnd;
    return event;
}

void RecordingRepairs::RepairLabels(std::span<const Label> labels)
{
    MovingExcerpt excerpt(input, framesAtOnce);
    for (const Label& label : labels) {
        AutoRepair::SpanRepair& repair = GetRepair(label.upperFrequency);
        const AutoRepair::Excerpt around = excerpt.Cover(repair.GetReach(label.span));
        const Attempt attempt{label.span, around, repair.Compute(label.span, around)};
        Add(attempt, repair).upperFrequency = label.upperFrequency;
        onRead();
    }
}

double RecordingRepairs::RepairPops(std::span<const AutoRepair::Candidate> candidates,
                                    double strictness)
{
    MovingExcerpt excerpt(input, framesAtOnce);
    AutoRepair::SpanRepair& repair = GetRepair(AutoRepair::UsualUpperFrequency);
    AutoRepair::KeepRule rule(strictness);
    for (const AutoRepair::Candidate& candidate : candidates) {
        const AutoRepair::Excerpt around = excerpt.Cover(repair.GetReach(candidate.span));
        const Attempt attempt{candidate.span, around, repair.Compute(candidate.span, around)};
        const double keep =
            AutoRepair::GetKeep(candidate, attempt.change.removed - scale.speechLevel);
        rule.Count(keep);
        // What no threshold lets through need not wait for it.
        if (keep > rule.GetLeastThreshold()) {
            AutoEvent& event = Add(attempt, repair);
            event.upperFrequency = AutoRepair::UsualUpperFrequency;
            event.score = candidate.score;
            event.keep = keep;
        }
        onRead();
    }
    const double threshold = rule.GetThreshold(static_cast<double>(frames) / sampleRate);
    KeepAbove(threshold);
    return threshold;
}

void RecordingRepairs::KeepAbove(double threshold)
{
    size_t kept = 0;
    for (size_t i = 0; i < events.size(); ++i) {
        if (events[i].keep > threshold) {
            events[kept] = events[i];
            stretches[kept] = stretches[i];
            ++kept;
        }
    }
    events.resize(kept);
    stretches.resize(kept);
}

void RecordingRepairs::AddTo(int64_t first, std::span<double> samples)
{
    changes.ForEach(
        stretches, first, samples, [](double& sample, double change) { sample += change; });
}

} // namespace Cli

// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/PopFinder.h"
#include "restoration/dsp/autorepair/RecordingScale.h"
#include "restoration/dsp/autorepair/SpanRepair.h"
#include "wrappers/cli/autorepair/ChangeFile.h"
#include "wrappers/cli/autorepair/LabelTrack.h"
#include "wrappers/cli/autorepair/RepeatedInput.h"
#include "wrappers/cli/report/AutoEvent.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <vector>

namespace Cli {

/// The repairs of one recording: worked out span by span while it is read once, then added to it
/// while it comes by again. Throws FileError.
class RecordingRepairs {
public:
    /// Reads `newInput` so many frames at a time; levels are reported against `newScale`.
    /// `newOnRead` is called after each span.
    RecordingRepairs(RepeatedInput& newInput,
                     size_t newFramesAtOnce,
                     const AutoRepair::RecordingScale& newScale,
                     std::function<void()> newOnRead);

    /// Repairs each label's span up to the label's frequency. In order of time.
    void RepairLabels(std::span<const Label> labels);

    /// Repairs what of `candidates` is a pop, which only all of them together decide: those whose
    /// keep value lies above the threshold, which is returned. `strictness` raises it.
    double RepairPops(std::span<const AutoRepair::Candidate> candidates, double strictness);

    /// What is repaired, in order of time.
    const std::vector<AutoEvent>& GetEvents() const { return events; }

    /// Repairs `samples`, interleaved, the recording from frame `first` on.
    void AddTo(int64_t first, std::span<double> samples);

private:
    struct Attempt {
        AutoRepair::Span span;
        AutoRepair::Excerpt around;
        AutoRepair::Change change;
    };

    AutoRepair::SpanRepair& GetRepair(double upperFrequency);
    AutoEvent& Add(const Attempt& attempt, AutoRepair::SpanRepair& repair);
    double MeasureAfter(const Attempt& attempt, AutoRepair::SpanRepair& repair);
    void KeepAbove(double threshold);

    RepeatedInput& input;
    size_t framesAtOnce;
    size_t channels;
    int sampleRate;
    int64_t frames; // of the whole recording
    AutoRepair::RecordingScale scale;
    std::function<void()> onRead;
    std::map<double, AutoRepair::SpanRepair> repairs; // by upper frequency
    ChangeFile changes;
    std::vector<AutoEvent> events;
    std::vector<ChangeFile::Stretch> stretches; // of each event
    std::vector<double> repaired;               // scratch
};

} // namespace Cli

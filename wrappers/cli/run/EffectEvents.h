// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/run/FileReport.h"
#include "wrappers/cli/run/JobResults.h"
#include "wrappers/cli/run/RunContext.h"

#include <span>

namespace Cli {

/// The repairs that the effect makes of one recording: kept while it passes by, put into all
/// reports when what is prominent is known. Throws FileError.
class EffectEvents {
public:
    /// All of it outlives this.
    EffectEvents(const RunContext& newContext, const Task& newTask, JobResults& newResults)
        : context(newContext)
        , task(newTask)
        , results(newResults)
    {
    }

    /// Takes repairs, in order of time, before their samples are added to the results. `sampleRate`
    /// in Hz.
    void Add(std::span<const Wrapper::Detection> detections, int sampleRate);

    /// Once the recording has ended: what it holds on average, by what was analysed of it.
    void SetAverage(const BandAverage& newAverage) { average = newAverage; }

    /// Writes what was asked for, and the summary into `report`.
    void Write(FileReport& report, const Controls& controls);

    /// Adds them to the list of the run, as recording `number`, when there is one.
    void AddToList(size_t number, const FileReport& report, const Controls& controls) const;

private:
    void WritePage(FileReport& report, const Controls& controls);

    const RunContext& context;
    const Task& task;
    JobResults& results;
    EventSpool spool;
    BandAverage average;
};

} // namespace Cli

// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/Beat.h"
#include "wrappers/cli/report/AutoEvent.h"
#include "wrappers/cli/run/Session.h"
#include "wrappers/common/ElementParameters.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Cli {

/// What --auto and --repair-labels know of a recording besides.
struct AutoSummary {
    double speechLevel = 0;  ///< dB
    double threshold = 0;    ///< that AutoEvent::keep is compared with
    size_t candidates = 0;   ///< bursts that were judged
    bool isTooShort = false; ///< for finding anything by itself
    std::optional<AutoEvent> strongest;
    std::optional<AutoRepair::Beat> beat; ///< that the pops keep to, as in music
};

/// What came of one recording.
struct FileReport {
    FileName input;
    FileName output;     ///< empty when no audio was written
    FileName page;       ///< empty when none was wanted
    std::string preset;  ///< name of the one that was used; empty: none
    std::string failure; ///< not empty: why it failed; the rest then means nothing
    int sampleRate = 0;  ///< Hz
    int channels = 0;
    int64_t frames = 0;
    uint32_t latency = 0;                                     ///< samples
    std::vector<Wrapper::ElementParameters::Changed> changed; ///< settings that aren't the default
    EventSummary events;
    std::optional<AutoSummary> automatic; ///< nothing when the effect repaired it
    uint64_t nonFiniteSamples = 0;
    uint64_t lostRepairs = 0;
    double changedShare = 0; ///< of the time, 0 to 1; known when there is a page
    double seconds = 0;      ///< spent on reading, repairing and writing the audio

    double GetDuration() const
    {
        return sampleRate > 0 ? static_cast<double>(frames) / sampleRate : 0.0;
    }

    /// Seconds of recording a second of work.
    double GetSpeed() const { return seconds > 0 ? GetDuration() / seconds : 0.0; }
};

/// What --auto should have been kept from: "sounds like music ..."; empty when there is nothing.
std::string DescribeMusic(const AutoSummary& summary);

/// One line for a reader: what was found, the strongest and where, how fast.
std::string SummaryLine(const FileReport& report);

/// All reports, with what the run was set to, as one JSON document.
std::string SummaryJson(const Session& session, const std::vector<FileReport>& reports);

} // namespace Cli

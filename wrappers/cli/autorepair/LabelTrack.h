// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/Candidates.h"
#include "restoration/dsp/autorepair/SpanRepair.h"
#include "wrappers/cli/files/FileName.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Cli {

/// A label as a file has it, whatever it makes of it.
struct LabelEntry {
    AutoRepair::Span span; ///< seconds; may end before it begins
    /// Hz, an edge of its frequency range that wasn't drawn is negative; none: it has no range.
    struct Band {
        double low = 0;
        double high = 0;
        int line = 0;
    };
    std::optional<Band> band;
    int line = 0; ///< of the file, from 1
};

/// Reads a label track as Audacity writes it: lines of start and end in seconds and a text, parted
/// by tabs; a line of `\`, low and high behind one gives it a range of frequencies. As they stand
/// in the file. Throws FileError with the number of the line that can't be read.
std::vector<LabelEntry> ParseLabelEntries(std::string_view text);

/// The text of a label track, or of another list as long as it. Throws FileError.
std::string ReadLabelText(const FileName& name);

/// A label of a label track.
struct Label {
    AutoRepair::Span span;                                   ///< seconds
    double upperFrequency = AutoRepair::UsualUpperFrequency; ///< Hz, of its frequency range
    int line = 0;                                            ///< of the file, from 1
};

/// Seconds that a label may last: more than any burst.
inline constexpr double LongestLabel = 2.0;

/// The labels of a text that name pops, in order of time. Throws FileError with the number of the
/// line for what makes no sense: labels that are empty, run backwards or overlap, frequencies that
/// a repair doesn't reach.
std::vector<Label> ParseLabelTrack(std::string_view text);

/// The labels of a file. Throws FileError.
std::vector<Label> ReadLabelTrack(const FileName& name);

/// Throws FileError when a label lies behind the end of a recording of `seconds`. An end that only
/// its last digit has brought there is moved to the recording's.
void FitLabels(std::vector<Label>& labels, double seconds);

} // namespace Cli

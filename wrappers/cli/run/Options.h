// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/audio/AudioFormat.h"
#include "wrappers/cli/audio/Limits.h"
#include "wrappers/cli/effect/Controls.h"
#include "wrappers/cli/effect/SessionOptions.h"
#include "wrappers/cli/files/FileName.h"
#include "wrappers/cli/files/OutputFile.h"
#include "wrappers/cli/regions/WantedRegion.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace Cli {

/// What the user asked for, checked in itself.
struct Options {
    std::vector<FileName> inputs; ///< folders too
    bool isRecursive = false;

    FileName output;             ///< empty: a name made from the input's
    std::string outputDirectory; ///< empty: beside the input
    bool isInPlace = false;
    Overwrite overwrite = Overwrite::Refuse;
    std::optional<int> container; ///< major format of libsndfile
    std::optional<int> subtype;
    std::optional<RawFormat> raw;
    bool hasDither = false;
    bool keepsLatency = false;
    bool wantsDifference = false;
    bool isDryRun = false;

    bool isAutomatic = false;
    std::optional<double> strictness; ///< of the automatic repair
    FileName repairLabels;            ///< empty: none

    std::vector<WantedRegion> regions; ///< repaired alone, with those of the file
    FileName regionFile;               ///< empty: none
    double fade = DefaultFade;         ///< ms, at the edges of regions
    bool hasFade = false;              ///< it was asked for

    FileName events; ///< empty: none; so are the next three
    FileName labels;
    FileName plot;
    FileName page;

    ChosenControls controls;
    SessionOptions session;
    int block = DefaultBlock; ///< frames
    int jobs = 1;

    bool wantsJson = false;
    bool isQuiet = false;
    bool isVerbose = false;

    /// True when one recording was named, so that reports are for it alone.
    bool isSingle = false;

    /// True when recordings are repaired as a whole, without the effect.
    bool IsForWholeFiles() const { return isAutomatic || !repairLabels.IsEmpty(); }

    /// True when the effect repairs regions alone.
    bool HasRegions() const { return !regions.empty() || !regionFile.IsEmpty(); }

    /// True when what isn't repaired stays as it is, to the bit.
    bool KeepsTheRest() const { return IsForWholeFiles() || HasRegions(); }
};

/// A text to print on standard output instead of any work.
struct Answer {
    std::string text;
};

/// Reads the command line; an Answer for "--help" and "--version". Throws UsageError.
std::variant<Options, Answer> ParseOptions(int argc, const char* const* argv);

} // namespace Cli

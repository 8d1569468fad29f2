// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/OutputFile.h"
#include "wrappers/cli/page/ClipRecorder.h"
#include "wrappers/cli/page/ReportPage.h"
#include "wrappers/cli/plot/PlotRecorder.h"
#include "wrappers/cli/run/FileReport.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace Cli {

/// A page's title, and the line below it: what the recording is, then `words` on how it was
/// repaired.
PageHead NamePage(const FileReport& report, const std::string& words);

/// The page of one recording on its way: its file, and what it takes from the audio.
class RecordingPage {
public:
    /// Throws FileError, whose text names the file.
    RecordingPage(const FileName& newName, Overwrite overwrite, int sampleRate, int newChannels);

    /// As in ClipRecorder.
    void Want(const ClipRequest& request) { clips.Want(request); }
    bool HasClip(uint64_t event) const { return clips.Has(event); }

    /// Takes interleaved samples, both of the same length. Throws FileError.
    void Add(std::span<const double> before, std::span<const double> after);

    /// Ends the audio. Throws FileError.
    void Finish() { clips.Finish(); }

    /// How much of the recording isn't the input's own, 0 to 1.
    double GetChangedShare() const;

    /// Fills the file. Throws FileError, whose text names it.
    void Write(const PageHead& head,
               const std::vector<PageEvent>& events,
               const PlotRecorder& picture) const;

    /// Puts the file under its name. Throws FileError, whose text names it.
    void Commit();

private:
    FileName name;
    size_t channels;
    ClipRecorder clips;
    OutputFile output;
    int64_t frames = 0;
    int64_t changedFrames = 0;
};

} // namespace Cli

// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/audio/Alignment.h"
#include "wrappers/cli/audio/AudioReader.h"
#include "wrappers/cli/audio/AudioWriter.h"
#include "wrappers/cli/audio/Quantiser.h"
#include "wrappers/cli/plot/PlotPainter.h"
#include "wrappers/cli/run/FileReport.h"
#include "wrappers/cli/run/Options.h"
#include "wrappers/cli/run/RecordingPage.h"
#include "wrappers/cli/run/Tasks.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Cli {

/// The files that come of one recording, whichever way it is repaired: audio, label track, picture,
/// page. They are given the recording from its first sample to its last, then its events; each
/// appears whole at the end, or not at all. Everything throws FileError, whose text names the file.
class JobResults {
public:
    /// Opens the reports. `newReader`, whose recording it is, must outlive this.
    JobResults(const Options& newOptions, const Task& newTask, const AudioReader& newReader);

    /// Opens the audio when any is wanted. It begins with `lateFrames` frames of silence that the
    /// recording doesn't have.
    void OpenAudio(uint32_t lateFrames);

    /// "; writes WAV/PCM_16", or nothing when no audio is written.
    std::string DescribeAudio() const;

    /// Whether anything comes of the samples at all.
    bool WantsSamples() const { return recorder || writer; }

    /// Asks for a clip on the page, before the samples of its repair are added.
    void Want(const ClipRequest& request);

    /// Takes the next samples before and after the repair, and may change the latter.
    void Add(const Alignment::Pair& pair);

    /// The picture outlines these.
    void SetRegions(std::vector<PlotRegion> newRegions) { regions = std::move(newRegions); }

    /// Ends the recording; `words` stand below the picture's title, `repairLimitHz` is the line in
    /// it, 0 for none.
    void BeginEvents(const FileReport& report, const std::string& words, double repairLimitHz);

    /// Takes an event for the label track and the picture.
    void Mark(const Event& event);

    /// Whether the page can have a row for an event that a clip was asked for; once the recording
    /// has ended, as is the next.
    bool HasClip(uint64_t event) const;

    /// How much of the recording isn't the input's own, 0 to 1, where there is a page.
    double GetChangedShare() const;

    /// Fills the page, where one is wanted.
    void WritePage(const PageHead& head, const std::vector<PageEvent>& events);

    /// Paints the picture, with all events in it.
    void SavePlot();

    /// Flushes all files to the disk and puts them under their names.
    void Finish();

private:
    void Record(const Alignment::Pair& pair);

    const Options& options;
    const Task& task;
    const AudioReader& reader;
    size_t channels;
    std::unique_ptr<OutputFile> labels;
    std::unique_ptr<OutputFile> plot;
    std::unique_ptr<RecordingPage> page;
    std::unique_ptr<PlotRecorder> recorder;
    std::unique_ptr<PlotPainter> painter;
    std::vector<PlotRegion> regions;
    size_t framesToSkip = 0; // that the picture and the page don't have
    int outputFormat = 0;
    std::unique_ptr<AudioWriter> writer;
    std::unique_ptr<Quantiser> quantiser;
};

} // namespace Cli

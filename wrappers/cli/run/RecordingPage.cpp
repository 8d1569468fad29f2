// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/RecordingPage.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace Cli {

PageHead NamePage(const FileReport& report, const std::string& words)
{
    PageHead head;
    const auto name = std::filesystem::path(report.input.Get()).filename().string();
    head.title = report.input.IsStream() ? "standard input" : ToUtf8(Printable(name));
    head.subtitle = fmt::format("{} Hz, {} channel{}, {} \u00B7 {}",
                                report.sampleRate,
                                report.channels,
                                report.channels == 1 ? "" : "s",
                                FormatClock(report.GetDuration()),
                                words);
    return head;
}

RecordingPage::RecordingPage(const FileName& newName,
                             Overwrite overwrite,
                             int sampleRate,
                             int newChannels)
    : name(newName)
    , channels(static_cast<size_t>(newChannels))
    , clips(sampleRate, newChannels)
    , output(newName, overwrite)
{
}

void RecordingPage::Add(std::span<const double> before, std::span<const double> after)
{
    clips.Add(before, after);
    for (size_t i = 0; i + channels <= before.size(); i += channels) {
        const bool isOwn = std::equal(&before[i], &before[i] + channels, &after[i]);
        changedFrames += isOwn ? 0 : 1;
        ++frames;
    }
}

double RecordingPage::GetChangedShare() const
{
    return frames > 0 ? static_cast<double>(changedFrames) / static_cast<double>(frames) : 0.0;
}

void RecordingPage::Write(const PageHead& head,
                          const std::vector<PageEvent>& events,
                          const PlotRecorder& picture) const
{
    Naming(name.OutputLabel(),
           [&] { WriteReportPage(output.GetDescriptor(), head, events, picture, clips); });
}

void RecordingPage::Commit()
{
    Naming(name.OutputLabel(), [&] { output.Commit(); });
}

} // namespace Cli

// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/PageIndex.h"

#include "wrappers/cli/page/ReportIndex.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace Cli {

namespace {

// As it stands in a link: every byte that could mean something there is written as %XX.
std::string LinkBetween(const FileName& from, const FileName& to)
{
    const auto folder = std::filesystem::path(from.Get()).parent_path();
    const auto path =
        std::filesystem::path(to.Get()).lexically_relative(folder.empty() ? "." : folder);
    std::string link;
    for (const char letter : (path.empty() ? std::filesystem::path(to.Get()) : path).string()) {
        const auto byte = static_cast<unsigned char>(letter);
        const bool isPlain = byte < 0x80 && (std::isalnum(byte) != 0 || letter == '/' ||
                                             letter == '.' || letter == '-' || letter == '_');
        link += isPlain ? std::string(1, letter) : fmt::format("%{:02X}", byte);
    }
    return link;
}

// What one recording or several come to.
struct Sums {
    double seconds = 0;
    double changedSeconds = 0;
    uint64_t prominent = 0;
    uint64_t repairs = 0; // without controls: bursts that were judged

    void Add(const FileReport& report)
    {
        seconds += report.GetDuration();
        changedSeconds += report.changedShare * report.GetDuration();
        prominent += report.events.prominent;
        repairs += report.automatic ? report.automatic->candidates : report.events.repairs;
    }

    std::vector<std::string> Cells() const
    {
        const double share = seconds > 0 ? changedSeconds / seconds : 0.0;
        return {FormatClock(seconds),
                fmt::format("{}", prominent),
                fmt::format("{}", repairs),
                fmt::format("{:.1f} %", 100 * share)};
    }
};

IndexRow MakeRow(const FileName& index, const FileReport& report)
{
    IndexRow row;
    row.name = ToUtf8(Printable(report.input.InputLabel()));
    row.failure = ToUtf8(report.failure);
    if (report.failure.empty()) {
        Sums own;
        own.Add(report);
        row.cells = own.Cells();
        row.link = LinkBetween(index, report.page);
    }
    return row;
}

} // namespace

PageIndex::PageIndex(const FileName& newName, Overwrite overwrite)
    : name(newName)
    , output(newName, overwrite)
{
}

void PageIndex::Write(const std::vector<FileReport>& reports)
{
    ReportIndex index;
    const bool isAutomatic = std::any_of(reports.begin(), reports.end(), [](const auto& report) {
        return report.automatic.has_value();
    });
    index.columns = {"Duration",
                     isAutomatic ? "Pops" : "Prominent plosives",
                     isAutomatic ? "Bursts judged" : "Repairs",
                     "Of the time changed"};
    Sums sums;
    size_t failures = 0;
    for (const FileReport& report : reports) {
        index.rows.push_back(MakeRow(name, report));
        if (report.failure.empty()) {
            sums.Add(report);
        } else {
            ++failures;
        }
    }
    index.totals = sums.Cells();
    index.subtitle = fmt::format("{} recording{}", reports.size(), reports.size() == 1 ? "" : "s");
    if (failures > 0) {
        index.subtitle += fmt::format(", of which {} failed", failures);
    }
    WriteReportIndex(output.GetDescriptor(), index);
    output.Commit();
}

} // namespace Cli

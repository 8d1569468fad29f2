// SPDX-License-Identifier: ISC
#include "wrappers/cli/autorepair/LabelTrack.h"

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace Cli {

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr size_t LongestTrack = size_t{16} << 20U; // bytes, a label every few milliseconds of a day
constexpr size_t MostQuoted = 40;                  // bytes of what is no number
constexpr size_t PieceOfTrack = size_t{64} << 10U;
constexpr double LastDigit = 1e-5; // seconds, more than the rounding of six decimals

[[noreturn]] void Refuse(int line, const std::string& reason)
{
    throw FileError(fmt::format("line {}: {}", line, reason));
}

// What stands before the next `mark`; takes both off `text`.
std::string_view TakeUntil(std::string_view& text, char mark)
{
    const size_t end = std::min(text.find(mark), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

double ParseNumber(std::string_view text, const char* what, int line)
{
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value);
    if (failure != std::errc{} || stop != end || !std::isfinite(value)) {
        const std::string quoted = Printable(text.substr(0, MostQuoted));
        const char* const rest = text.size() > MostQuoted ? "..." : "";
        Refuse(line, fmt::format("the {} \"{}{}\" is no number", what, quoted, rest));
    }
    return value;
}

// Two numbers behind each other.
AutoRepair::Span ParsePair(std::string_view fields, const char* first, const char* second, int line)
{
    const double from = ParseNumber(TakeUntil(fields, '\t'), first, line);
    const double to = ParseNumber(TakeUntil(fields, '\t'), second, line);
    return {from, to};
}

LabelEntry ParseEntry(std::string_view fields, int line)
{
    LabelEntry entry;
    entry.line = line;
    entry.span = ParsePair(fields, "start", "end", line);
    return entry;
}

void ParseBand(std::string_view fields, int line, std::vector<LabelEntry>& entries)
{
    if (entries.empty()) {
        Refuse(line, "a range of frequencies without a label before it");
    }
    TakeUntil(fields, '\t');
    const auto [low, high] = ParsePair(fields, "lower frequency", "upper frequency", line);
    // An edge that wasn't drawn is below neither.
    if (high >= 0 && low > high) {
        Refuse(line, "the lower frequency is above the upper one");
    }
    entries.back().band = {low, high, line};
}

Label MakeLabel(const LabelEntry& entry)
{
    if (entry.span.start < 0) {
        Refuse(entry.line, "begins before the recording");
    }
    if (entry.span.end < entry.span.start) {
        Refuse(entry.line, "ends before it begins");
    }
    if (entry.span.end == entry.span.start) {
        Refuse(entry.line, "is empty: it ends where it begins");
    }
    if (entry.span.end - entry.span.start > LongestLabel) {
        Refuse(entry.line, fmt::format("is longer than {} s, which no plosive is", LongestLabel));
    }
    Label label;
    label.line = entry.line;
    label.span = entry.span;
    if (!entry.band || entry.band->high < 0) {
        return label;
    }
    const double high = entry.band->high;
    if (high < AutoRepair::LeastUpperFrequency || high > AutoRepair::GreatestUpperFrequency) {
        Refuse(entry.band->line,
               fmt::format("the upper frequency {} Hz is outside {} to {} Hz",
                           high,
                           AutoRepair::LeastUpperFrequency,
                           AutoRepair::GreatestUpperFrequency));
    }
    label.upperFrequency = high;
    return label;
}

void SortAndRefuseOverlaps(std::vector<Label>& labels)
{
    std::stable_sort(labels.begin(), labels.end(), [](const Label& a, const Label& b) {
        return a.span.start < b.span.start;
    });
    for (size_t i = 1; i < labels.size(); ++i) {
        if (labels[i].span.start < labels[i - 1].span.end) {
            Refuse(std::max(labels[i].line, labels[i - 1].line),
                   fmt::format("overlaps the label of line {}",
                               std::min(labels[i].line, labels[i - 1].line)));
        }
    }
}

} // namespace

std::vector<LabelEntry> ParseLabelEntries(std::string_view text)
{
    if (text.starts_with(ByteOrderMark)) {
        text.remove_prefix(ByteOrderMark.size());
    }
    std::vector<LabelEntry> entries;
    for (int line = 1; !text.empty(); ++line) {
        std::string_view fields = TakeUntil(text, '\n');
        if (fields.ends_with('\r')) {
            fields.remove_suffix(1);
        }
        if (fields.starts_with("\\\t")) {
            ParseBand(fields, line, entries);
        } else if (!fields.empty()) {
            entries.push_back(ParseEntry(fields, line));
        }
    }
    return entries;
}

std::vector<Label> ParseLabelTrack(std::string_view text)
{
    std::vector<Label> labels;
    for (const LabelEntry& entry : ParseLabelEntries(text)) {
        labels.push_back(MakeLabel(entry));
    }
    SortAndRefuseOverlaps(labels);
    return labels;
}

std::string ReadLabelText(const FileName& name)
{
    const FileDescriptor file = OpenForReading(name);
    std::string text;
    std::string piece(PieceOfTrack, '\0');
    size_t count = piece.size();
    while (count == piece.size()) {
        count = ReadFully(file.Get(), piece);
        text.append(piece, 0, count);
        if (text.size() > LongestTrack) {
            throw FileError("is too large for a label track");
        }
    }
    return text;
}

std::vector<Label> ReadLabelTrack(const FileName& name)
{
    return ParseLabelTrack(ReadLabelText(name));
}

void FitLabels(std::vector<Label>& labels, double seconds)
{
    for (Label& label : labels) {
        if (label.span.start >= seconds) {
            Refuse(label.line, "begins behind the end of the recording, " + FormatClock(seconds));
        }
        if (label.span.end > seconds + LastDigit) {
            Refuse(label.line, "ends behind the end of the recording, " + FormatClock(seconds));
        }
        label.span.end = std::min(label.span.end, seconds);
    }
}

} // namespace Cli

// SPDX-License-Identifier: ISC
#include "wrappers/cli/regions/WantedRegion.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace Cli {

namespace {

constexpr double LastDigit = 1e-5; // seconds, more than the rounding of six decimals
constexpr double MostSeconds = 1e9;

std::optional<double> ParseNumber(std::string_view text)
{
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
    const bool isNumber = failure == std::errc{} && stop == end && value >= 0 && !text.empty();
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

// Hours and minutes are whole numbers, and what stands behind a ":" is below 60.
std::optional<double> ParseClock(std::string_view text)
{
    double seconds = 0;
    for (int part = 0; part < 3; ++part) {
        const size_t mark = text.find(':');
        const auto value = ParseNumber(text.substr(0, mark));
        const bool isLast = mark == std::string_view::npos;
        if (!value || (part > 0 && *value >= 60) || (!isLast && *value != std::floor(*value))) {
            return std::nullopt;
        }
        seconds = 60 * seconds + *value;
        if (isLast) {
            return seconds;
        }
        text.remove_prefix(mark + 1);
    }
    return std::nullopt;
}

WantedTime ParseTime(std::string_view text, std::string_view whole)
{
    WantedTime time;
    time.isInSamples = text.ends_with('s');
    const auto value =
        time.isInSamples ? ParseNumber(text.substr(0, text.size() - 1)) : ParseClock(text);
    const bool isWhole = !time.isInSamples || (value && *value == std::floor(*value));
    if (!value || *value > MostSeconds || !isWhole) {
        throw UsageError(fmt::format("--region {}: \"{}\" is no time, such as 1.25, 1:02.5, "
                                     "1:02:03 or 48000s",
                                     Printable(whole),
                                     Printable(text)));
    }
    time.value = *value;
    return time;
}

double ParseFrequency(std::string_view text, std::string_view whole)
{
    const auto value = ParseNumber(text);
    if (!value) {
        throw UsageError(fmt::format(
            "--region {}: \"{}\" is no frequency in Hz", Printable(whole), Printable(text)));
    }
    return *value;
}

/// Both sides of a "-".
struct Pair {
    std::string_view first;
    std::string_view second;
};

Pair Part(std::string_view text, std::string_view whole, const char* form)
{
    const size_t mark = text.find('-');
    if (mark == std::string_view::npos) {
        throw UsageError(fmt::format("--region {}: {}", Printable(whole), form));
    }
    return {text.substr(0, mark), text.substr(mark + 1)};
}

[[noreturn]] void Refuse(const WantedRegion& region, const std::string& reason)
{
    throw FileError(region.name + ": " + reason);
}

Wrapper::RenderRegion PlaceRegion(const WantedRegion& region, double rate, int64_t frames)
{
    const auto length = static_cast<double>(frames);
    const double first = region.start.GetFrame(rate);
    const double end = region.end.GetFrame(rate);
    if (first >= length) {
        Refuse(region, "begins behind the end of the recording, " + FormatClock(length / rate));
    }
    if (!region.mayHangOver && end > length + std::max(LastDigit * rate, 0.5)) {
        Refuse(region, "ends behind the end of the recording, " + FormatClock(length / rate));
    }
    if (region.lowHz >= rate / 2) {
        Refuse(region, "lies above half the sample rate");
    }
    Wrapper::RenderRegion placed{std::llround(first),
                                 std::min(std::llround(end), static_cast<long long>(frames))};
    if (placed.end <= placed.first) {
        Refuse(region, "is shorter than a sample");
    }
    placed.lowHz = region.lowHz;
    placed.highHz = region.highHz;
    return placed;
}

} // namespace

void CheckRegion(const WantedRegion& region)
{
    if (region.start.isInSamples == region.end.isInSamples) {
        if (region.end.value < region.start.value) {
            Refuse(region, "ends before it begins");
        }
        if (region.end.value == region.start.value) {
            Refuse(region, "is empty: it ends where it begins");
        }
    }
    if (region.highHz != 0 && region.highHz <= region.lowHz) {
        Refuse(region, "the lower frequency is not below the upper one");
    }
}

WantedRegion ParseRegion(std::string_view text)
{
    const size_t comma = text.find(',');
    const Pair times =
        Part(text.substr(0, comma), text, "a region is START-END or START-END,LOW-HIGH");
    WantedRegion region;
    region.name = "--region " + Printable(text);
    region.start = ParseTime(times.first, text);
    region.end = ParseTime(times.second, text);
    if (comma != std::string_view::npos) {
        const Pair band = Part(text.substr(comma + 1), text, "frequencies are LOW-HIGH, in Hz");
        region.lowHz = ParseFrequency(band.first, text);
        region.highHz = ParseFrequency(band.second, text);
        if (region.highHz == 0) {
            throw UsageError(region.name + ": the upper frequency is 0");
        }
    }
    try {
        CheckRegion(region);
    } catch (const FileError& error) {
        throw UsageError(error.what());
    }
    return region;
}

std::vector<Wrapper::RenderRegion>
PlaceRegions(const std::vector<WantedRegion>& wanted, int sampleRate, int64_t frames)
{
    std::vector<Wrapper::RenderRegion> placed;
    placed.reserve(wanted.size());
    for (const WantedRegion& region : wanted) {
        placed.push_back(PlaceRegion(region, sampleRate, frames));
    }
    return placed;
}

} // namespace Cli

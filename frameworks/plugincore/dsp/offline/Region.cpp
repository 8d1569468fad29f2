// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/offline/Region.h"

#include <algorithm>
#include <utility>

namespace DSP {

namespace {

constexpr double LeastSelectivity = 0.001; // s
constexpr double GreatestSelectivity = 2;  // s
// The edge of a band is 6 bins wide, what a Blackman window smears. A transform lasts 0.7 to 1.4
// times the selectivity, so that an edge takes at most 0.7 of the narrowest band's width.
constexpr double SelectivityOfWidth = 12;

double GetNarrowest(const RegionBox& box, double nyquist) noexcept
{
    const double high = std::min(box.highHz, nyquist);
    double narrowest = high - box.lowHz;
    if (box.lowHz > 0) {
        narrowest = std::min(narrowest, box.lowHz);
    }
    if (high < nyquist) {
        narrowest = std::min(narrowest, nyquist - high);
    }
    return narrowest;
}

} // namespace

int64_t Region::Part::GetFadeInBegin() const noexcept
{
    return box.first - fadeIn / 2;
}

int64_t Region::Part::GetFadeOutBegin() const noexcept
{
    return box.end - fadeOut / 2;
}

Region::Region(std::vector<Part> newParts)
    : parts(std::move(newParts))
    , first(parts.front().GetFadeInBegin())
    , lowHz(parts.front().box.lowHz)
    , highHz(parts.front().box.highHz)
{
    for (const Part& part : parts) {
        first = std::min(first, part.GetFadeInBegin());
        end = std::max(end, part.GetEnd());
        lowHz = std::min(lowHz, part.box.lowHz);
        highHz = std::max(highHz, part.box.highHz);
    }
}

bool Region::IsBounded() const noexcept
{
    return std::any_of(
        parts.begin(), parts.end(), [](const Part& part) { return part.box.IsBounded(); });
}

bool Region::HasOneBand() const noexcept
{
    return std::all_of(parts.begin(), parts.end(), [&](const Part& part) {
        return part.box.HasSameBand(parts.front().box);
    });
}

double Region::GetSelectivity(double rate) const noexcept
{
    double narrowest = rate / 2;
    for (const Part& part : parts) {
        narrowest = std::min(narrowest, GetNarrowest(part.box, rate / 2));
    }
    return std::clamp(SelectivityOfWidth / narrowest, LeastSelectivity, GreatestSelectivity);
}

void Region::FindParts(int64_t frame, std::vector<std::size_t>& indices) const
{
    indices.clear();
    std::size_t nearest = 0;
    int64_t least = std::numeric_limits<int64_t>::max();
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const RegionBox& box = parts[i].box;
        const int64_t distance = std::max(box.first - frame, frame - (box.end - 1));
        if (distance <= 0) {
            indices.push_back(i);
        } else if (distance < least) {
            least = distance;
            nearest = i;
        }
    }
    if (indices.empty()) {
        indices.push_back(nearest);
    }
}

} // namespace DSP

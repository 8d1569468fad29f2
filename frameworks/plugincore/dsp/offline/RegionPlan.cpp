// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/offline/RegionPlan.h"

#include "frameworks/plugincore/dsp/offline/RegionFade.h"

#include <algorithm>
#include <bit>
#include <tuple>
#include <utility>

namespace DSP {

namespace {

RegionBox Fit(RegionBox box, const RegionPlanSetup& setup) noexcept
{
    box.first = std::max<int64_t>(box.first, 0);
    box.end = std::min(box.end, setup.frames);
    if (box.highHz >= setup.rate / 2) {
        box.highHz = RegionBox::NoUpperBound;
    }
    return box;
}

// Boxes of one band that touch are one: a fade between them would be heard as a dip.
std::vector<RegionBox> JoinBoxes(std::vector<RegionBox> boxes)
{
    std::sort(boxes.begin(), boxes.end(), [](const RegionBox& a, const RegionBox& b) {
        return std::tie(a.lowHz, a.highHz, a.first) < std::tie(b.lowHz, b.highHz, b.first);
    });
    std::vector<RegionBox> joined;
    for (const RegionBox& box : boxes) {
        if (!joined.empty() && joined.back().HasSameBand(box) && box.first <= joined.back().end) {
            joined.back().end = std::max(joined.back().end, box.end);
        } else {
            joined.push_back(box);
        }
    }
    std::stable_sort(joined.begin(), joined.end(), [](const RegionBox& a, const RegionBox& b) {
        return a.first < b.first;
    });
    return joined;
}

// Hop of a filterbank for the box: an eighth of its transform, the power of two from 0.7 of the
// selectivity on.
int64_t GetHop(const RegionBox& box, double rate)
{
    const double least = 0.7 * rate * Region(std::vector<Region::Part>{{box}}).GetSelectivity(rate);
    return std::max<int64_t>(static_cast<int64_t>(std::bit_ceil(static_cast<uint64_t>(least))) / 8,
                             1);
}

// Frequencies have their own grain in time: there half a fade is a whole number of quarter hops,
// where the box has room for that.
int64_t FitToHops(int64_t fade, const RegionBox& box, double rate)
{
    const int64_t grain = 2 * std::max<int64_t>(GetHop(box, rate) / 4, 1);
    const int64_t above = (fade + grain - 1) / grain * grain;
    const int64_t most = box.GetLength() / 2;
    if (above <= most) {
        return above;
    }
    return most >= grain ? most / grain * grain : fade;
}

Region::Part MakePart(const RegionBox& box, const RegionPlanSetup& setup)
{
    int64_t fade = GetFadeFrames(setup.fadeMilliseconds, setup.rate, box.GetLength());
    if (box.IsBounded()) {
        fade = FitToHops(fade, box, setup.rate);
    }
    // Half of a fade lies outside the box, and nothing outside the recording: where one ends with
    // the other, there is no fade.
    return {box, std::min(fade, 2 * box.first), std::min(fade, 2 * (setup.frames - box.end))};
}

} // namespace

BoxFault FindFault(const RegionBox& box, const RegionPlanSetup& setup) noexcept
{
    if (box.end <= box.first) {
        return BoxFault::IsEmpty;
    }
    if (box.end <= 0 || box.first >= setup.frames) {
        return BoxFault::IsOutside;
    }
    const bool hasBand = box.lowHz >= 0 && box.highHz > box.lowHz; // a NaN has none
    if (!hasBand) {
        return BoxFault::HasNoBand;
    }
    return box.lowHz >= setup.rate / 2 ? BoxFault::IsAboveNyquist : BoxFault::None;
}

std::vector<Region> PlanRegions(std::vector<RegionBox> boxes, const RegionPlanSetup& setup)
{
    for (RegionBox& box : boxes) {
        box = Fit(box, setup);
    }
    std::vector<Region> regions;
    std::vector<Region::Part> open; // those of the region that is being gathered
    int64_t openEnd = 0;
    for (const RegionBox& box : JoinBoxes(std::move(boxes))) {
        const Region::Part part = MakePart(box, setup);
        if (!open.empty() && part.GetFadeInBegin() > openEnd) {
            regions.emplace_back(std::move(open));
            open = {};
        }
        openEnd = open.empty() ? part.GetEnd() : std::max(openEnd, part.GetEnd());
        open.push_back(part);
    }
    if (!open.empty()) {
        regions.emplace_back(std::move(open));
    }
    return regions;
}

} // namespace DSP

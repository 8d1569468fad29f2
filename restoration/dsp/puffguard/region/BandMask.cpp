// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/region/BandMask.h"

#include "frameworks/plugincore/dsp/signal/BlockPieces.h"
#include "restoration/dsp/puffguard/VectorOps.h"
#include "restoration/dsp/puffguard/region/BandWeights.h"

#include <algorithm>
#include <cmath>

namespace DSP {

namespace {

constexpr long MostHalfLength = 64; // frames

} // namespace

BandMask::BandMask(const Setup& setup)
    : region(setup.region)
    , bank(setup.pool)
    , hasOneBand(region.HasOneBand())
    , pointers(setup.channels)
{
    ConfigureBandBank(bank,
                      static_cast<int32_t>(setup.channels),
                      static_cast<int32_t>(setup.sampleRate),
                      region.GetSelectivity(setup.sampleRate));
    const long half = std::lround(setup.fadeFrames / 2 / bank.GetHop());
    halfLength = static_cast<uint32_t>(std::clamp(half, 1L, MostHalfLength));
    weights = MakeBandWeights(bank, region.GetLowHz(), region.GetHighHz());
    smoothed.configure(hasOneBand ? 0 : weights.size(), halfLength, 0);
    power.resize(weights.size());
    spectrum.configure(1, bank.GetFFTSize() + 2, 0);
}

void BandMask::Process(int64_t position, uint32_t frames, float* const* channels)
{
    const auto runHop = [&](uint32_t begin, uint32_t hop) {
        bank.take(pointers.data());
        if (!IsSilent()) {
            openHops = static_cast<uint32_t>(bank.GetFFTSize()) / hop;
        }
        for (float* samples : pointers) {
            VectorOps::Zero(samples, hop);
        }
        RunHop(position + begin + hop - bank.GetFFTSize() / 2);
    };
    RunInPieces(frames, GetHop(), channels, pointers, runHop);
}

bool BandMask::IsSilent() const
{
    return std::all_of(pointers.begin(), pointers.end(), [&](const float* samples) {
        return std::all_of(samples, samples + GetHop(), [](float x) { return x == 0.0F; });
    });
}

void BandMask::RunHop(int64_t centre)
{
    if (!hasOneBand) {
        MoveTo(centre);
    }
    if (openHops > 0) {
        --openHops;
        const auto binCount = static_cast<int32_t>(weights.size());
        for (std::size_t channel = 0; channel < pointers.size(); ++channel) {
            float* const bins = spectrum.GetChannel(0);
            bank.transform(static_cast<int32_t>(channel), binCount, bins, power.data());
            WeighBins(weights, bins);
            bank.add(static_cast<int32_t>(channel), binCount, bins);
        }
    }
    bank.giveOnto(pointers.data());
}

// Boxes that border on each other share the bin between them.
void BandMask::WantParts()
{
    wanted.assign(weights.size(), 0.0F);
    for (const std::size_t part : wantedParts) {
        const RegionBox& box = region.GetParts()[part].box;
        const std::vector<float> more = MakeBandWeights(bank, box.lowHz, box.highHz);
        for (std::size_t bin = 0; bin < wanted.size(); ++bin) {
            wanted[bin] = std::min(wanted[bin] + more[bin], 1.0F);
        }
    }
}

// The average stands for the middle of what it looks at, so that it is given what comes later.
void BandMask::MoveTo(int64_t centre)
{
    region.FindParts(centre + static_cast<int64_t>(halfLength) * bank.GetHop(), partsAhead);
    const bool isFirst = wantedParts.empty();
    if (wantedParts != partsAhead) {
        wantedParts.swap(partsAhead);
        WantParts();
        steadyFrames = 0;
    }
    const uint32_t length = 2 * halfLength + 1;
    if (steadyFrames >= length) {
        return;
    }
    const uint32_t steps = isFirst ? length : 1; // as if it had always been there
    steadyFrames += steps;
    for (std::size_t bin = 0; bin < weights.size(); ++bin) {
        RunningHann<float>& average = smoothed[bin];
        for (uint32_t step = 0; step < steps; ++step) {
            average.process(wanted[bin]);
        }
        weights[bin] = std::clamp(average.GetCurrent(), 0.0F, 1.0F);
    }
}

} // namespace DSP

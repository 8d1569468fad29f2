// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/region/Crossover.h"

#include "frameworks/plugincore/dsp/signal/BlockPieces.h"
#include "restoration/dsp/puffguard/VectorOps.h"
#include "restoration/dsp/puffguard/region/BandWeights.h"

namespace DSP {

void Crossover::Configure(const Setup& setup)
{
    ConfigureBandBank(bank,
                      static_cast<int32_t>(setup.channels),
                      static_cast<int32_t>(setup.sampleRate),
                      setup.selectivity);
    weights = MakeBandWeights(bank, setup.lowHz, setup.highHz);
    power.resize(weights.size());
    while (!weights.empty() && weights.back() == 0.0F) {
        weights.pop_back();
    }
    spectrum.configure(1, bank.GetFFTSize() + 2, 0);
    pointers.resize(setup.channels);
}

void Crossover::Process(uint32_t frames, float* const* channels)
{
    float* const bins = spectrum.GetChannel(0);
    const auto binCount = static_cast<int32_t>(weights.size());
    const auto runHop = [&](uint32_t /*begin*/, uint32_t hop) {
        bank.take(pointers.data());
        for (std::size_t channel = 0; channel < pointers.size(); ++channel) {
            bank.transform(static_cast<int32_t>(channel), binCount, bins, power.data());
            WeighBins(weights, bins);
            bank.add(static_cast<int32_t>(channel), binCount, bins);
            VectorOps::Zero(pointers[channel], hop);
        }
        bank.giveOnto(pointers.data());
    };
    RunInPieces(frames, GetHop(), channels, pointers, runHop);
}

} // namespace DSP

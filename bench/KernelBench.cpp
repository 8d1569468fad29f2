// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/FftwTransform.h"
#include "bench/Measure.h"
#include "bench/Signal.h"
#include "frameworks/plugincore/dsp/signal/FFTImpl.h"
#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "restoration/dsp/puffguard/OversampledFilterbank.h"
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"
#include "restoration/dsp/puffguard/pitch/Autocorr.h"
#include "restoration/dsp/puffguard/pitch/FrameHistory.h"
#include "restoration/dsp/puffguard/pitch/LagTracker.h"

#include <cstddef>
#include <cstdio>
#include <vector>

namespace Bench {

namespace {

constexpr int Rounds = 101;
constexpr int Calls = 100; // of a kernel in one turn

void PrintRatio(const char* name, int size, const Comparison& result)
{
    std::printf(
        "  %-24s %6d  %5.2f   (%.2f us)\n", name, size, result.ratio, result.seconds * 1e6 / Calls);
}

/// Measures `Calls` calls of a kernel against as many transforms there and back of `size`.
template <typename Kernel>
void PrintKernel(const char* name, int size, Kernel&& kernel)
{
    FftwTransform reference(size);
    const auto runKernel = [&] {
        for (int i = 0; i < Calls; ++i) {
            kernel();
        }
    };
    PrintRatio(name,
               size,
               Compare(
                   Rounds, [] {}, runKernel, [&] { reference.RunPairs(Calls); }));
}

void PrintTransform(int order)
{
    DSP::FFTImpl<float> transform(order);
    const auto size = static_cast<std::size_t>(transform.GetSize());
    std::vector<float> samples = MakeSpeech(1, 48000, 1)[0];
    samples.resize(size);
    std::vector<float> spectrum(size + 2);
    PrintKernel("transform and back", transform.GetSize(), [&] {
        transform.Forward(samples.data(), spectrum.data());
        transform.Inverse(spectrum.data(), samples.data());
    });
}

/// All runs of the tracker that one call can have.
void PrintTrackerRuns(double sampleRate)
{
    constexpr int Runs = DSP::Autocorr::MaxFrames;
    const auto sizes = DSP::Synapse::AnalysisSizes::ForRate(sampleRate);
    DSP::Autocorr autocorr(sizes.minLag, sizes.maxLag);
    DSP::Synapse::LagTracker tracker(sizes, 64);
    DSP::Synapse::FrameHistory history(autocorr.GetFrameLength(),
                                       sizes.analysisHop / sizes.decimation);
    const std::vector<float> signal = MakeSpeech(1, sizes.decimatedRate, 4)[0];
    std::size_t position = 0;
    PrintKernel("16 runs of the tracker", autocorr.GetFftSize(), [&] {
        while (history.GetDueCount() < Runs) {
            history.Append(signal[position]);
            position = (position + 1) % signal.size();
        }
        for (int part = 0; part < DSP::Autocorr::Parts; ++part) {
            autocorr.ComputePart(part, history.GetFrames(), Runs);
        }
        history.DropFrames(Runs);
        for (int run = 0; run < Runs; ++run) {
            tracker.Run(autocorr.GetCorrelation(run), autocorr.GetFirstLag(run));
        }
    });
}

void PrintFilterbankHop(int sampleRate)
{
    DSP::FFTPool transforms("Bench");
    DSP::OversampledFilterbank bank(transforms);
    bank.initialise(1, sampleRate, 8192);
    bank.configure(0.1F, 8, -2, -1);
    std::vector<float> signal = MakeSpeech(1, static_cast<float>(sampleRate), 4)[0];
    std::vector<float> output(static_cast<std::size_t>(bank.GetHop()));
    const int repairedBins = 2400 * bank.GetFFTSize() / sampleRate; // as many as can be repaired
    std::vector<float> spectrum(2 * static_cast<std::size_t>(repairedBins));
    std::vector<float> power(static_cast<std::size_t>(bank.GetFFTSize() / 2 + 1));
    const int hop = bank.GetHop();
    int position = 0;
    PrintKernel("hop of the filterbank", bank.GetFFTSize(), [&] {
        position = position + 2 * hop > static_cast<int>(signal.size()) ? 0 : position + hop;
        const float* const input = signal.data() + position;
        float* const samples = output.data();
        bank.take(&input);
        bank.transform(0, repairedBins, spectrum.data(), power.data());
        bank.add(0, repairedBins, spectrum.data());
        bank.giveOnto(&samples);
    });
}

} // namespace

void PrintKernelRatios()
{
    std::printf("Kernel / FFTW for a transform and back of its size:\n");
    for (int order = 9; order <= 14; ++order) {
        PrintTransform(order);
    }
    for (const int sampleRate : {44100, 48000, 96000}) {
        PrintTrackerRuns(sampleRate);
        PrintFilterbankHop(sampleRate);
    }
}

} // namespace Bench

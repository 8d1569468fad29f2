// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace DSP::Synapse {

namespace {

constexpr double LeastRateHz = 4000.0;
constexpr double LowestPitchHz = 45.0;
constexpr double HighestPitchHz = 650.0;
constexpr double RunSeconds = 0.00056;
constexpr int LeastHop = 8;

int HopFor(double rate)
{
    int hop = LeastHop;
    while (hop < rate * RunSeconds) {
        hop *= 2;
    }
    return hop;
}

} // namespace

AnalysisSizes AnalysisSizes::ForRate(double sampleRate)
{
    const double rate = std::max(sampleRate, LeastRateHz);
    AnalysisSizes sizes;
    sizes.sampleRate = static_cast<float>(rate);
    sizes.decimation = rate > 22050.0 ? 4 : 1;
    sizes.analysisHop = HopFor(rate);
    sizes.minLag = (static_cast<int>(rate / HighestPitchHz) + 3) / sizes.decimation;
    sizes.maxLag = static_cast<int>(rate / LowestPitchHz) / sizes.decimation;
    sizes.decimatedRate = static_cast<float>(rate / sizes.decimation);
    // The decimation counts twice here, on purpose: the tracker's time constants were tuned to it.
    sizes.trackerRate = static_cast<float>(rate / sizes.decimation / sizes.analysisHop);
    return sizes;
}

int AnalysisSizes::GetLatency(VocalRange range,
                              bool dynamicProgramming,
                              int delayFrames) const noexcept
{
    constexpr std::array LowestOfRange{45.0, 100.0, 170.0};
    const auto index =
        std::min<std::size_t>(static_cast<std::size_t>(range), LowestOfRange.size() - 1);
    const auto period =
        static_cast<int>(std::lround(static_cast<double>(sampleRate) / LowestOfRange[index]));
    const int decimatedPeriod = period / decimation;
    const int frame = static_cast<int>(decimatedPeriod * 1.8);
    const int halfFrame = frame * (decimation / 2);
    return dynamicProgramming ? analysisHop * 2 * delayFrames + halfFrame
                              : analysisHop / decimation + halfFrame;
}

} // namespace DSP::Synapse

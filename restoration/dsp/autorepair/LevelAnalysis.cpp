// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/LevelAnalysis.h"

#include "restoration/dsp/autorepair/Decibel.h"
#include "restoration/dsp/autorepair/Sums.h"

#include <algorithm>
#include <bit>

namespace AutoRepair {

namespace {

constexpr double LongSeconds = 0.03;      // resolves 60 Hz, no longer than a burst
constexpr double ShortSeconds = 0.02;     // for what begins and ends
constexpr double HighestVoice = 3000;     // Hz, the end of the highest band
constexpr unsigned LeastVoiceRate = 8000; // Hz, so that these stay as they were
constexpr int LowShift = 2;               // from there to 2 kHz or more, for 520 Hz
constexpr std::size_t FramesAtOnce = 256;
constexpr std::size_t SilenceAtOnce = 1024;

// Halvings that leave at least `LeastVoiceRate`.
int VoiceShift(int sampleRate)
{
    return static_cast<int>(std::bit_width(static_cast<unsigned>(sampleRate) / LeastVoiceRate)) - 1;
}

// Covers half of the longest window, in whole samples of the lowest rate.
int64_t LeadOf(int sampleRate, int shift)
{
    const int64_t step = int64_t{1} << shift;
    const auto reach = static_cast<int64_t>(LowSpectrumSeconds * sampleRate);
    return (reach / step + 1) * step;
}

template <std::size_t count>
std::array<BinRange, count> FindRanges(const std::array<Band, count>& bands, const BinScale& scale)
{
    std::array<BinRange, count> ranges{};
    std::transform(bands.begin(), bands.end(), ranges.begin(), [&](const Band& band) {
        return scale.Below(band.low, band.high);
    });
    return ranges;
}

template <std::size_t count>
void AddPowers(std::span<const float> power,
               const std::array<BinRange, count>& ranges,
               std::array<float, count>& powers)
{
    for (std::size_t i = 0; i < count; ++i) {
        powers[i] += SumOf<float>(ranges[i].Of(power));
    }
}

template <std::size_t count>
void ToMeanLevels(std::array<float, count>& powers, std::size_t channels)
{
    std::transform(powers.begin(), powers.end(), powers.begin(), [&](float sum) {
        return static_cast<float>(
            ToDecibel(static_cast<double>(sum) / static_cast<double>(channels)));
    });
}

} // namespace

LevelAnalysis::LevelAnalysis(int sampleRate, int newChannels, LevelStore& newStore)
    : store(newStore)
    , channelCount(static_cast<std::size_t>(newChannels))
    , grid(sampleRate)
    , voiceShift(VoiceShift(sampleRate))
    , lead(LeadOf(sampleRate, voiceShift + LowShift))
    , longWindow({LongSeconds, sampleRate, voiceShift, lead, HighestVoice})
    , shortWindow({ShortSeconds, sampleRate, voiceShift, lead, HighestVoice})
    , lowWindow({LowSpectrumSeconds, sampleRate, voiceShift + LowShift, lead, HighestLowSpectrum})
    , lowSpectrum(lowWindow.GetScale())
    , longRanges(FindRanges(LongBands, longWindow.GetScale()))
    , shortRanges(FindRanges(ShortBands, shortWindow.GetScale()))
    , power(static_cast<std::size_t>(lowSpectrum.GetBinCount()))
{
    for (std::size_t i = 0; i < channelCount; ++i) {
        channels.push_back({Decimator(voiceShift), Decimator(LowShift), {}, {}});
    }
    PushSilence(lead);
}

void LevelAnalysis::PushChannel(Channel& channel, std::span<const float> samples)
{
    std::vector<float>& voice = channel.voice.GetTail();
    const std::size_t former = voice.size();
    channel.toVoice.Process(samples, voice);
    channel.toLow.Process(std::span(voice).subspan(former), channel.low.GetTail());
}

void LevelAnalysis::PushSilence(int64_t count)
{
    planar.assign(static_cast<std::size_t>(count), 0.0F);
    for (Channel& channel : channels) {
        PushChannel(channel, planar);
    }
}

void LevelAnalysis::Push(std::span<const double> samples)
{
    const std::size_t frames = samples.size() / channelCount;
    planar.resize(frames);
    for (std::size_t i = 0; i < channelCount; ++i) {
        for (std::size_t frame = 0; frame < frames; ++frame) {
            planar[frame] = static_cast<float>(samples[frame * channelCount + i]);
        }
        PushChannel(channels[i], planar);
    }
    sampleCount += static_cast<int64_t>(frames);
    MeasureReady(grid.GetCount(sampleCount));
}

void LevelAnalysis::Finish()
{
    const int64_t count = grid.GetCount(sampleCount);
    while (nextFrame < count) {
        PushSilence(SilenceAtOnce);
        MeasureReady(count);
    }
    Flush();
}

bool LevelAnalysis::IsNextReady() const
{
    const int64_t centre = grid.GetCentre(nextFrame);
    const Channel& channel = channels.front(); // all are equally far
    return longWindow.IsReady(channel.voice, centre) &&
           shortWindow.IsReady(channel.voice, centre) && lowWindow.IsReady(channel.low, centre);
}

void LevelAnalysis::MeasureReady(int64_t endFrame)
{
    while (nextFrame < endFrame && IsNextReady()) {
        ready.push_back(MeasureNext(grid.GetCentre(nextFrame)));
        ++nextFrame;
        if (ready.size() == FramesAtOnce) {
            Flush();
        }
    }
    const int64_t centre = grid.GetCentre(nextFrame);
    for (Channel& channel : channels) {
        channel.voice.DropBefore(longWindow.GetFirst(centre));
        channel.low.DropBefore(lowWindow.GetFirst(centre));
    }
}

FrameLevels LevelAnalysis::MeasureNext(int64_t centre)
{
    FrameLevels levels;
    std::fill(power.begin(), power.end(), 0.0F);
    const float share = 1.0F / static_cast<float>(channelCount);
    for (const Channel& channel : channels) {
        AddPowers(longWindow.Compute(channel.voice, centre), longRanges, levels.bands);
        AddPowers(shortWindow.Compute(channel.voice, centre), shortRanges, levels.shortBands);
        const std::span<const float> low = lowWindow.Compute(channel.low, centre);
        for (std::size_t bin = 0; bin < power.size(); ++bin) {
            power[bin] += share * low[bin];
        }
    }
    ToMeanLevels(levels.bands, channelCount);
    ToMeanLevels(levels.shortBands, channelCount);
    lowSpectrum.Measure(power, levels);
    return levels;
}

void LevelAnalysis::Flush()
{
    store.Append(ready);
    ready.clear();
}

} // namespace AutoRepair

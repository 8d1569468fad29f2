// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/RecordingScale.h"

#include "restoration/dsp/autorepair/Decibel.h"

#include <algorithm>
#include <vector>

namespace AutoRepair {

namespace {

constexpr double SpeechPercent = 95; // of a recording's frames are no louder than its speech
constexpr double InSpeech = 25;      // dB below the speech level that count as speech
constexpr double BandFloor = 60;     // dB below the speech level, where bands end
constexpr double LineFloor = 70;     // and single lines
constexpr double Median = 50;
constexpr double UpperQuartile = 75;
constexpr std::size_t FramesAtOnce = 4096;

// Places in LongBands.
constexpr std::size_t LowBandCount = 3;    // the low end without what lies between it and the voice
constexpr std::size_t LowEndBandCount = 4; // the low end
constexpr std::size_t FirstVoiceBand = 4;  // the voice without what lies between
constexpr std::size_t FirstSpeechBand = 3; // the speech

template <typename Values>
double SumLevel(const Values& levels, std::size_t first, std::size_t end)
{
    double power = 0;
    for (std::size_t i = first; i < end; ++i) {
        power += ToPower(static_cast<double>(levels[i]));
    }
    return ToDecibel(power);
}

template <typename Visit>
void ForEachFrame(const LevelStore& store, Visit visit)
{
    std::vector<FrameLevels> block(FramesAtOnce);
    for (std::size_t first = 0; first < store.GetCount(); first += FramesAtOnce) {
        block.resize(std::min(FramesAtOnce, store.GetCount() - first));
        store.Read(first, block);
        for (std::size_t i = 0; i < block.size(); ++i) {
            visit(first + i, block[i]);
        }
    }
}

/// Percentiles over the frames in speech, one after the other: the memory of one value a frame.
class SpeechFrames {
public:
    explicit SpeechFrames(const LevelStore& newStore)
        : store(newStore)
    {
        ForEachFrame(store, [&](std::size_t /*number*/, const FrameLevels& levels) {
            voice.push_back(
                static_cast<float>(SumLevel(levels.bands, FirstSpeechBand, levels.bands.size())));
        });
        std::vector<float> sorted = voice;
        speechLevel = Percentile(sorted, SpeechPercent);
    }

    double GetSpeechLevel() const { return speechLevel; }

    template <typename Value>
    double Measure(double percent, Value value) const
    {
        std::vector<float> values;
        ForEachFrame(store, [&](std::size_t number, const FrameLevels& levels) {
            if (static_cast<double>(voice[number]) > speechLevel - InSpeech) {
                values.push_back(static_cast<float>(value(LimitedLevels(levels, speechLevel))));
            }
        });
        return Percentile(values, percent);
    }

private:
    const LevelStore& store;
    std::vector<float> voice; // dB, 170 to 3000 Hz, by frame
    double speechLevel = 0;
};

template <std::size_t count>
std::array<double, count> Limit(const std::array<float, count>& levels, double floor)
{
    std::array<double, count> limited{};
    std::transform(levels.begin(), levels.end(), limited.begin(), [&](float level) {
        return std::max(static_cast<double>(level), floor);
    });
    return limited;
}

} // namespace

LimitedLevels::LimitedLevels(const FrameLevels& levels, double speechLevel)
    : bands(Limit(levels.bands, speechLevel - BandFloor))
    , shortBands(Limit(levels.shortBands, speechLevel - BandFloor))
    , lowValley(levels.lowValley.GetLimited(speechLevel - LineFloor))
    , upperValley(levels.upperValley.GetLimited(speechLevel - LineFloor))
    , tone(std::max(static_cast<double>(levels.line), speechLevel - LineFloor) -
           static_cast<double>(levels.lineMean))
    , periodicity(static_cast<double>(levels.periodicity))
{
}

double LimitedLevels::GetLowOverVoice() const
{
    return SumLevel(bands, 0, LowBandCount) - SumLevel(bands, FirstVoiceBand, bands.size());
}

double LimitedLevels::GetLowEnd() const
{
    return SumLevel(bands, 0, LowEndBandCount);
}

RecordingScale MeasureScale(const LevelStore& store)
{
    const SpeechFrames speech(store);
    RecordingScale scale;
    scale.speechLevel = speech.GetSpeechLevel();
    const auto lowOf = [](const LimitedLevels& levels) { return levels.bands[0]; };
    scale.low = speech.Measure(Median, lowOf);
    scale.lowQuartile = speech.Measure(UpperQuartile, lowOf);
    scale.upperQuartile =
        speech.Measure(UpperQuartile, [](const LimitedLevels& levels) { return levels.bands[2]; });
    scale.lowShort =
        speech.Measure(Median, [](const LimitedLevels& levels) { return levels.shortBands[0]; });
    scale.lowValley =
        speech.Measure(Median, [](const LimitedLevels& levels) { return levels.lowValley; });
    scale.upperValley =
        speech.Measure(Median, [](const LimitedLevels& levels) { return levels.upperValley; });
    scale.lowOverVoice = speech.Measure(
        Median, [](const LimitedLevels& levels) { return levels.GetLowOverVoice(); });
    scale.lowEnd =
        speech.Measure(Median, [](const LimitedLevels& levels) { return levels.GetLowEnd(); });
    return scale;
}

} // namespace AutoRepair

// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/RecordingScale.h"

#include "restoration/dsp/autorepair/Decibel.h"

#include <algorithm>
#include <array>
#include <span>
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

/// A percentile of the frames in speech.
struct Measure {
    double RecordingScale::*target;
    double percent;
    double (*value)(const LimitedLevels&);
};

double LowOf(const LimitedLevels& levels)
{
    return levels.bands[0];
}

constexpr std::array Measures = {
    Measure{&RecordingScale::low, Median, LowOf},
    Measure{&RecordingScale::lowQuartile, UpperQuartile, LowOf},
    Measure{&RecordingScale::upperQuartile,
            UpperQuartile,
            [](const LimitedLevels& levels) { return levels.bands[2]; }},
    Measure{&RecordingScale::lowShort,
            Median,
            [](const LimitedLevels& levels) { return levels.shortBands[0]; }},
    Measure{&RecordingScale::lowValley,
            Median,
            [](const LimitedLevels& levels) { return levels.lowValley; }},
    Measure{&RecordingScale::upperValley,
            Median,
            [](const LimitedLevels& levels) { return levels.upperValley; }},
    Measure{&RecordingScale::lowOverVoice,
            Median,
            [](const LimitedLevels& levels) { return levels.GetLowOverVoice(); }},
    Measure{&RecordingScale::lowEnd,
            Median,
            [](const LimitedLevels& levels) { return levels.GetLowEnd(); }},
};

// Of which the values of all frames are held at once: memory against reading the levels again.
constexpr std::size_t MeasuresAtOnce = 4;

/// The frames in speech.
class SpeechFrames {
public:
    explicit SpeechFrames(const LevelStore& newStore)
        : store(newStore)
    {
        voice.reserve(store.GetCount());
        ForEachFrame(store, [&](std::size_t /*number*/, const FrameLevels& levels) {
            voice.push_back(
                static_cast<float>(SumLevel(levels.bands, FirstSpeechBand, levels.bands.size())));
        });
        std::vector<float> sorted = voice;
        speechLevel = Percentile(sorted, SpeechPercent);
    }

    double GetSpeechLevel() const { return speechLevel; }

    /// Takes at most MeasuresAtOnce measures.
    void Take(std::span<const Measure> measures, RecordingScale& scale) const
    {
        std::array<std::vector<float>, MeasuresAtOnce> values;
        const auto count = static_cast<std::size_t>(std::count_if(
            voice.begin(), voice.end(), [&](float level) { return IsSpeech(level); }));
        for (std::size_t i = 0; i < measures.size(); ++i) {
            values[i].reserve(count);
        }
        ForEachFrame(store, [&](std::size_t number, const FrameLevels& levels) {
            if (!IsSpeech(voice[number])) {
                return;
            }
            const LimitedLevels limited(levels, speechLevel);
            for (std::size_t i = 0; i < measures.size(); ++i) {
                values[i].push_back(static_cast<float>(measures[i].value(limited)));
            }
        });
        for (std::size_t i = 0; i < measures.size(); ++i) {
            scale.*measures[i].target = Percentile(values[i], measures[i].percent);
        }
    }

private:
    bool IsSpeech(float level) const { return static_cast<double>(level) > speechLevel - InSpeech; }

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
    const std::span<const Measure> all = Measures;
    for (std::size_t first = 0; first < all.size(); first += MeasuresAtOnce) {
        speech.Take(all.subspan(first, std::min(MeasuresAtOnce, all.size() - first)), scale);
    }
    return scale;
}

} // namespace AutoRepair

// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/ScoreTrack.h"

#include "restoration/dsp/autorepair/Weights.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace AutoRepair {

namespace {

constexpr std::ptrdiff_t FramesAtOnce = 4096;
constexpr std::ptrdiff_t Reach = 30; // frames to both sides that the features look at

/// Which frames to both sides a feature looks at.
struct Reaches {
    std::ptrdiff_t nearest;
    std::ptrdiff_t farthest;
};
constexpr Reaches Behind = {14, 20};     // 70 to 100 ms: a voice is still there, a pop is gone
constexpr Reaches Before = {12, 18};     // 60 to 90 ms
constexpr Reaches ShortBefore = {6, 12}; // 30 to 60 ms
constexpr Reaches VoiceBehind = {8, 14}; // 40 to 70 ms: from burst to vowel
constexpr Reaches ShortDips = {5, 12};   // on both sides of a burst
constexpr Reaches Dips = {8, 30};
constexpr std::ptrdiff_t PeriodicityReach = 3; // periodic for 70 ms: a voice

/// A stretch of frames with those beside it; beyond the recording's ends the last ones repeat.
class FrameBlock {
public:
    FrameBlock(const LevelStore& store, double speechLevel)
        : levels(store)
        , limit(speechLevel)
        , total(static_cast<std::ptrdiff_t>(store.GetCount()))
    {
    }

    void Load(std::ptrdiff_t begin, std::ptrdiff_t end)
    {
        first = std::max<std::ptrdiff_t>(begin - Reach, 0);
        raw.resize(static_cast<std::size_t>(std::min(end + Reach, total) - first));
        levels.Read(static_cast<std::size_t>(first), raw);
        frames.clear();
        for (const FrameLevels& frame : raw) {
            frames.emplace_back(frame, limit);
        }
    }

    const LimitedLevels& At(std::ptrdiff_t frame) const
    {
        const std::ptrdiff_t inside = std::clamp<std::ptrdiff_t>(frame, 0, total - 1);
        return frames[static_cast<std::size_t>(inside - first)];
    }

private:
    const LevelStore& levels;
    double limit;
    std::ptrdiff_t total;
    std::ptrdiff_t first = 0;
    std::vector<FrameLevels> raw;
    std::vector<LimitedLevels> frames;
};

/// One value of the frames around a certain one.
template <typename Value>
class Surroundings {
public:
    Surroundings(const FrameBlock& newBlock, std::ptrdiff_t newFrame, Value newValue)
        : block(newBlock)
        , frame(newFrame)
        , value(newValue)
    {
    }

    double Here() const { return value(block.At(frame)); }

    double Mean(std::ptrdiff_t from, std::ptrdiff_t to) const
    {
        double sum = 0;
        for (std::ptrdiff_t i = from; i <= to; ++i) {
            sum += value(block.At(frame + i));
        }
        return sum / static_cast<double>(to - from + 1);
    }
    double MeanBefore(const Reaches& reaches) const
    {
        return Mean(-reaches.farthest, -reaches.nearest);
    }
    double MeanBehind(const Reaches& reaches) const
    {
        return Mean(reaches.nearest, reaches.farthest);
    }

    /// Above the deeper dip on both sides.
    double OverDips(const Reaches& reaches) const
    {
        return Here() - std::max(Least(-reaches.farthest, -reaches.nearest),
                                 Least(reaches.nearest, reaches.farthest));
    }

private:
    double Least(std::ptrdiff_t from, std::ptrdiff_t to) const
    {
        double least = value(block.At(frame + from));
        for (std::ptrdiff_t i = from + 1; i <= to; ++i) {
            least = std::min(least, value(block.At(frame + i)));
        }
        return least;
    }

    const FrameBlock& block;
    std::ptrdiff_t frame;
    Value value;
};

auto BandAround(const FrameBlock& block, std::ptrdiff_t frame, std::size_t band)
{
    return Surroundings(
        block, frame, [band](const LimitedLevels& levels) { return levels.bands[band]; });
}

auto ShortBandAround(const FrameBlock& block, std::ptrdiff_t frame, std::size_t band)
{
    return Surroundings(
        block, frame, [band](const LimitedLevels& levels) { return levels.shortBands[band]; });
}

using FeatureList = std::array<double, ScoreWeights.size()>;

FeatureList GetFeatures(const FrameBlock& block,
                        std::ptrdiff_t frame,
                        const RecordingScale& scale,
                        double lowOverVoice)
{
    const auto low = BandAround(block, frame, 0);           // 15 to 60 Hz
    const auto upper = BandAround(block, frame, 1);         // 60 to 110 Hz
    const auto lowShort = ShortBandAround(block, frame, 0); // 60 to 140 Hz
    const auto voice = ShortBandAround(block, frame, 3);    // 500 to 3000 Hz
    const auto middle = ShortBandAround(block, frame, 2);   // 260 to 500 Hz
    const auto periodicity =
        Surroundings(block, frame, [](const LimitedLevels& levels) { return levels.periodicity; });
    const LimitedLevels& here = block.At(frame);
    return {
        low.Here() - scale.low, // above what is usual in this recording's speech
        lowShort.Here() - scale.lowShort,
        low.Here() - scale.lowQuartile,
        here.bands[2] - scale.upperQuartile,
        low.Here() - scale.speechLevel,
        low.Here() - low.MeanBefore(Before),
        low.Here() - low.MeanBehind(Behind),
        lowShort.Here() - lowShort.MeanBefore(ShortBefore),
        middle.Here() - middle.MeanBefore(ShortBefore),
        lowShort.OverDips(ShortDips),
        ShortBandAround(block, frame, 1).OverDips(ShortDips),
        low.OverDips(Dips),
        upper.OverDips(Dips),
        low.Here() - upper.Here(),
        here.bands[3] - here.bands[4],
        voice.MeanBehind(VoiceBehind) - voice.Here(), // how far the voice will have risen
        here.lowValley - scale.lowValley, // what lies between harmonics: a pop fills the gaps
        here.upperValley - scale.upperValley,
        here.upperValley - scale.speechLevel,
        here.tone,
        periodicity.Mean(-PeriodicityReach, PeriodicityReach),
        lowOverVoice, // against the voice of the moment
    };
}

double Score(const FeatureList& features)
{
    double fullRange = ScoreBias.fullRange;
    double lowCut = ScoreBias.lowCut;
    for (std::size_t i = 0; i < features.size(); ++i) {
        fullRange += features[i] * ScoreWeights[i].fullRange;
        lowCut += features[i] * ScoreWeights[i].lowCut;
    }
    const double greater = std::max(fullRange, lowCut);
    return greater + std::log1p(std::exp(std::min(fullRange, lowCut) - greater));
}

/// The mean of each value with its neighbours.
void Smooth(std::vector<float>& values)
{
    float before = values.front();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const float here = values[i];
        const float behind = i + 1 < values.size() ? values[i + 1] : here;
        values[i] = (before + here + behind) / 3.0F;
        before = here;
    }
}

} // namespace

ScoreTrack ComputeScores(const LevelStore& store, const RecordingScale& scale)
{
    ScoreTrack track;
    const auto count = static_cast<std::ptrdiff_t>(store.GetCount());
    FrameBlock block(store, scale.speechLevel);
    for (std::vector<float>* values : {&track.score, &track.lowEnd, &track.lowOverVoice}) {
        values->reserve(store.GetCount());
    }
    for (std::ptrdiff_t begin = 0; begin < count; begin += FramesAtOnce) {
        const std::ptrdiff_t end = std::min(begin + FramesAtOnce, count);
        block.Load(begin, end);
        for (std::ptrdiff_t frame = begin; frame < end; ++frame) {
            const double lowOverVoice = block.At(frame).GetLowOverVoice() - scale.lowOverVoice;
            track.score.push_back(
                static_cast<float>(Score(GetFeatures(block, frame, scale, lowOverVoice))));
            track.lowEnd.push_back(static_cast<float>(block.At(frame).GetLowEnd()));
            track.lowOverVoice.push_back(static_cast<float>(lowOverVoice));
        }
    }
    Smooth(track.score);
    return track;
}

} // namespace AutoRepair

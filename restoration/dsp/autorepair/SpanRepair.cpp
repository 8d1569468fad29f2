// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/SpanRepair.h"

#include "restoration/dsp/autorepair/Decibel.h"
#include "restoration/dsp/autorepair/Hann.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace AutoRepair {

namespace {

constexpr double WindowSeconds = 0.036;    // resolves 28 Hz; shorter ones smear, longer ones ring
constexpr int Overlap = 8;                 // windows over each sample
constexpr double ReferenceSeconds = 0.015; // of the middles of the frames beside the span
constexpr double GapSeconds = 0.005;       // between span and those
constexpr double FadeWidth = 100;  // Hz below the upper frequency, over which a change fades
constexpr double LowVoice = 300;   // Hz, the voice that a pop doesn't reach
constexpr double HighVoice = 1500; // Hz
constexpr double LowEndFrom = 15;  // Hz, of the level before and after
constexpr double LowEndTo = 260;   // Hz

// Excess that is left alone, in dB: at low frequencies little, higher up what a harmonic has.
constexpr double LeastMargin = 3;
constexpr double GreatestMargin = 14;
constexpr double MarginFrom = 100;   // Hz, where it begins to grow
constexpr double MarginWidth = 200;  // Hz, until it is greatest
constexpr double MarginSoftness = 3; // dB over which it opens

// A change of the voice's level, in dB, by less than the first says nothing of when; by more than
// both together it says all.
constexpr double LeastRise = 6.5;
constexpr double RiseWidth = 19.5;
constexpr double LeastDivisor = 0.4; // dB, keeps a level voice from dividing by 0

constexpr double LoudestSeconds = 0.01;

// Over bins, a Hann window of five: wider than a harmonic, narrower than a pop.
constexpr std::array<double, 5> Smoothing = {0.25 / 3, 0.75 / 3, 1.0 / 3, 0.75 / 3, 0.25 / 3};

int64_t ToSample(double seconds, double sampleRate)
{
    return static_cast<int64_t>(std::nearbyint(seconds * sampleRate));
}

std::vector<int64_t> Series(int64_t first, int64_t step, int64_t count)
{
    std::vector<int64_t> series(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < series.size(); ++i) {
        series[i] = first + step * static_cast<int64_t>(i);
    }
    return series;
}

double LevelOf(const LowSpectra& spectra, std::size_t frame, std::size_t bin)
{
    return ToDecibel(static_cast<double>(spectra.GetPower(frame, bin)));
}

double SumPower(const LowSpectra& spectra, std::size_t frame, const BinRange& range)
{
    double sum = 0;
    for (int bin = range.first; bin < range.end; ++bin) {
        sum += static_cast<double>(spectra.GetPower(frame, static_cast<std::size_t>(bin)));
    }
    return sum;
}

double Energy(const std::vector<double>& window)
{
    return std::inner_product(window.begin(), window.end(), window.begin(), 0.0);
}

} // namespace

SpanRepair::SpanRepair(int newSampleRate, int newChannels, double upperFrequency)
    : sampleRate(newSampleRate)
    , channels(static_cast<std::size_t>(newChannels))
    , length(EvenLength(WindowSeconds, sampleRate))
    , hop(std::max(1, length / Overlap))
    , referenceFrames(std::max<int64_t>(
          1, static_cast<int64_t>(ReferenceSeconds * sampleRate / static_cast<double>(hop))))
    , gap(static_cast<int64_t>(GapSeconds * sampleRate))
    , scale(length, sampleRate)
    , voice(scale.UpTo(LowVoice, HighVoice))
    , lowEnd(scale.Below(LowEndFrom, LowEndTo))
    , binCount(static_cast<std::size_t>(scale.FirstFrom(upperFrequency)) + 1)
    , window(MakeHann(length))
    , synthesis(window)
    , allBins(std::max(binCount, static_cast<std::size_t>(voice.end)))
    , transform(length, allBins, binCount)
    , before(allBins)
    , inside(allBins)
    , behind(allBins)
    , frames(LowBinTransform::FramesAtOnce * window.size())
{
    const double norm = Energy(window) / static_cast<double>(hop);
    for (double& value : synthesis) {
        value /= norm;
    }
    for (std::size_t bin = 0; bin < binCount; ++bin) {
        const double frequency = scale.GetFrequency(static_cast<int>(bin));
        shares.push_back(std::clamp((upperFrequency - frequency) / FadeWidth, 0.0, 1.0));
        margins.push_back(LeastMargin +
                          std::clamp((frequency - MarginFrom) / MarginWidth, 0.0, 1.0) *
                              (GreatestMargin - LeastMargin));
    }
}

SpanRepair::Layout SpanRepair::GetLayout(const Span& span) const
{
    const int64_t start = ToSample(span.start, sampleRate);
    const int64_t samples = ToSample(span.end, sampleRate) - start;
    return {start, std::max<int64_t>(1, (samples + hop - 1) / hop)};
}

std::vector<int64_t> SpanRepair::CentresBefore(const Layout& layout) const
{
    return Series(layout.start - gap, -hop, referenceFrames);
}

std::vector<int64_t> SpanRepair::CentresIn(const Layout& layout) const
{
    return Series(layout.start, hop, layout.steps + 1);
}

std::vector<int64_t> SpanRepair::CentresBehind(const Layout& layout) const
{
    return Series(layout.start + hop * layout.steps + gap, hop, referenceFrames);
}

Reach SpanRepair::GetReach(const Span& span) const
{
    const Layout layout = GetLayout(span);
    return {CentresBefore(layout).back() - length / 2, CentresBehind(layout).back() + length / 2};
}

void SpanRepair::CutFrame(const Excerpt& excerpt,
                          std::size_t channel,
                          int64_t centre,
                          float* frame) const
{
    const int64_t first = centre - length / 2 - excerpt.first;
    const auto held = static_cast<int64_t>(excerpt.samples.size() / channels);
    const int64_t begin = std::clamp<int64_t>(-first, 0, length);
    const int64_t end = std::clamp<int64_t>(held - first, begin, length);
    std::fill(frame, frame + begin, 0.0F);
    const auto step = static_cast<std::ptrdiff_t>(channels);
    const double* const samples =
        excerpt.samples.data() + first * step + static_cast<std::ptrdiff_t>(channel);
    for (std::ptrdiff_t i = begin; i < end; ++i) {
        frame[i] = static_cast<float>(samples[i * step] * window[static_cast<std::size_t>(i)]);
    }
    std::fill(frame + end, frame + length, 0.0F);
}

void SpanRepair::TransformFrames(const Excerpt& excerpt,
                                 std::size_t channel,
                                 const std::vector<int64_t>& centres,
                                 std::size_t bins,
                                 LowSpectra& spectra)
{
    spectra.SetCount(centres.size());
    for (std::size_t first = 0; first < centres.size(); first += LowBinTransform::FramesAtOnce) {
        const std::size_t count = std::min(LowBinTransform::FramesAtOnce, centres.size() - first);
        for (std::size_t i = 0; i < count; ++i) {
            CutFrame(excerpt, channel, centres[first + i], frames.data() + i * window.size());
        }
        transform.Forward(std::span(frames).first(count * window.size()), bins, spectra, first);
    }
}

std::vector<double> SpanRepair::MeanLevels(const LowSpectra& spectra) const
{
    std::vector<double> levels(binCount);
    for (std::size_t frame = 0; frame < spectra.GetCount(); ++frame) {
        for (std::size_t bin = 0; bin < binCount; ++bin) {
            levels[bin] += LevelOf(spectra, frame, bin) / static_cast<double>(spectra.GetCount());
        }
    }
    return levels;
}

double SpanRepair::GetVoice(const LowSpectra& spectra, std::size_t number) const
{
    return ToDecibel(SumPower(spectra, number, voice));
}

double SpanRepair::MeanVoice(const LowSpectra& spectra) const
{
    double sum = 0;
    for (std::size_t frame = 0; frame < spectra.GetCount(); ++frame) {
        sum += GetVoice(spectra, frame);
    }
    return sum / static_cast<double>(spectra.GetCount());
}

// By frame of the span: 0 where the low end is still what it was before, 1 where it is what it will
// be behind.
std::vector<double> SpanRepair::GetTransition() const
{
    const double from = MeanVoice(before);
    const double rise = MeanVoice(behind) - from;
    const double trust = std::clamp((std::abs(rise) - LeastRise) / RiseWidth, 0.0, 1.0);
    const double divisor = std::abs(rise) > LeastDivisor ? rise : LeastDivisor;
    std::vector<double> transition;
    for (std::size_t frame = 0; frame < inside.GetCount(); ++frame) {
        const double inTime =
            static_cast<double>(frame) / static_cast<double>(inside.GetCount() - 1);
        const double byVoice = std::clamp((GetVoice(inside, frame) - from) / divisor, 0.0, 1.0);
        transition.push_back(trust * byVoice + (1 - trust) * inTime);
    }
    return transition;
}

// The ends repeat.
void SpanRepair::SmoothOverBins(std::vector<double>& excess) const
{
    const auto last = static_cast<std::ptrdiff_t>(excess.size()) - 1;
    const auto middle = static_cast<std::ptrdiff_t>(Smoothing.size() / 2);
    const std::vector<double> rough = excess;
    for (std::ptrdiff_t bin = 0; bin <= last; ++bin) {
        double sum = 0;
        for (std::ptrdiff_t i = -middle; i <= middle; ++i) {
            const std::ptrdiff_t other = std::clamp<std::ptrdiff_t>(bin + i, 0, last);
            sum += rough[static_cast<std::size_t>(other)] *
                   Smoothing[static_cast<std::size_t>(i + middle)];
        }
        excess[static_cast<std::size_t>(bin)] = sum;
    }
}

SpanRepair::Rows SpanRepair::GetExcess() const
{
    const std::vector<double> from = MeanLevels(before);
    const std::vector<double> to = MeanLevels(behind);
    const std::vector<double> transition = GetTransition();
    Rows excess;
    for (std::size_t frame = 0; frame < inside.GetCount(); ++frame) {
        const double part = transition[frame];
        std::vector<double>& row = excess.emplace_back(binCount);
        for (std::size_t bin = 0; bin < binCount; ++bin) {
            row[bin] = LevelOf(inside, frame, bin) - (from[bin] + (to[bin] - from[bin]) * part);
        }
        SmoothOverBins(row);
    }
    return excess;
}

// Leaves what is to be added.
void SpanRepair::TakeDown(const std::vector<double>& excess, std::size_t number)
{
    float* const re = inside.GetRe(number);
    float* const im = inside.GetIm(number);
    for (std::size_t bin = 0; bin < binCount; ++bin) {
        const double opening = std::clamp((excess[bin] - margins[bin]) / MarginSoftness, 0.0, 1.0);
        const double cut = std::max(excess[bin], 0.0) * opening;
        const auto factor = static_cast<float>((std::pow(10.0, -cut / 20) - 1) * shares[bin]);
        re[bin] *= factor;
        im[bin] *= factor;
    }
}

void SpanRepair::TransformAround(const Layout& layout, const Excerpt& excerpt, std::size_t channel)
{
    TransformFrames(excerpt, channel, CentresBefore(layout), allBins, before);
    TransformFrames(excerpt, channel, CentresIn(layout), allBins, inside);
    TransformFrames(excerpt, channel, CentresBehind(layout), allBins, behind);
}

void SpanRepair::AddFrame(const float* frame, std::size_t place, std::vector<double>& change) const
{
    for (std::size_t i = 0; i < synthesis.size(); ++i) {
        change[place + i * channels] += static_cast<double>(frame[i]) * synthesis[i];
    }
}

// Of what TransformAround() has left.
void SpanRepair::AddRepair(std::size_t channel, std::vector<double>& change)
{
    const Rows excess = GetExcess();
    for (std::size_t i = 0; i < excess.size(); ++i) {
        TakeDown(excess[i], i);
    }
    for (std::size_t first = 0; first < excess.size(); first += LowBinTransform::FramesAtOnce) {
        const std::size_t count = std::min(LowBinTransform::FramesAtOnce, excess.size() - first);
        transform.Inverse(inside, first, std::span(frames).first(count * window.size()));
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t start = (first + i) * static_cast<std::size_t>(hop);
            AddFrame(frames.data() + i * window.size(), start * channels + channel, change);
        }
    }
}

void SpanRepair::FindLoudest(Change& change) const
{
    const auto width = static_cast<std::size_t>(LoudestSeconds * sampleRate);
    const std::size_t count = change.samples.size() / channels;
    std::vector<double> powers(count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto begin = change.samples.begin() + static_cast<std::ptrdiff_t>(i * channels);
        const double mean =
            std::accumulate(begin, begin + static_cast<std::ptrdiff_t>(channels), 0.0) /
            static_cast<double>(channels);
        powers[i] = mean * mean;
    }
    double sum = 0;
    double greatest = 0;
    std::size_t end = width;
    for (std::size_t i = 0; i < count; ++i) {
        sum += powers[i] - (i < width ? 0.0 : powers[i - width]);
        if (sum > greatest) {
            greatest = sum;
            end = i + 1;
        }
    }
    change.removed = ToDecibel(greatest / static_cast<double>(width));
    change.loudest = change.first + static_cast<int64_t>(end) - static_cast<int64_t>(width / 2);
}

Change SpanRepair::Compute(const Span& span, const Excerpt& excerpt)
{
    const Layout layout = GetLayout(span);
    Change change;
    change.first = layout.start - length / 2;
    change.samples.resize(static_cast<std::size_t>(hop * layout.steps + length) * channels);
    std::vector<double> lowEndPowers(static_cast<std::size_t>(layout.steps) + 1);
    for (std::size_t channel = 0; channel < channels; ++channel) {
        TransformAround(layout, excerpt, channel);
        AddLowEnd(lowEndPowers);
        AddRepair(channel, change.samples);
    }
    change.lowEnd = GetGreatestLevel(lowEndPowers);
    FindLoudest(change);
    return change;
}

void SpanRepair::AddLowEnd(std::vector<double>& powers) const
{
    for (std::size_t i = 0; i < powers.size(); ++i) {
        powers[i] += SumPower(inside, i, lowEnd);
    }
}

double SpanRepair::GetGreatestLevel(const std::vector<double>& powers) const
{
    const double greatest = *std::max_element(powers.begin(), powers.end());
    // A mean square: the window's energy spreads over `length` bins, of which half are here.
    const double share = 2.0 / (Energy(window) * length * static_cast<double>(channels));
    return ToDecibel(greatest * share);
}

double SpanRepair::MeasureLowEnd(const Span& span, const Excerpt& excerpt)
{
    const std::vector<int64_t> centres = CentresIn(GetLayout(span));
    std::vector<double> powers(centres.size());
    for (std::size_t channel = 0; channel < channels; ++channel) {
        TransformFrames(excerpt, channel, centres, static_cast<std::size_t>(lowEnd.end), inside);
        AddLowEnd(powers);
    }
    return GetGreatestLevel(powers);
}

} // namespace AutoRepair

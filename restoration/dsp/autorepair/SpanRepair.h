// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/BinRange.h"
#include "restoration/dsp/autorepair/Candidates.h"
#include "restoration/dsp/autorepair/LowBinTransform.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace AutoRepair {

/// Hz, above which a repair changes nothing unless another frequency is asked for.
inline constexpr double UsualUpperFrequency = 350;

/// Other frequencies are at least this, ...
inline constexpr double LeastUpperFrequency = 50;
/// ... and at most this: up to here goes the voice by which a repair is guided.
inline constexpr double GreatestUpperFrequency = 1500;

/// Samples of a recording from number `first` on, interleaved; beyond them is silence.
struct Excerpt {
    int64_t first = 0;
    std::span<const double> samples;
};

/// Numbers of samples, `end` not included.
struct Reach {
    int64_t first = 0;
    int64_t end = 0;
};

/// What is added to a recording, from sample `first` on, to repair a span of it. It may begin
/// before the recording and end after it.
struct Change {
    int64_t first = 0;
    std::vector<double> samples; ///< interleaved
    double lowEnd = 0;           ///< dB, what MeasureLowEnd() gives for the span as it was
    double removed = 0;          ///< dB, its loudest 10 ms, of the channels' mean
    int64_t loudest = 0;         ///< the sample in the middle of these
};

/// Takes a burst down to what stands before and after it, up to `upperFrequency`, on each channel.
///
/// Under Hann windows of 36 ms, an eighth of that apart, each bin has an expected level: from what
/// stands before to what stands after. When it goes over is said by the voice's own rise between
/// 300 and 1500 Hz, where a pop doesn't reach. What exceeds it is smoothed over bins, because a pop
/// is broad and a harmonic isn't, and taken away but for a margin that spares harmonics. Phases
/// stay, and nothing is ever raised.
class SpanRepair {
public:
    SpanRepair(int newSampleRate, int newChannels, double upperFrequency = UsualUpperFrequency);

    /// Samples that a repair of `span` looks at.
    Reach GetReach(const Span& span) const;

    /// Repairs `span`; `excerpt` holds what of its reach lies in the recording.
    Change Compute(const Span& span, const Excerpt& excerpt);

    /// The greatest level in dB of 15 to 260 Hz in `span`, the mean power of all channels.
    double MeasureLowEnd(const Span& span, const Excerpt& excerpt);

private:
    using Rows = std::vector<std::vector<double>>; // by frame, then by bin

    /// Where the frames of a repair lie.
    struct Layout {
        int64_t start = 0; // middle of the span's first frame
        int64_t steps = 1; // hops to the last
    };
    Layout GetLayout(const Span& span) const;
    std::vector<int64_t> CentresBefore(const Layout& layout) const;
    std::vector<int64_t> CentresIn(const Layout& layout) const;
    std::vector<int64_t> CentresBehind(const Layout& layout) const;

    void CutFrame(const Excerpt& excerpt, std::size_t channel, int64_t centre, float* frame) const;
    void TransformFrames(const Excerpt& excerpt,
                         std::size_t channel,
                         const std::vector<int64_t>& centres,
                         std::size_t bins,
                         LowSpectra& spectra);
    void TransformAround(const Layout& layout, const Excerpt& excerpt, std::size_t channel);
    void AddRepair(std::size_t channel, std::vector<double>& change);
    void AddFrame(const float* frame, std::size_t place, std::vector<double>& change) const;
    Rows GetExcess() const;
    std::vector<double> GetTransition() const;
    std::vector<double> MeanLevels(const LowSpectra& spectra) const;
    double MeanVoice(const LowSpectra& spectra) const;
    double GetVoice(const LowSpectra& spectra, std::size_t number) const;
    void SmoothOverBins(std::vector<double>& excess) const;
    void TakeDown(const std::vector<double>& excess, std::size_t number);
    void AddLowEnd(std::vector<double>& powers) const;
    double GetGreatestLevel(const std::vector<double>& powers) const;
    void FindLoudest(Change& change) const;

    double sampleRate;
    std::size_t channels;
    int length; // of the window
    int64_t hop;
    int64_t referenceFrames; // on each side of a span
    int64_t gap;             // samples between the span and those
    BinScale scale;
    BinRange voice;
    BinRange lowEnd;
    std::size_t binCount; // that are taken down, and one
    std::vector<double> window;
    std::vector<double> synthesis; // the window, scaled so that unchanged frames add up to 1
    std::vector<double> shares;    // 1 to 0, by bin: how much of the change is made
    std::vector<double> margins;   // dB, by bin
    std::size_t allBins;           // that are looked at
    LowBinTransform transform;
    LowSpectra before; // of one channel
    LowSpectra inside;
    LowSpectra behind;
    std::vector<float> frames; // scratch
};

} // namespace AutoRepair

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "frameworks/plugincore/dsp/kernels/LaneVector.h"
#include "frameworks/qobase/util/Realtime.h"

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace DSP {

/// Autocorrelations of windowed frames, derived from their magnitude spectra, and ready for a
/// search of their peaks.
///
/// For each frame: window w[i] = 1 - cos(2 pi (i + 1/2) / n), magnitudes of its transform of F
/// samples, the cosine transform of these, a weight by lag that makes up for the window's fall,
/// negative values set to 0. From where the fall from lag 0 has ended, every lag loses what it owes
/// to a peak at half of it, which shows a false pitch one octave below.
///
/// Method: T. Tolonen, M. Karjalainen, "A computationally efficient multipitch analysis model",
/// IEEE Trans. Speech and Audio Processing 8(6), 2000; the weight by lag after P. Boersma,
/// "Accurate short-term analysis of the fundamental frequency and the harmonics-to-noise ratio of a
/// sampled sound", Proc. Institute of Phonetic Sciences Amsterdam 17, 1993.
///
/// Magnitudes instead of powers flatten the spectrum, so that a strong formant weighs less against
/// the harmonics that show the pitch. Frames go through side by side; each comes to the same bits
/// as it would alone. The cosine transform takes a transform of half the size, after W. H. Press et
/// al., "Numerical Recipes", chapter on sine and cosine transforms.
///
/// Sizes: lags in samples; frame length n = 1.8 * maxLag, truncated; F the smallest power of two
/// not below n + maxLag.
class Autocorr {
public:
    static constexpr int MaxFrames = Kernels::MaxFrames;    ///< frames that go side by side
    static constexpr int Parts = Kernels::CorrelationParts; ///< that their work comes in

    /// Makes tables and buffers. `maxLag` from 32 to 20000, `minLag` from 1 to `maxLag`. The
    /// kernels are those that the processor runs best unless a test passes others. [setup]
    Autocorr(int minLag,
             int maxLag,
             const Kernels::CorrelationKernels& newKernels = Kernels::GetKernels().correlation);

    /// Does a part, 0 to Parts - 1, of the work on 1 to MaxFrames frames. The parts come one after
    /// the other with the same samples. [process]
    void ComputePart(int part, const Kernels::PolyphaseView& source, int frames) noexcept
        UTIL_NONBLOCKING;

    /// Correlation of a frame, after the last part, for the lags 0..maxLag, a row of
    /// Kernels::GetCorrelationStride() that is 0 from there on; the caller may change the lags, as
    /// long as none is negative. [process]
    std::span<float> GetCorrelation(int frame) noexcept UTIL_NONBLOCKING;

    /// First lag at which the fall from lag 0 has ended, but at least minLag. [process]
    int GetFirstLag(int frame) const noexcept UTIL_NONBLOCKING
    {
        return firstLags[static_cast<std::size_t>(frame)];
    }

    int GetFrameLength() const noexcept { return frameLength; } ///< n, samples. [any]
    int GetFftSize() const noexcept { return fftSize; }         ///< F. [any]

private:
    struct TransformTables {
        explicit TransformTables(int length);
        Kernels::TransformPlan GetPlan() const noexcept;

        std::vector<float> factors;
        std::vector<float> separation;
        std::vector<int> order;
    };

    static int SizeFor(int length);
    void MakeFoldTables();
    void MakeLagTables();

    const Kernels::CorrelationKernels& kernels;
    int frameLength;
    int fftSize;
    int lagCount; // maxLag + 1
    TransformTables whole;
    TransformTables half;
    std::vector<float> window; // n, and a 0
    std::vector<float> sines;  // see Kernels::CorrelationPlan
    std::vector<double> cosines;
    std::vector<float> compensation;
    Kernels::CorrelationPlan plan; // points into the tables
    Kernels::LaneVector scratch;
    Kernels::LaneVector correlations; // a row a frame
    std::array<int, MaxFrames> firstLags{};
};

} // namespace DSP

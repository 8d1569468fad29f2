// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/signal/ProcessingPools.h"
#include "frameworks/qobase/util/AlignedVector.h"
#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/DataTail.h"
#include "restoration/dsp/puffguard/Windows.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// Weighted overlap-add filterbank: a stream of samples to short-time spectra and back.
///
/// Sizes in samples: F = FFT length; W = window length; H = hop, F / overlap factor. A frame's
/// spectrum is F + 2 floats, bins 0 to F/2 as interleaved (re, im), bin k at k * sampleRate / F Hz.
///
/// Unchanged spectra give the input back, late by W - H samples, to within about 1e-6 of full
/// scale, with Hann windows from 4 frames to the window on and with Blackman windows from 8 on.
/// Spectra may be kept for any number of hops between analysis and synthesis.
///
/// Method: R. E. Crochiere, "A weighted overlap-add method of short-time Fourier
/// analysis/synthesis", IEEE Trans. ASSP 28(1), 1980.
///
/// Threads: initialise() and configure() are [setup]; the others are [process], allocate nothing
/// and don't fail.
class OversampledFilterbank {
public:
    /// Takes its transform from `newPool`, which outlives the bank. [setup]
    explicit OversampledFilterbank(ProcessingFFTPool& newPool)
        : pool(newPool)
    {
    }

    /// Records what configure() builds for and resets. `newSampleRate` in Hz; `newMaxBlockSize` in
    /// samples is the largest block that will come.
    void initialise(int32_t newChannels, int32_t newSampleRate, int32_t newMaxBlockSize);

    /// Sizes everything: F is the smallest power of two, at least 8, that isn't below 0.7 `time`
    /// seconds; `overlapFactor` = F / H is a power of two up to F / 2; `windowKind` as in
    /// Windows.h; `newWindowLength` is W, even and up to F, or -1 for F. Allocates nothing when all
    /// is as it was at the call before.
    void configure(float time, int32_t overlapFactor, int32_t windowKind, int32_t newWindowLength);

    /// Forgets the signal; sizes and windows stay.
    void reset() noexcept UTIL_NONBLOCKING;

    /// Takes the next H samples a channel.
    void take(const float* const* input) noexcept UTIL_NONBLOCKING;

    /// One part of the transform of the frame of a channel that ends with the samples taken last:
    /// after the last part, its spectrum in bins 0 to `binCount` - 1, and the power re^2 + im^2 of
    /// all bins. All parts get the same arguments, and no other transform begins between them. For
    /// a bank with W = F.
    void transform(FFTPart part,
                   int32_t channel,
                   int32_t binCount,
                   float* spectrum,
                   float* power) noexcept UTIL_NONBLOCKING;
    /// All parts at once.
    void transform(int32_t channel, int32_t binCount, float* spectrum, float* power) noexcept
        UTIL_NONBLOCKING;

    /// One part, as above, of what adds a frame, whose bins from `binCount` on are 0, to what a
    /// channel gives; at most one frame before each giveOnto(), at any time before it. A frame that
    /// isn't added counts as silence. For a bank with W = F.
    void add(FFTPart part, int32_t channel, int32_t binCount, const float* spectrum) noexcept
        UTIL_NONBLOCKING;
    /// All parts at once.
    void add(int32_t channel, int32_t binCount, const float* spectrum) noexcept UTIL_NONBLOCKING;

    /// Adds the next H samples a channel onto `output`. A channel stays as it is, to the bit, where
    /// no frame added to it reaches.
    void giveOnto(float* const* output) noexcept UTIL_NONBLOCKING;

    /// The whole-stream form of take() and the transform: takes `sampleCount` samples a channel, a
    /// multiple of H, from `inputOffset` on, and writes the frames that they complete, one behind
    /// the other from float `spectrumOffset` on.
    void analyse(const float* const* input,
                 int32_t sampleCount,
                 float* const* spectra,
                 int32_t inputOffset,
                 int32_t spectrumOffset) noexcept UTIL_NONBLOCKING;

    /// Counterpart of analyse(), called in turn with it for blocks of the same length; `output` may
    /// be the memory that `input` was.
    void synthesise(float* const* output,
                    int32_t sampleCount,
                    const float* const* spectra,
                    int32_t outputOffset,
                    int32_t spectrumOffset) noexcept UTIL_NONBLOCKING;

    /// Of the bins 0 to F/2, in Hz; empty without channels. [setup]
    const std::vector<float>& GetLowerBandEdges() const noexcept { return lowerBandEdges; }
    const std::vector<float>& GetUpperBandEdges() const noexcept { return upperBandEdges; }

    int32_t GetFFTSize() const noexcept { return fftSize; } ///< F
    int32_t GetHop() const noexcept { return hop; }         ///< H
    int32_t GetLatency() const noexcept { return latency; } ///< W - H, samples

private:
    void MakeBandEdges();
    void transform(int32_t channel, float* spectrum) noexcept UTIL_NONBLOCKING;
    void countOpenHops(int32_t channel) noexcept UTIL_NONBLOCKING;
    void take(const float* const* input, int32_t offset) noexcept UTIL_NONBLOCKING;
    void giveOnto(float* const* output, int32_t offset) noexcept UTIL_NONBLOCKING;

    std::vector<float> lowerBandEdges; // of the bins 0 to F/2, Hz; empty without channels
    std::vector<float> upperBandEdges;
    int32_t maxBlockSize = 0; // samples
    int32_t channels = 0;
    int32_t sampleRate = 0;
    int32_t latency = 0;
    int32_t fftSize = 0;
    int32_t windowLength = 0;
    int32_t hop = 0;
    int32_t overlap = 0; // W - H
    ProcessingFFTPool& pool;
    FFTImpl<float>* fft = nullptr;    // of the pool
    Util::AlignedVector<float> frame; // F, scratch
    int32_t kind = 0;                 // of the windows
    int32_t windowHop = 0;            // that the windows are scaled for
    WindowPair windows;               // W each
    DataTailCirc inputTail;           // the last W input samples
    DataTailCirc outputTail;          // W output samples that miss frames yet
    std::vector<int32_t> openHops;    // of each channel: that the frames added to it reach into
};

} // namespace DSP

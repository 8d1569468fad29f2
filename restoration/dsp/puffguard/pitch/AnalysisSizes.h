// SPDX-License-Identifier: ISC
#pragma once

namespace DSP::Synapse {

/// Lowest pitches that "Vocal Range" offers, in the order of its values.
enum class VocalRange : unsigned { Bass = 0, TenorAlto = 1, Soprano = 2 };

/// Everything of the pitch analysis that follows from the sample rate alone.
///
/// The track is made at a decimated rate, one run of the lag tracker every `analysisHop` samples of
/// the full rate. Lags are counted in decimated samples.
struct AnalysisSizes {
    float sampleRate = 0;    ///< Hz
    int decimation = 1;      ///< full-rate samples per decimated one, 4 above 22050 Hz, else 1
    int analysisHop = 8;     ///< full-rate samples between two runs, a power of two
    int minLag = 0;          ///< shortest lag searched, about 650 Hz
    int maxLag = 0;          ///< longest lag searched, about 45 Hz
    float decimatedRate = 0; ///< Hz
    float trackerRate = 0;   ///< rate, in Hz, that the tracker's time constants refer to

    /// Sizes for a rate in Hz. Rates below 4 kHz, where no speech is, get the sizes of 4 kHz so
    /// that no range is empty. [any]
    static AnalysisSizes ForRate(double sampleRate);

    /// Delay of the track against its input, in samples of the full rate. `delayFrames` is the
    /// number of runs that dynamic programming looks ahead. [any]
    int GetLatency(VocalRange range, bool dynamicProgramming, int delayFrames) const noexcept;
};

} // namespace DSP::Synapse

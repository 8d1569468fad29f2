// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/signal/FFTImpl.h"
#include "restoration/dsp/autorepair/BinRange.h"
#include "restoration/dsp/autorepair/SignalHistory.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace AutoRepair {

/// Short-time spectra of a Hann window around any sample of a stream, from a decimated copy of it.
///
/// The window is laid over the stream of rate R; of its values those are taken that fall on samples
/// of the copy, of rate R / 2^shift. The bins lie where a transform of the stream itself would have
/// them: padded with zeros to 4 to 8 times the window and to a power of two. So the copy gives the
/// stream's own spectrum as far up as the decimation leaves it as it was.
class WindowedSpectrum {
public:
    struct Config {
        double seconds = 0; ///< length of the window
        int sampleRate = 0; ///< R, Hz
        int shift = 0;
        int64_t lead = 0;   ///< samples of silence that the copy begins with, counted at R
        double highest = 0; ///< Hz, up to which the spectrum is of use
    };

    explicit WindowedSpectrum(const Config& newConfig);

    /// Whether the copy has come far enough for a window around sample `centre` of the stream.
    bool IsReady(const SignalHistory& copy, int64_t centre) const;

    /// The power spectrum, scaled so that the sum over the bins of a band is the mean power in it.
    /// Valid until the next call.
    std::span<const float> Compute(const SignalHistory& copy, int64_t centre);

    /// The first sample of the copy that a window around `centre` needs.
    int64_t GetFirst(int64_t centre) const;

    /// Where the bins lie.
    const BinScale& GetScale() const { return scale; }

private:
    static int PaddedOrder(int length);

    Config config;
    int length; // of the window, at R
    int order;  // of the transform at R
    BinScale scale;
    std::size_t count;          // samples of the copy under the window at most
    std::vector<float> windows; // for each place of the copy's samples: `count` values
    DSP::FFTImpl<float> transform;
    int bins;
    std::vector<float> power; // scratch
};

} // namespace AutoRepair

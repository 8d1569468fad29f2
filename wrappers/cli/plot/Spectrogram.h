// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/plot/FoldingList.h"

#include <kiss_fftr.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace Cli {

/// Upper edge of all that a spectrogram shows.
inline constexpr double SpectrogramLimitHz = 1000.0;

/// Powers at one moment, by frequency; full scale sine 1.0.
struct SpectrumColumn {
    std::vector<float> powers;

    /// Keeps the greater power, so that a short burst stays visible in a long recording.
    void Fold(const SpectrumColumn& other);
};

/// Short-time spectrum of a signal from 0 to 1 kHz, in bounded memory. The signal is brought to
/// about 4 kHz first, which makes hours of it cheap.
///
/// Each spectrum looks at 45 ms through a Hann window; one comes every 5 ms, the first one centred
/// on the first sample.
class Spectrogram {
public:
    /// `sampleRate` in Hz, at least 8000.
    explicit Spectrogram(int sampleRate);

    /// Takes the next sample, full scale 1.0.
    void Add(float sample);

    /// Ends the signal: brings out the spectra that still waited for samples.
    void Finish();

    const std::vector<SpectrumColumn>& GetColumns() const { return columns.GetEntries(); }

    /// Seconds that a column spans. Column n begins n times this behind GetStartSeconds().
    double GetColumnSeconds() const;

    /// Where the first column begins, in seconds behind the first sample: a little before it,
    /// because its spectrum is centred there.
    double GetStartSeconds() const;

    double GetBinHz() const;

private:
    void AddReduced(float sample);
    void Analyse();

    struct FreePlan {
        void operator()(kiss_fftr_state* made) const { kiss_fftr_free(made); }
    };

    size_t factor;             // samples for one reduced sample
    double reducedRate;        // Hz
    std::vector<float> filter; // low-pass, 12 * factor + 1 taps
    std::vector<float> recent; // the last taps of input, a ring written twice in a row
    size_t recentPosition = 0;
    size_t untilReduced = 1;
    // NOLINTNEXTLINE(modernize-use-default-member-init): the filter's length stands in the source
    size_t toSkip; // reduced samples that only hold the filter's delay
    std::vector<float> window;
    std::vector<float> frame; // ring of reduced samples
    size_t framePosition = 0;
    size_t hop; // reduced samples
    size_t untilAnalysis;
    std::vector<float> fftInput;
    std::vector<kiss_fft_cpx> fftOutput;
    std::unique_ptr<kiss_fftr_state, FreePlan> plan;
    size_t binCount;
    FoldingList<SpectrumColumn> columns;
};

} // namespace Cli

// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/Decimator.h"
#include "restoration/dsp/autorepair/FrameGrid.h"
#include "restoration/dsp/autorepair/FrameLevels.h"
#include "restoration/dsp/autorepair/LowSpectrum.h"
#include "restoration/dsp/autorepair/SignalHistory.h"
#include "restoration/dsp/autorepair/WindowedSpectrum.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace AutoRepair {

/// Measures the levels of a recording that passes by, frame after frame. How it is cut into calls
/// changes nothing.
///
/// Nothing above 3 kHz is used: the channels are first brought to a rate of 8 to 16 kHz, and for
/// the low spectrum to a quarter of that.
class LevelAnalysis {
public:
    /// `newStore` must outlive this. The rate is 8 to 192 kHz.
    LevelAnalysis(int sampleRate, int newChannels, LevelStore& newStore);

    /// Takes the next samples, interleaved, full scale 1.0, all finite.
    void Push(std::span<const double> samples);

    /// Ends the recording: all its frames are in the store.
    void Finish();

    int64_t GetSampleCount() const { return sampleCount; } ///< a channel, so far

private:
    struct Channel {
        Decimator toVoice;
        Decimator toLow;
        SignalHistory voice; // for bands up to 3 kHz
        SignalHistory low;   // for the low spectrum
    };

    void PushChannel(Channel& channel, std::span<const float> samples);
    void PushSilence(int64_t count);
    bool IsNextReady() const;
    void MeasureReady(int64_t endFrame);
    FrameLevels MeasureNext(int64_t centre);
    void Flush();

    LevelStore& store;
    std::size_t channelCount;
    FrameGrid grid;
    int voiceShift;
    int64_t lead; // samples of silence before the first, so that no number is negative
    WindowedSpectrum longWindow;
    WindowedSpectrum shortWindow;
    WindowedSpectrum lowWindow;
    LowSpectrum lowSpectrum;
    std::array<BinRange, LongBands.size()> longRanges{};
    std::array<BinRange, ShortBands.size()> shortRanges{};
    std::vector<Channel> channels;
    std::vector<float> planar; // scratch: one channel of what was pushed
    std::vector<float> power;  // scratch: the low spectrum's
    std::vector<FrameLevels> ready;
    int64_t nextFrame = 0;
    int64_t sampleCount = 0;
};

} // namespace AutoRepair

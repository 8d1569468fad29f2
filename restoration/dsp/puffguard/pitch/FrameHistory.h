// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Correlation.h"
#include "frameworks/qobase/util/Realtime.h"

#include <cstddef>
#include <vector>

namespace DSP::Synapse {

/// The latest samples of a signal, kept so that frames which begin a step apart lie side by side:
/// sample i of one frame is the neighbour of sample i of the next.
///
/// A frame is due with the first sample after its end; the first sample of all makes one due, of
/// silence. Frames stay until they are dropped, so that they can be worked on while the next come
/// in.
class FrameHistory {
public:
    /// Frames that there is room for: some to be worked on, as many again, and one.
    static constexpr int MaxDue = 2 * Kernels::MaxFrames + 1;

    /// `newStep` in samples, a power of two from 2. [setup]
    FrameHistory(int newFrameLength, int newStep);

    /// Silence, and no frame due. [process]
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Takes the next sample, while less than MaxDue frames are due. [process]
    void Append(float sample) noexcept UTIL_NONBLOCKING;

    /// Frames not yet dropped. [process]
    int GetDueCount() const noexcept UTIL_NONBLOCKING { return due; }

    /// The frames that are due, oldest first; valid until frames are dropped. [process]
    Kernels::PolyphaseView GetFrames() const noexcept UTIL_NONBLOCKING;

    /// Drops the oldest `count` frames of those that are due. [process]
    void DropFrames(int count) noexcept UTIL_NONBLOCKING;

private:
    std::size_t frameLength;
    int stepShift;            // log2 of the step
    std::size_t rowLength;    // columns
    std::vector<float> rows;  // one for each phase
    std::size_t position = 0; // of the next sample from the oldest frame's start on
    int due = 0;
};

} // namespace DSP::Synapse

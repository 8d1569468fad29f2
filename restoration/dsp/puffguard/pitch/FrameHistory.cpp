// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/FrameHistory.h"

#include <algorithm>
#include <bit>

namespace DSP::Synapse {

namespace {

/// The frames' own columns, those by which they lie apart, and one for the samples after the last.
std::size_t GetColumns(std::size_t frameLength, std::size_t step)
{
    return frameLength / step + FrameHistory::MaxDue + 2;
}

} // namespace

FrameHistory::FrameHistory(int newFrameLength, int newStep)
    : frameLength(static_cast<std::size_t>(newFrameLength))
    , stepShift(std::countr_zero(static_cast<unsigned>(newStep)))
    , rowLength(GetColumns(frameLength, static_cast<std::size_t>(newStep)))
    , rows(rowLength << stepShift)
{
    Reset();
}

void FrameHistory::Reset() noexcept UTIL_NONBLOCKING
{
    std::fill(rows.begin(), rows.end(), 0.0F);
    position = frameLength;
    due = 0;
}

void FrameHistory::Append(float sample) noexcept UTIL_NONBLOCKING
{
    const std::size_t step = std::size_t{1} << stepShift;
    due += ((position - frameLength) & (step - 1)) == 0 ? 1 : 0;
    rows[(position & (step - 1)) * rowLength + (position >> stepShift)] = sample;
    ++position;
}

Kernels::PolyphaseView FrameHistory::GetFrames() const noexcept UTIL_NONBLOCKING
{
    return {.samples = rows.data(),
            .rowLength = static_cast<std::ptrdiff_t>(rowLength),
            .stepShift = stepShift};
}

void FrameHistory::DropFrames(int count) noexcept UTIL_NONBLOCKING
{
    for (auto row = rows.begin(); row != rows.end();
         row += static_cast<std::ptrdiff_t>(rowLength)) {
        std::copy(row + count, row + static_cast<std::ptrdiff_t>(rowLength), row);
    }
    position -= static_cast<std::size_t>(count) << stepShift;
    due -= count;
}

} // namespace DSP::Synapse

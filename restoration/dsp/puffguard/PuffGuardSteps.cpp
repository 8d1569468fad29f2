// SPDX-License-Identifier: ISC
// How PuffGuard's work is spread over time, so that no call of the host has a whole hop's.
//
// A hop is cut into StepCount steps. Each is taken as soon as its samples are there, and does what
// falls to it:
//  - of the hop that was completed last: the spectra, channel by channel; the detection value; the
//    tracker's work part by part, first its frames' correlations and then its runs; with the pitch
//    at that hop's end, the search and a repair;
//  - of the hop that is coming in: what repairs have changed in the oldest frame is transformed
//    back, channel by channel;
//  - the pitch tracker gets the samples.
// The last sample of a hop leaves nothing but to take its samples and to give out those made.
//
// This takes no latency and changes nothing. The frame that a hop gives out lies at history index
// 1, that of the next hop at 2, and a repair reaches down to index M, at least 3: it may come any
// time before the next hop's end. The controls count as they were at the end of the hop.
//
// Steps go by sample counts alone: however the host cuts its blocks, they follow each other in the
// same order. Only the tracker's filters may get the samples of several steps at once; they don't
// care about cuts.
#include "frameworks/plugincore/dsp/signal/BlockPieces.h"
#include "restoration/dsp/puffguard/PuffGuard.h"

#include <algorithm>

namespace DSP::Shared {

namespace {

constexpr uint32_t StepCount = 16;

/// Which of some steps have more of the pieces that can't be shared out evenly.
enum class Rest { First, Last };

/// Neighbouring steps that share some equal pieces of work.
struct Steps {
    uint32_t first;
    uint32_t count;
    Rest rest;

    constexpr uint32_t GetEnd() const noexcept { return first + count; }

    /// Pieces of `pieces` that are done when `step` begins.
    constexpr uint32_t GetDone(uint32_t step, uint32_t pieces) const noexcept
    {
        const uint32_t steps = std::clamp(step, first, first + count) - first;
        return (pieces * steps + (rest == Rest::First ? count - 1 : 0)) / count;
    }
};

/// Which steps have what falls to each channel.
struct Schedule {
    Steps transforms;
    uint32_t detection; // the step of it
    Steps synthesis;
};

constexpr uint32_t FirstTrackerStep = 2; // from here to the search each step has one part
constexpr uint32_t SearchStep = 12;
static_assert(SearchStep - FirstTrackerStep == PitchDetect::PitchDetect::BlockParts);

// A channel's transform takes as long as two parts of the tracker's work: with one or two channels
// no step has both. Two neighbouring steps, a call of 64 frames at 48 kHz, stay below twice the
// mean, also where a repair is made.
constexpr Schedule ForTwoChannels = {{0, 3, Rest::First}, 3, {13, 3, Rest::Last}};
// Transforms are most of the work: all steps share it.
constexpr Schedule ForMoreChannels = {{0, 11, Rest::First}, 11, {0, StepCount, Rest::Last}};

constexpr bool IsInOrder(const Schedule& schedule)
{
    return schedule.transforms.GetEnd() <= schedule.detection && schedule.detection < SearchStep &&
           schedule.synthesis.GetEnd() <= StepCount;
}

static_assert(IsInOrder(ForTwoChannels) && IsInOrder(ForMoreChannels));

constexpr const Schedule& GetSchedule(uint32_t channels) noexcept
{
    return channels <= 2 ? ForTwoChannels : ForMoreChannels;
}

} // namespace

void PuffGuard::OnFrameArriving(uint32_t arrived, float* const* channels)
{
    const uint32_t begin = GetStepBegin(step);
    for (; step < StepCount && GetStepBegin(step + 1) <= arrived; ++step) {
        if (hasFrame) {
            AnalyseFrame();
        }
        Synthesise();
    }
    const uint32_t end = GetStepBegin(step);
    if (end > begin) {
        FeedTracker(begin, end - begin, channels);
    }
}

/// In samples of the hop.
uint32_t PuffGuard::GetStepBegin(uint32_t index) const noexcept UTIL_NONBLOCKING
{
    return static_cast<uint32_t>(uint64_t{index} * sizes.hopSize / StepCount);
}

void PuffGuard::ProcessAudio(uint32_t frames, float* const* channels)
{
    OnFrameArriving(frames, channels);
    pitchDetect.EndBlock();
    filterbank.take(channels);
    output.GiveOut(filterbank, channels);
    controls = values.controls;
    log.CountHop();
    hasFrame = true;
    step = 0;
}

void PuffGuard::FeedTracker(uint32_t offset, uint32_t frames, float* const* channels)
{
    PointInto(channels, offset, arriving);
    pitchDetect.Process(frames, arriving.data());
}

/// The present step's part of the work on the hop completed last.
void PuffGuard::AnalyseFrame() noexcept UTIL_NONBLOCKING
{
    const uint32_t channels = sizes.channels;
    const Schedule& schedule = GetSchedule(channels);
    const uint32_t end = schedule.transforms.GetDone(step + 1, channels);
    for (uint32_t channel = schedule.transforms.GetDone(step, channels); channel < end; ++channel) {
        analysis.Transform(filterbank, channel);
    }
    if (step == schedule.detection) {
        analysis.Detect();
        log.AddEnergy(waiting.GetEnergy(waiting.GetOpenSlot()));
    }
    if (step >= FirstTrackerStep && step < SearchStep) {
        pitchDetect.Advance(1);
    }
    if (step == SearchStep) {
        FinishFrame();
    }
}

void PuffGuard::FinishFrame() noexcept UTIL_NONBLOCKING
{
    const FrameDetection& detection = analysis.GetDetection();
    const float pitch = pitchDetect.GetBlockPitch();
    waiting.AppendPitch(pitch);
    latest = {detection.value, GetDetectionThreshold(detection.noise, controls.sensitivity), pitch};
    repair.Run(controls, detection.noise);
    waiting.Advance();
}

/// The present step's part of what the hop that is coming in gives out.
void PuffGuard::Synthesise() noexcept UTIL_NONBLOCKING
{
    const uint32_t slot = GetLeavingSlot();
    if (waiting.GetSpectra().GetChangedBins(slot) == 0) {
        return;
    }
    const Steps& steps = GetSchedule(sizes.channels).synthesis;
    const uint32_t end = steps.GetDone(step + 1, sizes.channels);
    for (uint32_t channel = steps.GetDone(step, sizes.channels); channel < end; ++channel) {
        output.Add(filterbank, waiting.GetSpectra(), slot, channel);
    }
}

/// Slot of the frame that goes out with the hop that is coming in. The frame before it went out
/// last; its slot is for the frame that this hop will make.
uint32_t PuffGuard::GetLeavingSlot() const noexcept UTIL_NONBLOCKING
{
    const bool isNewestOpen = hasFrame && step < SearchStep;
    return waiting.GetOpenSlot(isNewestOpen ? 2 : 1);
}

} // namespace DSP::Shared

// SPDX-License-Identifier: ISC
// How PuffGuard's work is spread over time, so that no call of the host has a whole hop's.
//
// A hop is cut into steps, and HopSchedule deals the work out to them. Each is taken as soon as its
// samples are there, and does what falls to it:
//  - of the hop that was completed last: the spectra, each in three parts, since at high rates a
//    whole transform is most of a call; the detection value; the tracker's work part by part, first
//    its frames' correlations and then its runs; with the pitch at that hop's end, the search; what
//    that has found is repaired in the step after it;
//  - of the hop that is coming in: what repairs have changed in the oldest frame is transformed
//    back in the same way;
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
#include "restoration/dsp/puffguard/HopSchedule.h"
#include "restoration/dsp/puffguard/PuffGuard.h"

namespace DSP::Shared {

void PuffGuard::OnFrameArriving(uint32_t arrived, float* const* channels)
{
    const uint32_t begin = GetStepBegin(step);
    for (; step < HopSchedule::StepCount && GetStepBegin(step + 1) <= arrived; ++step) {
        RunTransforms();
        if (hasFrame) {
            AnalyseFrame(HopSchedule::GetTable(sizes.channels)[step]);
        }
    }
    const uint32_t end = GetStepBegin(step);
    if (end > begin) {
        FeedTracker(begin, end - begin, channels);
    }
}

/// In samples of the hop.
uint32_t PuffGuard::GetStepBegin(uint32_t index) const noexcept UTIL_NONBLOCKING
{
    return static_cast<uint32_t>(uint64_t{index} * sizes.hopSize / HopSchedule::StepCount);
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
    transformParts = 0;
}

void PuffGuard::FeedTracker(uint32_t offset, uint32_t frames, float* const* channels)
{
    PointInto(channels, offset, arriving);
    pitchDetect.Process(frames, arriving.data());
}

/// The present step's parts of transforms, of both ways.
void PuffGuard::RunTransforms() noexcept UTIL_NONBLOCKING
{
    const uint32_t end = HopSchedule::GetTransformPartsDone(step, sizes.channels);
    for (; transformParts < end; ++transformParts) {
        const HopSchedule::TransformPart next =
            HopSchedule::GetTransformPart(transformParts, sizes.channels);
        if (!next.isForward) {
            Synthesise(next.channel, next.part);
        } else if (hasFrame) {
            analysis.Transform(filterbank, next.channel, next.part);
        }
    }
}

/// The rest of a step's work on the hop completed last.
void PuffGuard::AnalyseFrame(const HopSchedule::Step& work) noexcept UTIL_NONBLOCKING
{
    pitchDetect.Advance(work.trackerParts);
    switch (work.task) {
    case HopSchedule::Task::None:
        break;
    case HopSchedule::Task::Measure:
        log.AddEnergy(waiting.GetEnergy(waiting.GetOpenSlot()));
        break;
    case HopSchedule::Task::Detect:
        analysis.Detect();
        break;
    case HopSchedule::Task::Search:
        Search();
        break;
    case HopSchedule::Task::Repair:
        repair.Finish();
        waiting.Advance();
        break;
    }
}

void PuffGuard::Search() noexcept UTIL_NONBLOCKING
{
    const FrameDetection& detection = analysis.GetDetection();
    const float pitch = pitchDetect.GetBlockPitch();
    waiting.AppendPitch(pitch);
    latest = {detection.value, GetDetectionThreshold(detection.noise, controls.sensitivity), pitch};
    repair.Search(controls, detection.noise);
}

/// A part of what a channel of the hop that is coming in gives out. The frame before it went out
/// last; its slot is for the frame that this hop will make.
void PuffGuard::Synthesise(uint32_t channel, FFTPart part) noexcept UTIL_NONBLOCKING
{
    const uint32_t slot = waiting.GetOpenSlot(hasFrame ? 2 : 1); // the newest one is open meanwhile
    if (waiting.GetSpectra().GetChangedBins(slot) != 0) {
        output.Add(part, filterbank, waiting.GetSpectra(), slot, channel);
    }
}

} // namespace DSP::Shared

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/RegionRun.h"

#include <algorithm>

namespace DSP {

namespace {

// As long as the repair's hop at the usual rates, so that a step of the work is one block.
constexpr uint32_t LeastBlockFrames = 512;
// What is read ahead beyond what lies between the two places that are read: of blocks as long as
// that, hardly one in a hundred then asks the source; of longer ones at least a few.
constexpr uint32_t FramesAhead = 128 * LeastBlockFrames;
constexpr uint32_t LeastBlocksAhead = 4;

} // namespace

RegionRun::RegionRun(OfflineJob& newJob, Element& newElement)
    : job(newJob)
    , element(newElement)
{
}

void RegionRun::PrepareBuffers(const RegionCrossover& crossover)
{
    const uint32_t channels = element.GetChannelCount();
    const uint32_t frames = std::max(LeastBlockFrames, crossover.GetBlockUnit());
    const uint32_t window = element.GetLatency(Context::Process) + crossover.GetLatency() +
                            std::max(FramesAhead, LeastBlocksAhead * frames);
    if (!buffers || buffers->block.GetFrames() != frames) {
        buffers = std::make_unique<Buffers>(channels, frames);
        cache = std::make_unique<ReadaheadCache>(job.GetSource(), channels, window);
    }
}

// What lies behind the end of the recording is silence.
bool RegionRun::ReadBlock(int64_t position, uint32_t frames)
{
    const int64_t left = std::clamp<int64_t>(job.GetSource().GetFrames() - position, 0, frames);
    const auto count = static_cast<uint32_t>(left);
    if (!cache->Read(position, count, buffers->block.GetChannels())) {
        return false;
    }
    for (uint32_t channel = 0; channel < buffers->block.GetChannelCount(); ++channel) {
        float* const samples = buffers->block.GetChannel(channel);
        std::fill(samples + count, samples + frames, 0.0F);
    }
    return true;
}

OfflineResult RegionRun::GiveOut(const Region& region,
                                 RegionCrossover& crossover,
                                 int64_t position,
                                 uint32_t frames)
{
    const int64_t from = std::max(position, region.GetFirst());
    const int64_t to = std::min(position + frames, region.GetEnd());
    if (from >= to) {
        return OfflineResult::Done;
    }
    const auto count = static_cast<uint32_t>(to - from);
    if (!cache->Read(from, count, buffers->recording.GetChannels())) {
        return OfflineResult::SourceFailed;
    }
    const auto recording = buffers->recording.View(count);
    const auto offset = static_cast<uint32_t>(from - position);
    crossover.Join(from, buffers->block.View(frames).Part(offset, count), recording);
    return job.Write(from, recording) ? OfflineResult::Done : OfflineResult::SinkFailed;
}

OfflineResult RegionRun::Run(const Region& region,
                             uint32_t lead,
                             RegionCrossover& crossover,
                             const Progress& progress)
{
    PrepareBuffers(crossover);
    const uint32_t latency = element.GetLatency(Context::Process) + crossover.GetLatency();
    const int64_t begin = std::max<int64_t>(region.GetFirst() - lead, 0);
    const int64_t end = region.GetEnd() + latency;
    const uint32_t frames = buffers->block.GetFrames();
    job.onRegionBegins(region, begin - crossover.GetLatencyBefore());
    for (int64_t position = begin; position < end; position += frames) {
        if (!ReadBlock(position, frames)) {
            return OfflineResult::SourceFailed;
        }
        crossover.Split(frames, buffers->block.GetChannels());
        element.Process(frames, buffers->block.GetChannels());
        crossover.Take(position - latency, frames, buffers->block.GetChannels());
        const OfflineResult given = GiveOut(region, crossover, position - latency, frames);
        if (given != OfflineResult::Done) {
            return given;
        }
        const auto done = static_cast<double>(std::min(position + frames, end) - begin);
        if (!progress(done / static_cast<double>(end - begin))) {
            return OfflineResult::Cancelled;
        }
    }
    return OfflineResult::Done;
}

} // namespace DSP

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

RegionRun::Piece RegionRun::Cut(const Region& region, int64_t position) const
{
    const int64_t first = std::max(position, region.GetFirst());
    const int64_t end = std::min(position + buffers->block.GetFrames(), region.GetEnd());
    if (first >= end) {
        return {};
    }
    return {first, static_cast<uint32_t>(first - position), static_cast<uint32_t>(end - first)};
}

// What lies behind the end of the recording is silence.
bool RegionRun::ReadBlock(int64_t position)
{
    const uint32_t frames = buffers->block.GetFrames();
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

bool RegionRun::GiveOut(const Piece& piece, RegionCrossover& crossover)
{
    if (piece.count == 0) {
        return true;
    }
    const auto recording = buffers->recording.View(piece.count);
    const auto processed = buffers->block.View(buffers->block.GetFrames());
    crossover.Join(piece.first, processed.Part(piece.offset, piece.count), recording);
    return job.Write(piece.first, recording);
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
    float* const* const channels = buffers->block.GetChannels();
    crossover.Begin(begin);
    job.onRegionBegins(region, begin - crossover.GetLatencyBefore());
    for (int64_t position = begin; position < end; position += frames) {
        // The earlier place first: what is read ahead of it holds the later one as well.
        const Piece piece = Cut(region, position - latency);
        if (!cache->Read(piece.first, piece.count, buffers->recording.GetChannels()) ||
            !ReadBlock(position)) {
            return OfflineResult::SourceFailed;
        }
        crossover.Split(frames, channels);
        element.Process(frames, channels);
        crossover.Take(position - latency, frames, channels);
        if (!GiveOut(piece, crossover)) {
            return OfflineResult::SinkFailed;
        }
        const auto done = static_cast<double>(std::min(position + frames, end) - begin);
        if (!progress(done / static_cast<double>(end - begin))) {
            return OfflineResult::Cancelled;
        }
    }
    return OfflineResult::Done;
}

} // namespace DSP

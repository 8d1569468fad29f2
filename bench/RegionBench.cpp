// SPDX-License-Identifier: ISC
#include "bench/Benches.h"
#include "bench/Heap.h"
#include "bench/Measure.h"
#include "bench/Signal.h"
#include "frameworks/plugincore/dsp/offline/ReadaheadCache.h"
#include "tests/support/ModuleHost.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace Bench {

namespace {

constexpr uint32_t SampleRate = 48000;
constexpr int PieceSeconds = 30;
constexpr int64_t RecordingFrames = int64_t{600} * SampleRate;
constexpr int Rounds = 5;

/// A recording of ten minutes that repeats a shorter one, and counts the memory it sees in use.
class Recording {
public:
    Recording()
        : speech(MakeSpeech(1, SampleRate, PieceSeconds)[0])
    {
    }

    void Render(TestHost::Instance& instance, const std::vector<RenderRegionRecord>& regions)
    {
        RenderRecord record{};
        record.recordBytes = sizeof record;
        record.regionBytes = sizeof(RenderRegionRecord);
        record.frames = RecordingFrames;
        record.regions = regions.data();
        record.regionCount = static_cast<uint32_t>(regions.size());
        record.fadeMilliseconds = 10;
        record.refcon = this;
        record.read = Read;
        record.write = [](void*, int64_t, uint32_t, const float* const*) { return uint32_t{0}; };
        record.progress = [](void* refcon, double, const char*) {
            auto& self = *static_cast<Recording*>(refcon);
            self.greatestHeap = std::max(self.greatestHeap, GetHeapBytes());
            return uint32_t{0};
        };
        HostMessageRecord message{PLUGIN_CORE_MESSAGE_RENDER, sizeof record, &record};
        TestHost::Call(SelectorHostMessage, TestHost::UI, instance.Get(), &message);
        if (record.result != RenderDone) {
            std::fprintf(stderr, "%s\n", std::begin(record.message));
        }
    }

    std::size_t greatestHeap = 0;

private:
    static uint32_t Read(void* refcon, int64_t position, uint32_t frames, float* const* channels)
    {
        const std::vector<float>& speech = static_cast<Recording*>(refcon)->speech;
        for (uint32_t frame = 0; frame < frames; ++frame) {
            channels[0][frame] = speech[static_cast<std::size_t>(position + frame) % speech.size()];
        }
        return 0;
    }

    std::vector<float> speech;
};

/// Hits of the cache where a recording is read in blocks, and once more behind.
void MeasureCache(TargetTable& table)
{
    class Silence final : public DSP::OfflineSource {
    public:
        int64_t GetFrames() const override { return RecordingFrames; }
        const std::vector<DSP::RegionBox>& GetBoxes() const override { return boxes; }
        bool Read(int64_t, const DSP::MultichannelBufferView<float>&) override { return true; }

    private:
        std::vector<DSP::RegionBox> boxes;
    };
    constexpr uint32_t Latency = 16383;
    constexpr uint32_t Block = 512;
    Silence silence;
    DSP::ReadaheadCache cache(silence, 1, Latency + 128 * Block);
    std::array<float, Block> samples{};
    std::array<float*, 1> channels{samples.data()};
    for (int64_t place = Latency; place + Block <= RecordingFrames; place += Block) {
        cache.Read(place - Latency, Block, channels.data());
        cache.Read(place, Block, channels.data());
    }
    const auto hits = static_cast<double>(cache.GetHits());
    table.Add({"Regions: hits of the read-ahead cache (%)", 99, 99.2, "%.2f"},
              100 * hits / (hits + static_cast<double>(cache.GetMisses())));
}

} // namespace

void PrintRegionFigures(TargetTable& table)
{
    TestHost::Instance instance(SampleRate, 1);
    Recording recording;
    const uint32_t latency = instance.Latency();
    constexpr int64_t Half = SampleRate / 2;
    const int64_t lead = latency + 2 * SampleRate;
    std::vector<RenderRegionRecord> many;
    for (int64_t i = 0; i < 100; ++i) {
        const int64_t first = 6 * i * SampleRate + lead + SampleRate / 2;
        many.push_back({first, first + Half - 1, 0, 0});
    }
    recording.Render(instance, many); // whatever is taken once is taken now

    const std::size_t before = GetHeapBytes();
    recording.greatestHeap = 0;
    recording.Render(instance, {{many[0].first, many[0].first + 20 * SampleRate, 0, 150}});
    const double mebibytes =
        static_cast<double>(recording.greatestHeap - before) / static_cast<double>(1024 * 1024);
    std::printf("Memory of rendering a region with frequencies, mono: %.2f MiB\n", mebibytes);
    table.Add({"Regions: memory beyond the instance, mono (MiB)", 8, 4}, mebibytes);

    // As many frames as the hundred and what leads up to each: the rest is what they cost.
    const int64_t all = 100 * (lead + Half + latency) - lead - latency;
    const RenderRegionRecord one{lead, lead + all - 1, 0, 0};
    const auto nothing = [] {};
    const Comparison regions = Compare(
        Rounds,
        nothing,
        [&] { recording.Render(instance, many); },
        [&] { recording.Render(instance, {one}); });
    const RenderRegionRecord plain{lead, lead + 50 * SampleRate - 1, 0, 0};
    const double alone = TimeComputing([&] { recording.Render(instance, {plain}); });
    std::printf("100 regions of 0.5 s: %.2f s; as much in one %.2f s; 50 s in one %.2f s\n",
                regions.seconds,
                regions.reference,
                alone);
    table.Add({"100 regions of 0.5 s over as much, prerolls included, in one", 1.3, 1.1},
              regions.ratio);

    RenderRegionRecord bounded = plain;
    bounded.highHz = 150;
    const Comparison bands = Compare(
        Rounds,
        nothing,
        [&] { recording.Render(instance, {bounded}); },
        [&] { recording.Render(instance, {plain}); });
    std::printf(
        "50 s bounded in frequency: %.2f s, unbounded %.2f s\n", bands.seconds, bands.reference);
    table.Add({"Region bounded in frequency over an unbounded one", 2.0, 1.5}, bands.ratio);
    MeasureCache(table);
}

} // namespace Bench

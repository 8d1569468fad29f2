// SPDX-License-Identifier: ISC
#include "wrappers/common/RegionRenderer.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/DetectionRecords.h"
#include "wrappers/common/Text.h"

#include <exception>

namespace Wrapper {

namespace {

constexpr uint32_t Success = 0;
constexpr uint32_t Failure = 1;

/// What the module calls on the client's behalf. Nothing is thrown through the module: the first
/// exception is kept, and ends the rendering.
class Calls {
public:
    explicit Calls(RenderClient& newClient)
        : client(newClient)
    {
    }

    void FillIn(RenderRecord& record)
    {
        record.refcon = this;
        record.frames = client.GetFrames();
        record.read = Read;
        record.write = Write;
        record.progress = Progress;
        record.repair = Repair;
    }
    void RethrowFailure() const
    {
        if (failure) {
            std::rethrow_exception(failure);
        }
    }

private:
    template <typename Work>
    static uint32_t Guard(void* refcon, const Work& work)
    {
        auto& calls = *static_cast<Calls*>(refcon);
        try {
            return calls.failure == nullptr && work(calls.client) ? Success : Failure;
        } catch (...) {
            calls.failure = std::current_exception();
            return Failure;
        }
    }
    static uint32_t Read(void* refcon, int64_t position, uint32_t frames, float* const* channels)
    {
        return Guard(refcon, [&](RenderClient& client) {
            client.ReadFrames(position, frames, channels);
            return true;
        });
    }
    static uint32_t
    Write(void* refcon, int64_t position, uint32_t frames, const float* const* channels)
    {
        return Guard(refcon, [&](RenderClient& client) {
            client.WriteFrames(position, frames, channels);
            return true;
        });
    }
    static uint32_t Progress(void* refcon, double done, const char* text)
    {
        return Guard(refcon, [&](RenderClient& client) { return client.OnProgress(done, text); });
    }
    static void Repair(void* refcon, const DetectionRecord* repair)
    {
        Guard(refcon, [&](RenderClient& client) {
            client.OnRepair(MakeDetection(*repair));
            return true;
        });
    }

    RenderClient& client;
    std::exception_ptr failure;
};

std::vector<RenderRegionRecord> MakeRecords(const std::vector<RenderRegion>& regions)
{
    std::vector<RenderRegionRecord> records;
    records.reserve(regions.size());
    for (const RenderRegion& region : regions) {
        records.push_back({region.first,
                           region.end - 1,
                           static_cast<float>(region.lowHz),
                           static_cast<float>(region.highHz)});
    }
    return records;
}

} // namespace

std::optional<RegionRenderer::Outcome> RegionRenderer::Render(
    RenderClient& client, const std::vector<RenderRegion>& regions, double fade) const
{
    const std::vector<RenderRegionRecord> records = MakeRecords(regions);
    RenderRecord record = {};
    record.recordBytes = sizeof(RenderRecord);
    record.regionBytes = sizeof(RenderRegionRecord);
    record.regions = records.data();
    record.regionCount = static_cast<uint32_t>(records.size());
    record.fadeMilliseconds = static_cast<float>(fade);
    Calls calls(client);
    calls.FillIn(record);
    HostMessageRecord message = {PLUGIN_CORE_MESSAGE_RENDER, sizeof record, &record};
    if (!instance.Request({}, SelectorHostMessage, &message, "render regions")) {
        return std::nullopt;
    }
    calls.RethrowFailure();
    Outcome outcome;
    outcome.isDone = record.result == RenderDone;
    outcome.problem = TextOf(record.message);
    outcome.totals.hops = record.hops;
    outcome.totals.bandEnergy = record.bandEnergy;
    return outcome;
}

} // namespace Wrapper

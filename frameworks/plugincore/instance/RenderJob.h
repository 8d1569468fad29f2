// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/OfflineJob.h"
#include "frameworks/plugincore/dsp/path/TransformBase.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

/// A host's request to render regions, as the elements that do it see it: the host's callbacks are
/// source and sink, and repairs go out as they are made.
///
/// Threads: that of the request.
class RenderJob final : public DSP::OfflineSource, public DSP::OfflineJob {
public:
    /// All of it outlives the job; `newPath` does the work. `newStopped` may become true on any
    /// thread.
    RenderJob(RenderRecord& newRecord,
              DSP::TransformBase& newPath,
              const std::atomic<bool>& newStopped);

    bool WasStopped() const { return wasStopped; }
    /// Into the record: what was analysed in all.
    void WriteTotals();

    // DSP::OfflineSource
    int64_t GetFrames() const override { return record.frames; }
    const std::vector<DSP::RegionBox>& GetBoxes() const override { return boxes; }
    bool Read(int64_t position, const DSP::MultichannelBufferView<float>& target) override;

    // DSP::OfflineJob
    DSP::OfflineSource& GetSource() override { return *this; }
    double GetFadeMilliseconds() const override;
    void onRegionBegins(const DSP::Region& newRegion, int64_t begin) override;
    bool Write(int64_t position, const DSP::MultichannelBufferView<float>& samples) override;
    bool Progress(double fraction, const String& text) override;

private:
    /// What the elements have analysed since their restart, or before it.
    struct Totals {
        uint64_t hops = 0;
        double bandEnergy = 0;
    };

    void ReadTotals();
    void CloseTotals();
    void GiveRepairs();
    void GiveRepair(DetectionRecord repair) const;

    RenderRecord& record;
    DSP::TransformBase& path;
    const std::atomic<bool>& stopped;
    std::vector<DSP::RegionBox> boxes;
    const DSP::Region* region = nullptr; // the one that is being worked on
    int64_t regionBegin = 0;             // the frame of the recording that the elements count from
    uint32_t nextRepair = 0;
    Totals latest; // since the restart
    Totals before;
    bool wasStopped = false;
};

/// The box of a region, whatever is in it. [any]
DSP::RegionBox MakeBox(const RenderRegionRecord& region);

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "restoration/dsp/puffguard/DetectionLog.h"
#include "restoration/dsp/puffguard/PuffGuard.h"
#include "restoration/dsp/puffguard/RestorationElement.h"

#include <memory>

// The file is called after the element, since the class's name differs from that of the repair,
// Shared::PuffGuard in PuffGuard.h, by case only.
namespace DSP::Puffguard {

/// The element that the user's controls live on. It owns the repair and forwards everything to it;
/// its own ranges are the narrower ones. Blocks of any length are accepted.
///
/// It lives as long as the instance; for a new format it makes a new repair inside.
class Puffguard final : public ElementDispatcher, public RestorationElement {
public:
    enum Param : uint32_t {
        Sensitivity = 0,          ///< 0 to 10
        Strength = 1,             ///< 0 to 10
        UpperRepairFrequency = 2, ///< 50 to 500 Hz
        LatencyScaling = 3        ///< 0 to 1
    };

    /// `newLog` takes the repairs. [setup]
    Puffguard(ElementHost& owner,
              float rateHz,
              uint32_t layout,
              std::shared_ptr<DetectionLog> newLog);

    bool IsConfigurable() const override { return true; }

protected:
    uint32_t GetLatencySamples(Context context) const override
    {
        return repair->GetLatency(context);
    }
    uint32_t GetMaxLatencySamples() const override { return repair->GetMaxLatency(); }
    void OnReset() override { repair->Reset(); }
    void ProcessAudio(uint32_t frames, float* const* channels) override
    {
        repair->Process(frames, channels);
    }
    void OnFormatChanged() override;
    std::unique_ptr<RegionCrossover> PrepareCrossover(const OfflineJob& job,
                                                      const Region& region) override;
    bool PassesThrough() const override { return values[Strength] == 0; }

private:
    void Register(Param index, const char* paramName, ValueRange<float> range, float defaultValue);
    std::unique_ptr<Shared::PuffGuard> MakeRepair() const;

    float values[4] = {}; // by Param; the parameters' targets
    const std::shared_ptr<DetectionLog> log;
    std::unique_ptr<Shared::PuffGuard> repair;
};

} // namespace DSP::Puffguard

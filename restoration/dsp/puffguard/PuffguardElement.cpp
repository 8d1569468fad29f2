// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/PuffguardElement.h"

#include "frameworks/plugincore/dsp/offline/OfflineJob.h"
#include "restoration/dsp/puffguard/region/BandCrossover.h"

#include <utility>

namespace DSP::Puffguard {

// Forwarding goes by place in the table.
static_assert(static_cast<uint32_t>(Puffguard::Sensitivity) == Shared::PuffGuard::Sensitivity);
static_assert(static_cast<uint32_t>(Puffguard::Strength) == Shared::PuffGuard::Strength);
static_assert(static_cast<uint32_t>(Puffguard::UpperRepairFrequency) ==
              Shared::PuffGuard::FrequencyLimit);
static_assert(static_cast<uint32_t>(Puffguard::LatencyScaling) ==
              Shared::PuffGuard::LatencyScaling);

Puffguard::Puffguard(ElementHost& owner,
                     float rateHz,
                     uint32_t layout,
                     std::shared_ptr<DetectionLog> newLog)
    : ElementDispatcher({owner, "Puffguard", rateHz, layout})
    , log(std::move(newLog))
    , repair(MakeRepair())
{
    AddChild(*repair, "Repair");
    Register(Sensitivity, "Sensitivity", {0.0F, 10.0F}, 5.0F);
    Register(Strength, "Strength", {0.0F, 10.0F}, 5.0F);
    Register(UpperRepairFrequency, "Upper Repair Frequency", {50.0F, 500.0F}, 200.0F);
    Register(LatencyScaling, "Latency Scaling", {0.0F, 1.0F}, 1.0F);
    // Shows each default to its callback, so that the values here are in force from the start.
    FinaliseParams();
}

void Puffguard::Register(Param index,
                         const char* paramName,
                         ValueRange<float> range,
                         float defaultValue)
{
    ParamRegistration<float> registration;
    registration.name = paramName;
    registration.range = range;
    registration.defaultValue = defaultValue;
    registration.target = &values[index];
    registration.info.units = index == UpperRepairFrequency ? "Hz" : "";
    registration.onProcessChange = [this, index](float value) {
        repair->SetFloatValue(index, value, Context::Process, {});
    };
    registration.onUIChange = [this, sharedName = registration.name](float /*value*/) {
        GetHost().ParamChanged(*this, sharedName);
    };
    RegisterFloatParam(index, std::move(registration));
}

std::unique_ptr<Shared::PuffGuard> Puffguard::MakeRepair() const
{
    return std::make_unique<Shared::PuffGuard>(
        Shared::PuffGuard::Format{GetHost(), GetSampleRate(), GetChannelConfig()}, *log);
}

std::unique_ptr<RegionCrossover> Puffguard::PrepareCrossover(const OfflineJob& job,
                                                             const Region& region)
{
    if (!SupportsFrequencyBounds() || !region.IsBounded()) {
        return ElementDispatcher::PrepareCrossover(job, region);
    }
    return std::make_unique<BandCrossover>(
        region,
        BandCrossover::Setup{GetHost(),
                             GetChannelCount(),
                             static_cast<double>(GetSampleRate()),
                             GetLatency(Context::Process),
                             job.GetFadeMilliseconds()});
}

void Puffguard::OnFormatChanged()
{
    auto fresh = MakeRepair();
    RemoveChild(*repair);
    repair = std::move(fresh);
    AddChild(*repair, "Repair");
    for (uint32_t index = 0; index < std::size(values); ++index) {
        repair->SetFloatValue(index, values[index], Context::Process, {});
    }
}

} // namespace DSP::Puffguard

// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Effect.h"

#include "wrappers/common/SessionBytes.h"
#include "wrappers/vst3/Log.h"
#include "wrappers/vst3/ParameterIds.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vst3 {

Effect::Effect(std::shared_ptr<const Wrapper::Module> newModule)
    : module(std::move(newModule))
    , host([this] { TellHost(); })
{
}

Effect::~Effect()
{
    Stop();
}

bool Effect::Start(v3_funknown** context)
{
    if (instance != nullptr) {
        return false;
    }
    host.MarkUiThread();
    Wrapper::Setup setup;
    setup.format = Wrapper::Format::VST3;
    setup.sampleRate = sampleRate;
    setup.channels = arrangement.ChannelCount();
    instance = Wrapper::Instance::Create(module, setup, *this, WriteLog);
    if (instance == nullptr) {
        return false;
    }
    ids = MakeIds(instance->GetParameters());
    bypassIndex = instance->GetBypassIndex();
    shown = std::vector<std::atomic<double>>(ids.size());
    ShowValues();
    isStarted = true;
    host.SetContext(context);
    return true;
}

void Effect::Stop()
{
    host.Disconnect();
    isStarted = false;
    instance.reset(); // waits for a notice that is on its way
    ids.clear();
    isActive = false;
    isPlaying = false;
    untold = 0;
    isDirty = false;
    hasNews = false;
    toldLatency = -1;
}

bool Effect::SetArrangement(const Speakers& speakers)
{
    if (isActive || !SetFormat(sampleRate, speakers)) {
        return speakers.mask == arrangement.mask;
    }
    arrangement = speakers;
    return true;
}

bool Effect::SetRate(double rate)
{
    const bool isRate = std::isfinite(rate) && rate > 0;
    if (!isRate || isActive || !SetFormat(rate, arrangement)) {
        return isRate && rate == sampleRate;
    }
    sampleRate = rate;
    return true;
}

bool Effect::SetFormat(double rate, const Speakers& speakers)
{
    return instance == nullptr || instance->SetFormat(rate, speakers.ChannelCount());
}

void Effect::SetActive(bool newActive)
{
    host.MarkUiThread();
    if (instance == nullptr || newActive == isActive) {
        return;
    }
    isActive = newActive;
    isPlaying = false;
    if (isActive) {
        instance->Activate();
    } else {
        instance->Deactivate();
    }
}

uint32_t Effect::GetLatency() noexcept
{
    const uint32_t latency = instance != nullptr ? instance->GetLatency(Wrapper::Side::UI) : 0;
    toldLatency = latency;
    return latency;
}

std::optional<uint32_t> Effect::IndexOf(v3_param_id id) const noexcept
{
    const auto found = std::find(ids.begin(), ids.end(), id);
    return found != ids.end() ? std::optional(static_cast<uint32_t>(found - ids.begin()))
                              : std::nullopt;
}

const Wrapper::Parameter* Effect::FindParameter(v3_param_id id) const noexcept
{
    const std::optional<uint32_t> index = IndexOf(id);
    return index ? &instance->GetParameters()[*index] : nullptr;
}

double Effect::GetValue(v3_param_id id) noexcept
{
    TellHost();
    const std::optional<uint32_t> index = IndexOf(id);
    return index ? shown[*index].load() : 0.0;
}

bool Effect::SetValue(v3_param_id id, double normalised) noexcept
{
    const std::optional<uint32_t> index = IndexOf(id);
    if (!index || std::isnan(normalised)) {
        return false;
    }
    const double value = std::clamp(normalised, 0.0, 1.0);
    shown[*index] = value;
    if (!isActive || !isPlaying) {
        Apply(Wrapper::Side::UI, *index, value);
        hasUiValues = true;
    }
    TellHost();
    return true;
}

void Effect::HearValue(uint32_t index, double normalised) noexcept
{
    Apply(Wrapper::Side::Process, index, normalised);
}

void Effect::Apply(Wrapper::Side side, uint32_t index, double value) noexcept
{
    instance->SetParameter(side, index, static_cast<float>(value));
    NoteBypass(index, value);
}

void Effect::NoteBypass(uint32_t index, double value) noexcept
{
    if (bypassIndex == index) {
        isBypassed = value >= 0.5;
    }
}

void Effect::ShowValues() noexcept
{
    for (uint32_t index = 0; index < ids.size(); ++index) {
        const auto value = static_cast<double>(instance->GetParameter(Wrapper::Side::UI, index));
        shown[index] = value;
        NoteBypass(index, value);
    }
}

std::vector<uint8_t> Effect::Save()
{
    host.MarkUiThread();
    return instance != nullptr ? Wrapper::EncodeSession(isBypassed, instance->SaveState())
                               : std::vector<uint8_t>();
}

bool Effect::Load(std::span<const uint8_t> session)
{
    host.MarkUiThread();
    if (instance == nullptr || !Wrapper::LoadSession(*instance, session)) {
        return false;
    }
    hasUiValues = true;
    ShowValues();
    TellHost();
    return true;
}

void Effect::SetHandler(v3_component_handler** handler)
{
    host.MarkUiThread();
    host.SetHandler(handler);
    TellHost();
}

} // namespace Vst3

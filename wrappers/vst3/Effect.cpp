// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Effect.h"

#include "wrappers/vst3/Log.h"

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
    parameters.emplace(*instance);
    values = std::vector<Value>(parameters->Count());
    parameters->ReadAll(
        [this](uint32_t index, float value) { values[index].shown = static_cast<double>(value); });
    isStarted = true;
    host.SetContext(context);
    return true;
}

void Effect::Stop()
{
    host.Disconnect();
    isStarted = false;
    instance.reset(); // waits for a notice that is on its way
    parameters.reset();
    isActive = false;
    isPlaying = false;
    untold = 0;
    isDirty = false;
    hasNews = false;
    toldLatency = -1;
}

bool Effect::SetArrangement(const Arrangement& newArrangement)
{
    if (isActive || !SetFormat(sampleRate, newArrangement)) {
        return newArrangement.mask == arrangement.mask;
    }
    arrangement = newArrangement;
    return true;
}

bool Effect::SetRate(double rate)
{
    if (isActive || !SetFormat(rate, arrangement)) {
        return rate == sampleRate;
    }
    sampleRate = rate;
    return true;
}

bool Effect::SetFormat(double rate, const Arrangement& wanted)
{
    return instance != nullptr ? instance->SetFormat(rate, wanted.ChannelCount())
                               : Wrapper::Instance::CanServe(rate, wanted.ChannelCount());
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
        ActOnWaiting();
    }
}

uint32_t Effect::GetLatency() noexcept
{
    const uint32_t latency = instance != nullptr ? instance->GetLatency(Wrapper::Side::UI) : 0;
    toldLatency = latency;
    return latency;
}

void Effect::SetHandler(v3_component_handler** handler)
{
    host.MarkUiThread();
    host.SetHandler(handler);
    TellHost();
}

} // namespace Vst3

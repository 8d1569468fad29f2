// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Effect.h"

#include "wrappers/vst3/Log.h"
#include "wrappers/vst3/ParameterIds.h"

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
    values = std::vector<Value>(ids.size());
    words.emplace(static_cast<uint32_t>(ids.size()));
    for (uint32_t index = 0; index < ids.size(); ++index) {
        Show(index, static_cast<double>(instance->GetParameter(Wrapper::Side::UI, index)));
    }
    isStarted = true;
    host.SetContext(context);
    return true;
}

void Effect::Stop()
{
    host.Disconnect();
    isStarted = false;
    instance.reset(); // waits for a notice that is on its way
    words.reset();
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
    if (isActive || !SetFormat(rate, arrangement)) {
        return rate == sampleRate;
    }
    sampleRate = rate;
    return true;
}

bool Effect::SetFormat(double rate, const Speakers& speakers)
{
    return instance != nullptr ? instance->SetFormat(rate, speakers.ChannelCount())
                               : Wrapper::Instance::CanServe(rate, speakers.ChannelCount());
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

// SPDX-License-Identifier: ISC
#include "wrappers/clap/Plugin.h"

#include <utility>

namespace Clap {

Plugin::Plugin(const clap_plugin_t& table,
               std::shared_ptr<const Wrapper::Module> newModule,
               const clap_host_t* newHost)
    : functions(table)
    , module(std::move(newModule))
    , host(newHost)
{
    functions.plugin_data = this;
}

bool Plugin::Init()
{
    if (isReady) {
        return true;
    }
    host.FindExtensions();
    Wrapper::Setup setup;
    setup.sampleRate = rate;
    setup.channels = layout->ChannelCount();
    instance = Wrapper::Instance::Create(
        module, setup, *this, [this](const std::string& text) { host.Log(text); });
    if (instance == nullptr) {
        return false;
    }
    parameters = std::make_unique<Parameters>(*instance);
    gestures.emplace(parameters->Count());
    hostGestures.emplace(parameters->Count());
    isReady = true; // changes are noticed from here on, so that no value is missed
    parameters->Refresh();
    toldLatency = GetLatency();
    askedLatency = toldLatency;
    return true;
}

bool Plugin::Activate(double newRate)
{
    if (!isReady) {
        return false;
    }
    const uint32_t channels = layout->ChannelCount();
    if (!Wrapper::Instance::CanServe(newRate, channels)) {
        return false;
    }
    Deactivate(); // whoever still processes gets an error from here on
    const bool isOther = newRate != rate || channels != instance->GetChannels();
    if (isOther && !instance->SetFormat(newRate, channels)) {
        return false;
    }
    rate = newRate;
    instance->Activate();
    const uint32_t latency = instance->GetLatency(Wrapper::Side::UI);
    askedLatency = latency;
    const bool isNew = toldLatency.exchange(latency) != latency;
    isTailNew = isTailNew || isNew; // which the audio thread reports
    isActive = true;
    // Older hosts allow this while the plug-in isn't active, newer ones while it is being
    // activated.
    if (isNew) {
        host.LatencyChanged();
    }
    // Another one that came before the plug-in was active has asked for nothing.
    if (instance->GetLatency(Wrapper::Side::UI) != latency) {
        host.RequestCallback();
    }
    return true;
}

void Plugin::Deactivate()
{
    if (isActive.exchange(false)) {
        instance->Deactivate();
    }
}

void Plugin::Reset() noexcept WRAPPER_NONBLOCKING
{
    if (isActive) {
        instance->Reset();
    }
}

void Plugin::OnMainThread()
{
    if (isStateChanged.exchange(false)) {
        host.MarkDirty();
    }
    if (areGesturesLost.exchange(false)) {
        host.RescanValues();
    }
    if (isReady) {
        hostGestures->Take([this](uint32_t parameter, float before) {
            instance->BeginGesture(parameter, before);
            instance->EndGesture(parameter);
        });
    }
    if (!isActive) {
        return;
    }
    // A host that doesn't follow is asked again for another latency only.
    const uint32_t latency = instance->GetLatency(Wrapper::Side::UI);
    if (std::exchange(askedLatency, latency) != latency && latency != toldLatency) {
        host.RequestRestart();
    }
}

std::vector<uint8_t> Plugin::Save()
{
    return parameters->Save();
}

bool Plugin::Load(std::span<const uint8_t> session)
{
    if (!parameters->Load(session)) {
        return false;
    }
    host.RescanValues();
    return true;
}

// That of the UI side: it knows of a loaded state before the first block does, and nothing that
// comes with events changes the latency.
uint32_t Plugin::GetLatency() const noexcept
{
    return isActive ? toldLatency.load() : instance->GetLatency(Wrapper::Side::UI);
}

bool Plugin::SelectLayout(clap_id id)
{
    if (isActive) {
        return false;
    }
    for (const Layout* const one : Wrapper::Layouts::All) {
        if (GetId(*one) == id) {
            layout = one; // the host looks at the ports by itself when this is done
            return true;
        }
    }
    return false;
}

void Plugin::OnLatencyChanged(Wrapper::Side /*side*/, uint32_t /*samples*/) noexcept
{
    // The format lets no latency change while a plug-in is active: the host has to restart it.
    if (isActive) {
        host.RequestCallback();
    }
}

void Plugin::OnGestureBegun(uint32_t parameter) noexcept
{
    Tell({Gesture::Kind::Begin, parameter});
}

void Plugin::OnParameterChanged(uint32_t parameter, float normalised) noexcept
{
    if (isReady && parameter < parameters->Count()) {
        parameters->Keep(parameter, normalised);
        Tell({Gesture::Kind::Change, parameter});
    }
}

void Plugin::OnGestureEnded(uint32_t parameter) noexcept
{
    Tell({Gesture::Kind::End, parameter});
}

void Plugin::OnStateChanged() noexcept
{
    if (isReady) {
        isStateChanged = true;
        host.RequestCallback();
    }
}

void Plugin::Tell(const Gesture& gesture) noexcept
{
    if (!isReady || gesture.parameter >= parameters->Count()) {
        return;
    }
    if (!gestures->Add(gesture)) {
        areGesturesLost = true; // then the host reads the values anew
        host.RequestCallback();
    }
    host.RequestFlush();
}

} // namespace Clap

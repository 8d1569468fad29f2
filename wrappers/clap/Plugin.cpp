// SPDX-License-Identifier: ISC
#include "wrappers/clap/Plugin.h"

#include "wrappers/common/SessionBytes.h"

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
    isReady = true; // changes are heard from here on, so that no value is missed
    parameters->Refresh();
    toldLatency = GetLatency();
    tail = toldLatency;
    return true;
}

bool Plugin::Activate(double newRate)
{
    if (!isReady) {
        return false;
    }
    const bool isOther = newRate != rate || layout->ChannelCount() != instance->GetChannels();
    if (isOther && !instance->SetFormat(newRate, layout->ChannelCount())) {
        return false;
    }
    rate = newRate;
    Deactivate();
    instance->Activate();
    isRestartRequested = false;
    const uint32_t latency = GetLatency();
    tail = latency;
    // Older hosts allow this while the plug-in isn't active, newer ones while it is being
    // activated.
    if (latency != toldLatency) {
        toldLatency = latency;
        host.LatencyChanged();
    }
    isActive = true;
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
    if (isActive && !isRestartRequested && GetLatency() != toldLatency) {
        isRestartRequested = true;
        host.RequestRestart();
    }
}

std::vector<uint8_t> Plugin::Save()
{
    const std::optional<uint32_t> bypass = parameters->GetBypass();
    const bool isBypassed = bypass && parameters->GetValue(*bypass) >= 0.5;
    return Wrapper::EncodeSession(isBypassed, instance->SaveState());
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
    return instance->GetLatency(Wrapper::Side::UI);
}

bool Plugin::SelectLayout(clap_id id)
{
    if (isActive) {
        return false;
    }
    for (const Layout& one : layouts) {
        if (one.id == id) {
            const bool isOther = layout != &one;
            layout = &one;
            if (isOther) {
                host.RescanChannels();
            }
            return true;
        }
    }
    return false;
}

void Plugin::OnLatencyChanged(Wrapper::Side side, uint32_t samples) noexcept
{
    if (side == Wrapper::Side::UI) {
        // The format counts the tail from the end of the input, whatever the latency: what a host
        // cuts off earlier is sound that still was on its way. Repaired sound ends with it, too.
        tail = samples;
    }
    // The format lets no latency change while a plug-in is active: the host has to restart it.
    if (isActive) {
        host.RequestCallback();
    }
}

void Plugin::OnGestureBegun(uint32_t parameter) noexcept
{
    Tell({Gesture::Kind::Begin, parameter, 0});
}

void Plugin::OnParameterChanged(uint32_t parameter, float normalised) noexcept
{
    if (isReady && parameter < parameters->Count()) {
        Tell({Gesture::Kind::Change, parameter, parameters->Keep(parameter, normalised)});
    }
}

void Plugin::OnGestureEnded(uint32_t parameter) noexcept
{
    Tell({Gesture::Kind::End, parameter, 0});
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
    if (!gestures.Push(gesture)) {
        areGesturesLost = true; // then the host reads the values anew
        host.RequestCallback();
    }
    host.RequestFlush();
}

} // namespace Clap

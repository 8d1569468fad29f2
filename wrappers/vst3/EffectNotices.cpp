// SPDX-License-Identifier: ISC
// What goes from an effect to its host.
#include "wrappers/vst3/Effect.h"

namespace Vst3 {

// The process side's latency is that of the UI side a little earlier, and the host knows one.
void Effect::OnLatencyChanged(Wrapper::Side side, uint32_t /*samples*/) noexcept
{
    if (side == Wrapper::Side::UI) {
        hasNews = true;
    }
}

// Notices may come before the list of parameters is there, from the module's own thread.
bool Effect::IsKnown(uint32_t parameter) const noexcept
{
    return isStarted && parameter < parameters->Count();
}

void Effect::OnGestureBegun(uint32_t parameter) noexcept
{
    if (IsKnown(parameter) && host.IsUiThread()) {
        host.BeginEdit(GetId(parameter));
    }
}

void Effect::OnParameterChanged(uint32_t parameter, float normalised) noexcept
{
    if (!IsKnown(parameter)) {
        return;
    }
    values[parameter].isWaiting = false;
    values[parameter].shown = static_cast<double>(normalised);
    parameters->NoteChange(parameter, normalised);
    if (host.IsUiThread() && host.HasHandler()) {
        host.PerformEdit(GetId(parameter), static_cast<double>(normalised));
        return;
    }
    LeaveUntold(parameter);
}

void Effect::LeaveUntold(uint32_t index) noexcept
{
    untold.fetch_or(uint32_t{1} << index);
    hasNews = true;
}

void Effect::OnGestureEnded(uint32_t parameter) noexcept
{
    if (IsKnown(parameter) && host.IsUiThread()) {
        host.EndEdit(GetId(parameter));
    }
}

void Effect::OnStateChanged() noexcept
{
    isDirty = true;
    hasNews = true;
}

bool Effect::HasNewLatency() const noexcept
{
    const int64_t latency = instance->GetLatency(Wrapper::Side::UI);
    return toldLatency >= 0 && latency != toldLatency;
}

void Effect::TellHost() noexcept
{
    if (instance == nullptr || isTelling || !host.IsUiThread() || !host.HasHandler() ||
        !hasNews.exchange(false)) {
        return;
    }
    isTelling = true;
    if (isDirty.exchange(false)) {
        host.SetDirty();
    }
    int32_t flags = 0;
    if (TakeUntold() != 0) {
        flags |= V3_RESTART_PARAM_VALUES_CHANGED;
    }
    if (HasNewLatency()) {
        flags |= V3_RESTART_LATENCY_CHANGED;
        GetLatency(); // reported once, even to a host that doesn't look at it
    }
    if (flags != 0) {
        host.Restart(flags);
    }
    isTelling = false;
}

} // namespace Vst3

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HostGestures.h"

#include "frameworks/plugincore/instance/ParamRecords.h"
#include "frameworks/plugincore/instance/ParamText.h"

#include <iterator>

namespace {

// A second and a half; a block is shorter than that, and so is the way of a value to it.
constexpr uint32_t TicksForTheValue = 15;

bool IsOfSession(const HostParams::Place& place)
{
    return std::visit(
        [](const auto& param) {
            return param->GetParamInfo().persistence == DSP::Persistence::Session;
        },
        *place.param);
}

} // namespace

HostGestures::HostGestures(const HostParams& newParams, HistoryKeeper& newHistory)
    : params(newParams)
    , history(newHistory)
{
}

uint32_t HostGestures::Answer(const ParamEventRecord& event)
{
    const auto place = params.GetAutomatable(event.index);
    const bool isKnown =
        event.kind == ParamEventGestureBegins || event.kind == ParamEventGestureEnds;
    if (!place || !isKnown) {
        return PluginCoreUnsupported;
    }
    if (!IsOfSession(*place)) {
        return PluginCoreSuccess;
    }
    if (event.kind == ParamEventGestureBegins) {
        history.onActionBegins();
        gestures[event.index] = {event.value, 0};
        return PluginCoreSuccess;
    }
    const auto found = gestures.find(event.index);
    if (found != gestures.end()) {
        found->second.ticksLeft = TicksForTheValue;
        if (TryFinish(event.index, found->second)) {
            gestures.erase(found);
        }
    }
    return PluginCoreSuccess;
}

bool HostGestures::TryFinish(uint32_t index, const Gesture& gesture)
{
    const HostParams::Place place = params.GetAutomatable(index).value();
    place.element->SyncParams();
    if (GetNormalised(*place.param, DSP::Context::UI) == gesture.before) {
        return false;
    }
    history.AddEntry(DescribeValue(*place.param));
    return true;
}

void HostGestures::onIdle()
{
    for (auto entry = gestures.begin(); entry != gestures.end();) {
        Gesture& gesture = entry->second;
        const bool isEnded = gesture.ticksLeft > 0;
        const bool isDone =
            isEnded && (TryFinish(entry->first, gesture) || --gesture.ticksLeft == 0);
        entry = isDone ? gestures.erase(entry) : std::next(entry);
    }
}

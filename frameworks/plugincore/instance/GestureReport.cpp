// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/GestureReport.h"

#include "frameworks/plugincore/instance/ParamRecords.h"

#include <algorithm>
#include <utility>

GestureReport::GestureReport(HostCallback& newHost,
                             EditorLink& newEditor,
                             const HostParams& newParams)
    : host(newHost)
    , editor(newEditor)
    , params(newParams)
{
}

void GestureReport::ReportToHost(PluginCoreParamEvent kind,
                                 const DSP::Element& element,
                                 const String& name)
{
    if (const auto index = params.FindAutomatable(element, name)) {
        host.NotifyParam(MakeEvent(kind, *index));
    }
}

ParamEventRecord GestureReport::MakeEvent(PluginCoreParamEvent kind, uint32_t index) const
{
    const HostParams::Place place = params.GetAutomatable(index).value();
    return {static_cast<uint32_t>(kind), index, GetNormalised(*place.param, DSP::Context::UI)};
}

// Within an action changes wait for its end, but for those that a gesture encloses.
void GestureReport::ReportChange(const DSP::Element& element, const String& name, uint32_t index)
{
    const ParamEventRecord event = MakeEvent(ParamEventValueChanged, index);
    if (actions == 0 || book.IsHeld(element, name)) {
        host.NotifyParam(event);
        return;
    }
    const auto former = std::find_if(collected.begin(), collected.end(), [&](const auto& entry) {
        return entry.index == index;
    });
    if (former != collected.end()) {
        *former = event;
    } else {
        collected.push_back(event);
    }
}

// What waits for the end of all that is under way.
void GestureReport::ReportRest()
{
    if (!book.IsUnderWay() && std::exchange(mustReload, false)) {
        host.NotifyReload();
    }
}

void GestureReport::Grabbed(const DSP::Element& element, const String& name, bool mayReport)
{
    if (book.Grab(element, name, mayReport && editor.IsOpen())) {
        ReportToHost(ParamEventGestureBegins, element, name);
    }
}

void GestureReport::Released(const DSP::Element& element, const String& name)
{
    const GestureBook::Ended ended = book.Release(element, name);
    if (ended.wasReported) {
        ReportToHost(ParamEventGestureEnds, element, name);
    }
    if (ended.isActionDone) {
        host.NotifyDirty();
    }
    ReportRest();
}

void GestureReport::Changed(const DSP::Element& element, const String& name)
{
    editor.ParamChanged(element.GetName(), name);
    const DSP::Persistence persistence = element.GetParamInfoByName(name).persistence;
    if (const auto index = params.FindAutomatable(element, name)) {
        ReportChange(element, name, *index);
    } else if (persistence != DSP::Persistence::Transient) {
        mustReload = true;
    }
    // Neither a preference of the user nor what is saved nowhere is part of the host's state.
    if (persistence == DSP::Persistence::Session && book.NoteChange()) {
        host.NotifyDirty();
    }
    ReportRest();
}

GestureReport::UserAction::UserAction(GestureReport& newReport)
    : report(newReport)
{
    report.book.BeginAction();
    ++report.actions;
}

GestureReport::UserAction::~UserAction()
{
    if (--report.actions == 0) {
        report.host.NotifyParams(std::exchange(report.collected, {}));
    }
    if (report.book.EndAction()) {
        report.host.NotifyDirty();
    }
    report.ReportRest();
}

void GestureReport::UserAction::MarkChanged()
{
    report.book.NoteChange(); // this action is under way, so that nothing is done yet
}

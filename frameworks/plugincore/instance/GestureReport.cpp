// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/GestureReport.h"

#include "frameworks/plugincore/instance/ParamRecords.h"
#include "frameworks/plugincore/instance/ParamText.h"

#include <algorithm>
#include <utility>

namespace {

// Neither a preference of the user nor what is saved nowhere is part of the state.
bool IsOfSession(const DSP::Element& element, const String& name)
{
    return element.GetParamInfoByName(name).persistence == DSP::Persistence::Session;
}

} // namespace

GestureReport::GestureReport(const Parts& newParts)
    : parts(newParts)
{
}

void GestureReport::ReportToHost(PluginCoreParamEvent kind,
                                 const DSP::Element& element,
                                 const String& name)
{
    if (const auto index = parts.params.FindAutomatable(element, name)) {
        parts.host.NotifyParam(MakeEvent(kind, *index));
    }
}

ParamEventRecord GestureReport::MakeEvent(PluginCoreParamEvent kind, uint32_t index) const
{
    const HostParams::Place place = parts.params.GetAutomatable(index).value();
    return {static_cast<uint32_t>(kind), index, GetNormalised(*place.param, DSP::Context::UI)};
}

// Within an action changes wait for its end, but for those that a gesture encloses.
void GestureReport::ReportChange(const DSP::Element& element, const String& name, uint32_t index)
{
    const ParamEventRecord event = MakeEvent(ParamEventValueChanged, index);
    if (actions == 0 || book.IsHeld(element, name)) {
        parts.host.NotifyParam(event);
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
        parts.host.NotifyReload();
    }
}

void GestureReport::Grabbed(const DSP::Element& element, const String& name, bool mayReport)
{
    if (mayReport && IsOfSession(element, name)) {
        parts.history.onActionBegins();
    }
    if (book.Grab(element, name, mayReport && parts.editor.IsOpen())) {
        ReportToHost(ParamEventGestureBegins, element, name);
    }
}

void GestureReport::Released(const DSP::Element& element, const String& name)
{
    const GestureBook::Ended ended = book.Release(element, name);
    if (ended.wasReported) {
        ReportToHost(ParamEventGestureEnds, element, name);
    }
    EndAction(ended.isActionDone);
    ReportRest();
}

void GestureReport::Changed(const DSP::Element& element, const String& name)
{
    parts.editor.ParamChanged(element.GetName(), name);
    if (const auto index = parts.params.FindAutomatable(element, name)) {
        ReportChange(element, name, *index);
    } else if (element.GetParamInfoByName(name).persistence != DSP::Persistence::Transient) {
        mustReload = true;
    }
    if (IsOfSession(element, name)) {
        DescribeChange(element, name);
        EndAction(book.NoteChange());
    }
    ReportRest();
}

void GestureReport::DescribeChange(const DSP::Element& element, const String& name)
{
    if (actions > 0) {
        return;
    }
    const std::pair key(&element, name);
    if (actionText.IsEmpty()) {
        touchedParam = key;
    }
    const auto index = element.FindParamIndex(name);
    if (touchedParam == key && index) {
        actionText = DescribeValue(*element.FindParam(*index));
    }
}

void GestureReport::EndAction(bool isDone)
{
    if (isDone) {
        if (!actionText.IsEmpty()) {
            parts.history.AddEntry(actionText);
        }
        parts.host.NotifyDirty();
    }
    if (!book.IsUnderWay()) {
        actionText = "";
        touchedParam.reset();
    }
}

GestureReport::UserAction::UserAction(GestureReport& newReport, const String& newText)
    : report(newReport)
{
    report.parts.history.onActionBegins();
    report.book.BeginAction();
    ++report.actions;
    if (report.actionText.IsEmpty()) {
        report.actionText = newText;
    }
}

GestureReport::UserAction::~UserAction()
{
    if (--report.actions == 0) {
        report.parts.host.NotifyParams(std::exchange(report.collected, {}));
    }
    report.EndAction(report.book.EndAction());
    report.ReportRest();
}

void GestureReport::UserAction::MarkChanged()
{
    report.book.NoteChange(); // this action is under way, so that nothing is done yet
}

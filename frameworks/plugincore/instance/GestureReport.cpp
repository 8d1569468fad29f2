// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/GestureReport.h"

#include "frameworks/plugincore/instance/ParamRecords.h"

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
        const HostParams::Place place = params.GetAutomatable(*index).value();
        host.NotifyParam({kind, *index, GetNormalised(*place.param, DSP::Context::UI)});
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
}

void GestureReport::Changed(const DSP::Element& element, const String& name)
{
    editor.ParamChanged(element.GetName(), name);
    ReportToHost(ParamEventValueChanged, element, name);
    // Neither a preference of the user nor what is saved nowhere is part of the host's state.
    const bool isOfSession =
        element.GetParamInfoByName(name).persistence == DSP::Persistence::Session;
    if (isOfSession && book.NoteChange()) {
        host.NotifyDirty();
    }
}

GestureReport::UserAction::UserAction(GestureReport& newReport)
    : report(newReport)
{
    report.book.BeginAction();
}

GestureReport::UserAction::~UserAction()
{
    if (report.book.EndAction()) {
        report.host.NotifyDirty();
    }
}

void GestureReport::UserAction::MarkChanged()
{
    report.book.NoteChange(); // this action is under way, so that nothing is done yet
}

// SPDX-License-Identifier: ISC
// What the user does in an instance, as the host hears of it.
#include "frameworks/plugincore/controller/ElementDispatcherControllerSet.h"
#include "frameworks/plugincore/instance/ParamRecords.h"
#include "frameworks/plugincore/instance/Plugin.h"

namespace {

// Kinds of ParamEventRecord.
constexpr uint32_t GestureBegins = 0;
constexpr uint32_t ValueChanged = 1;
constexpr uint32_t GestureEnds = 2;

} // namespace

Plugin::UserAction::UserAction(Plugin& newPlugin)
    : plugin(newPlugin)
{
    plugin.gestures.BeginAction();
}

Plugin::UserAction::~UserAction()
{
    if (plugin.gestures.EndAction()) {
        plugin.NotifyDirty();
    }
}

void Plugin::UserAction::MarkChanged()
{
    plugin.gestures.NoteChange(); // this action is under way, so that nothing is done yet
}

bool Plugin::MayReport() const
{
    return !switching && !reconfiguring && pendingChunks.empty();
}

void Plugin::ReportParam(uint32_t kind, const DSP::Element& element, const String& name)
{
    const auto index = transform->GetParamSet().FindIndex(element, name);
    if (index) {
        const DSP::AutomatableParam& param = transform->GetParamSet().GetParams()[*index];
        GetHostCallback().NotifyParam({kind, *index, GetNormalised(param.param, DSP::Context::UI)});
    }
}

void Plugin::ParamGrabbed(DSP::Element& element, const String& name)
{
    // Only an editor has gestures: values that are set by code are no touch of the user's.
    if (gestures.Grab(element, name, MayReport() && editor.IsOpen())) {
        ReportParam(GestureBegins, element, name);
    }
}

void Plugin::ParamReleased(DSP::Element& element, const String& name)
{
    const GestureBook::Ended ended = gestures.Release(element, name);
    // Also when the editor is being closed by now, or a new format is on its way: a gesture that
    // the host has seen begin and not end would block its automation for good.
    if (ended.wasReported) {
        ReportParam(GestureEnds, element, name);
    }
    if (ended.isActionDone) {
        NotifyDirty();
    }
}

void Plugin::ParamChanged(DSP::Element& element, const String& name)
{
    if (!MayReport()) {
        return;
    }
    editor.ParamChanged(element.GetName(), name);
    ReportParam(ValueChanged, element, name);
    // Neither a preference of the user nor what is saved nowhere is part of the host's state.
    const bool isOfSession =
        element.GetParamInfoByName(name).persistence == DSP::Persistence::Session;
    if (isOfSession && gestures.NoteChange()) {
        NotifyDirty();
    }
}

std::shared_ptr<Controller::ControllerSet>
Plugin::CreateControllerSet(DSP::ElementDispatcher& element)
{
    return std::make_shared<Controller::ElementDispatcherControllerSet>(element);
}

void Plugin::StorePersistentParams()
{
    if (persistentParams) {
        // Every change is stored at once; what is left is what the process side alone knows.
        transform->GetSet().OnSyncParams();
        persistentParams->Clear();
    }
}

void Plugin::LoadPersistentParams()
{
    if (persistentParams) {
        for (const auto& [name, element] : transform->GetSet().GetElements()) {
            persistentParams->Load(*element);
        }
    }
}

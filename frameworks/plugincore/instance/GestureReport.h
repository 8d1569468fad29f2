// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/EditorLink.h"
#include "frameworks/plugincore/instance/GestureBook.h"
#include "frameworks/plugincore/instance/HostCallback.h"
#include "frameworks/plugincore/instance/HostParams.h"

#include <vector>

/// Reports what the user does in an instance: each change to the open editor, then changes and
/// gestures of automatable parameters to the host, and at the end of each action that the state has
/// changed, if it has, or something that the host doesn't automate.
///
/// Threads: all under the UI lock. [ui]
class GestureReport {
public:
    /// All three outlive the report; none is used before the first call.
    GestureReport(HostCallback& newHost, EditorLink& newEditor, const HostParams& newParams);

    /// A control holds the parameter, which begins a gesture of the user's when an editor is open:
    /// values that are set by code are no touch. `mayReport` is false while what changes is none of
    /// the user's doing; the hold then counts, and the host doesn't learn of it.
    void Grabbed(const DSP::Element& element, const String& name, bool mayReport);
    /// Ends what Grabbed() began. The host is notified of each end whose begin it knows, also when
    /// the editor is being closed by now, or a new format is on its way: a gesture without an end
    /// would block its automation for good.
    void Released(const DSP::Element& element, const String& name);
    /// A value has changed by something else than the host.
    void Changed(const DSP::Element& element, const String& name);

    /// Something that the user does in one go, from here to the end of the scope: the host is
    /// notified at the end, of all changes at once and that the state has changed, if it has. [ui]
    class UserAction {
    public:
        explicit UserAction(GestureReport& newReport);
        UserAction(const UserAction&) = delete;
        UserAction& operator=(const UserAction&) = delete;
        ~UserAction();

        /// What changes is no parameter.
        void MarkChanged();

    private:
        GestureReport& report;
    };

private:
    void ReportToHost(PluginCoreParamEvent kind, const DSP::Element& element, const String& name);
    ParamEventRecord MakeEvent(PluginCoreParamEvent kind, uint32_t index) const;
    void ReportChange(const DSP::Element& element, const String& name, uint32_t index);
    void ReportRest();

    HostCallback& host;
    EditorLink& editor;
    const HostParams& params;
    GestureBook book;
    uint32_t actions = 0;                    // under way
    std::vector<ParamEventRecord> collected; // changes of the actions, the last of each parameter
    bool mustReload = false;                 // something has changed that isn't automatable
};

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/EditorLink.h"
#include "frameworks/plugincore/instance/GestureBook.h"
#include "frameworks/plugincore/instance/HistoryKeeper.h"
#include "frameworks/plugincore/instance/HostCallback.h"
#include "frameworks/plugincore/instance/HostParams.h"

#include <optional>
#include <utility>
#include <vector>

/// Reports what the user does in an instance: each change to the open editor, then changes and
/// gestures of automatable parameters to the host; and at the end of each action that has changed
/// the state, that it has, to the host (also when it was something that the host doesn't automate),
/// and what was done to the history.
///
/// Threads: all under the UI lock. [ui]
class GestureReport {
public:
    /// All of it outlives the report; none is used before the first call.
    struct Parts {
        HostCallback& host;
        EditorLink& editor;
        const HostParams& params;
        HistoryKeeper& history;
    };
    explicit GestureReport(const Parts& newParts);

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
        /// With a text the action becomes a step of the history, if it has changed something;
        /// without one it becomes none, whatever changes.
        explicit UserAction(GestureReport& newReport, const String& newText = {});
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
    void DescribeChange(const DSP::Element& element, const String& name);
    void EndAction(bool isDone);

    const Parts parts;
    GestureBook book;
    uint32_t actions = 0;                    // under way
    std::vector<ParamEventRecord> collected; // changes of the actions, the last of each parameter
    bool mustReload = false;                 // something has changed that isn't automatable
    String actionText; // of what is under way: the first that there is something to say of
    std::optional<std::pair<const DSP::Element*, String>> touchedParam; // the text is about this
};

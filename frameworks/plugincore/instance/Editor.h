// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>

/// The open editor of an instance, as the instance drives it. Every call comes with the UI lock
/// held; those around a new stream format hold the processing lock as well. [ui]
class Editor {
public:
    Editor() = default;
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;
    virtual ~Editor() = default;

    /// The handle of its window as the host's platform knows it; 0: there is none.
    virtual uint64_t GetNativeWindow() const { return 0; }

    /// Around the loading of a whole state, in which many values change at once.
    virtual void BeginLoad() = 0;
    virtual void EndLoad() = 0;

    /// A value has changed by something else than the plug-in host; the host is notified next.
    virtual void ParamChanged(const String& elementName, const String& paramName) = 0;
    /// The state has moved away from what the history holds; at most once until it is taken.
    virtual void StateChanged() = 0;

    /// Around a new stream format, on the thread that attached the editor: its window and all that
    /// is bound to elements goes, and comes back as it was.
    virtual void CloseForFormat() = 0;
    virtual void ReopenAfterFormat() = 0;

    /// The same when another thread changes the format: the window stays, what is bound to elements
    /// goes. AttachControllers() comes with a later tick.
    virtual void DetachControllers() = 0;
    virtual void AttachControllers() = 0;
};

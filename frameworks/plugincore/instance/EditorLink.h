// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/Editor.h"

#include <thread>

/// The link between an instance and its open editor: whose thread the editor is, and what it still
/// has to follow. The editor stays its maker's.
///
/// Threads: all under the UI lock, a change of format under the processing lock as well. [ui]
class EditorLink {
public:
    /// The editor of the calling thread from now on; null: there is none. It follows no change of
    /// state from before.
    void Attach(Editor* newEditor);
    Editor* Get() const { return editor; }
    bool IsOpen() const { return editor != nullptr; }

    /// A value has changed by something else than the host.
    void ParamChanged(const String& elementName, const String& paramName);
    /// The state has moved away from what the history holds. Reaches the editor once until
    /// TakeStateChange().
    void StateChanged();
    /// True once after the editor was notified by StateChanged().
    bool TakeStateChange();

    /// Before a change of format: nothing of the editor's is bound to elements afterwards. One of
    /// this thread is closed and given back, for Reopen(); one of another thread stays open, and is
    /// attached again by FinishFormat().
    [[nodiscard]] Editor* FreeOfElements();
    /// After the change of format: opens what FreeOfElements() gave. Null does nothing.
    void Reopen(Editor* closed);
    /// The tick's part of a change of format, which is done when there is something to do. When
    /// that throws, it is done again at the next call. True when something was done.
    bool FinishFormat();
    /// Whether FinishFormat() has something to do.
    bool IsPending() const { return isPending; }
    /// A new editor finds what a change of format has left to be done already done.
    void DropPending() { isPending = false; }

private:
    Editor* editor = nullptr; // not owned
    std::thread::id thread{}; // that attached the editor
    bool isPending = false;   // its controllers are to be attached again
    bool isStateChanged = false;
};

/// From here to the end of the scope a whole state is loaded: its editor, if any, is notified
/// of the begin and the end. [ui]
class EditorLoadScope {
public:
    explicit EditorLoadScope(const EditorLink& link);
    EditorLoadScope(const EditorLoadScope&) = delete;
    EditorLoadScope& operator=(const EditorLoadScope&) = delete;
    ~EditorLoadScope();

private:
    Editor* const editor;
};

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/EditorLink.h"

#include <utility>

void EditorLink::Attach(Editor* newEditor)
{
    isStateChanged = false;
    editor = newEditor;
    thread = newEditor != nullptr ? std::this_thread::get_id() : std::thread::id();
}

void EditorLink::ParamChanged(const String& elementName, const String& paramName)
{
    if (editor != nullptr) {
        editor->ParamChanged(elementName, paramName);
    }
}

void EditorLink::StateChanged()
{
    if (editor != nullptr && !isStateChanged) {
        isStateChanged = true;
        editor->StateChanged();
    }
}

bool EditorLink::TakeStateChange()
{
    return std::exchange(isStateChanged, false);
}

Editor* EditorLink::FreeOfElements()
{
    if (editor == nullptr) {
        return nullptr;
    }
    if (thread != std::this_thread::get_id()) {
        editor->DetachControllers();
        isPending = true;
        return nullptr;
    }
    editor->CloseForFormat();
    isPending = false; // opened again, it is bound to what is there then
    return std::exchange(editor, nullptr);
}

void EditorLink::Reopen(Editor* closed)
{
    if (closed != nullptr) {
        editor = closed;
        editor->ReopenAfterFormat();
    }
}

bool EditorLink::FinishFormat()
{
    if (!isPending) {
        return false;
    }
    if (editor != nullptr) {
        editor->AttachControllers();
    }
    isPending = false; // not before: what fails is tried again
    return true;
}

EditorLoadScope::EditorLoadScope(const EditorLink& link)
    : editor(link.Get())
{
    if (editor != nullptr) {
        editor->BeginLoad();
    }
}

EditorLoadScope::~EditorLoadScope()
{
    if (editor != nullptr) {
        editor->EndLoad();
    }
}

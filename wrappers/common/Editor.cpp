// SPDX-License-Identifier: ISC
#include "wrappers/common/Editor.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

namespace Wrapper {

namespace {

EditorRecord MakeRecord(PluginCoreEditorOp op)
{
    EditorRecord record = {};
    record.op = op;
    return record;
}

} // namespace

Editor::Editor(Instance& newInstance)
    : instance(newInstance)
{
}

Editor::~Editor()
{
    Close();
}

bool Editor::Open(void* parent, uint32_t scale)
{
    EditorRecord record = MakeRecord(EditorOpOpen);
    record.parentWindow = parent;
    record.scale = scale;
    isOpen = isOpen || instance.CallEditor(record) == PluginCoreSuccess;
    return isOpen;
}

void Editor::Close()
{
    if (isOpen) {
        EditorRecord record = MakeRecord(EditorOpClose);
        instance.CallEditor(record);
        isOpen = false;
    }
}

void Editor::Idle()
{
    if (isOpen) {
        EditorRecord record = MakeRecord(EditorOpIdle);
        instance.CallEditor(record);
    }
}

uint64_t Editor::GetNativeWindow()
{
    EditorRecord record = MakeRecord(EditorOpGetNativeWindow);
    return isOpen && instance.CallEditor(record) == PluginCoreSuccess ? record.nativeWindow : 0;
}

Editor::Size Editor::Constrain(Size wanted)
{
    EditorRecord record = MakeRecord(EditorOpConstrainSize);
    record.width = wanted.width;
    record.height = wanted.height;
    return instance.CallEditor(record) == PluginCoreSuccess ? Size{record.width, record.height}
                                                            : wanted;
}

void Editor::SetSize(Size size)
{
    if (isOpen) {
        EditorRecord record = MakeRecord(EditorOpSetWindowSize);
        record.width = size.width;
        record.height = size.height;
        instance.CallEditor(record);
    }
}

} // namespace Wrapper

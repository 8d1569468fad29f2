/* SPDX-License-Identifier: ISC
 *
 * Records about the editor. Included by PluginCoreCallback.h.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCOREEDITOR_H
#define PLUGINCORE_ENTRY_PLUGINCOREEDITOR_H

#include <stdint.h>

/** SelectorEditorCommand. */
typedef struct EditorRecord {
    int32_t op;
    uint32_t reserved4;
    void* parentWindow;
    uint32_t x;
    uint32_t y;
    int32_t width;
    int32_t height;
    uint32_t scale;
    uint32_t flagA;
    int32_t flagB;
    uint32_t message;
    uint32_t messageFirst;
    uint32_t messageSecond;
    uint32_t handled;
    uint32_t result;
    uint64_t nativeWindow;
    int32_t traceAllocations;
    uint32_t reserved76;
} EditorRecord;

/** Sub-operations of SelectorEditorCommand. */
typedef enum PluginCoreEditorOp {
    EditorOpOpen = 0,
    EditorOpClose = 1,
    EditorOpIdle = 2,
    EditorOpShow = 3,
    EditorOpNone = 4,
    EditorOpCanClose = 5,
    EditorOpGetNativeWindow = 6,
    EditorOpWindowMessage = 7,
    EditorOpSetWindowPosition = 8,
    EditorOpSetWindowSize = 9,
    EditorOpConstrainSize = 10,
    EditorOpGetScale = 11
} PluginCoreEditorOp;

/** SelectorEditorKey. */
typedef struct EditorKeyRecord {
    uint8_t reserved[12];
    uint32_t keyCode;
    uint32_t isPress;
    uint32_t handled; /**< out */
} EditorKeyRecord;

/** SelectorEditorMouse. */
typedef struct EditorMouseRecord {
    int32_t x;
    int32_t y;
    uint32_t buttons;
    uint32_t kind;
    uint32_t modifiers;
    int32_t useCurrentPosition;
    uint32_t handled; /**< out */
} EditorMouseRecord;

/** HostOpcodeGetWindowHint. */
typedef struct WindowHintRecord {
    int32_t present; /**< 1: the other two are valid */
    uint32_t a;
    uint32_t b;
} WindowHintRecord;

#endif

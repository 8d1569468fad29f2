/* SPDX-License-Identifier: ISC
 *
 * Records about sessions and presets. Included by PluginCoreCallback.h.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCORESTATE_H
#define PLUGINCORE_ENTRY_PLUGINCORESTATE_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

/**
 * SelectorStateCommand. A chunk holds the values that belong to a session, whatever the stream
 * format, and loads in any other. Size and chunk are asked for one after the other without a change
 * in between. A load that fails changes nothing.
 */
typedef struct StateRecord {
    int32_t op;
    uint8_t failed; /**< out, but of StateOpGetSize: 1 when the operation failed, else 0 */
    uint8_t reserved5[3];
    uint32_t size; /**< bytes; out of StateOpGetSize */
    uint32_t reserved12;
    void* buffer;            /**< `size` bytes of the caller's; a write never passes them */
    uint32_t compareVersion; /**< accepted; nothing depends on it */
    uint32_t version;        /**< in of StateOpSetChunk: the state version of PluginInfoRecord */
    uint32_t equal;          /**< out of StateOpCompareChunk, when it didn't fail */
    uint32_t reserved36;
} StateRecord;

/** Sub-operations of SelectorStateCommand. */
typedef enum PluginCoreStateOp {
    StateOpGetSize = 0,         /**< of the chunk as of now */
    StateOpGetCompareChunk = 1, /**< the chunk without what is no difference to a user */
    StateOpGetChunk = 2,        /**< the chunk; fails unless `size` is its size exactly */
    StateOpSetChunk = 3, /**< loads; fails for what is no chunk, but a later one is passed over */
    StateOpCompareChunk = 4 /**< finds differences of older chunks only; others are equal */
} PluginCoreStateOp;

/** SelectorHostMessage. */
typedef struct HostMessageRecord {
    uint32_t message;
    uint32_t length; /**< bytes */
    void* data;
} HostMessageRecord;

/** Message of SelectorHostMessage with context 1: presets of the instance; data: PresetRecord. */
#define PLUGIN_CORE_MESSAGE_PRESET 0x50755072u

/**
 * One operation on presets. A call that carries it answers PluginCoreSuccess whenever the operation
 * is known and the record is large enough; `failed` is how the operation went. An instance whose
 * operation failed is as it was.
 */
typedef struct PresetRecord {
    int32_t op;
    uint8_t failed;     /**< out: 1 when the operation failed; `message` is the reason */
    uint8_t isReadOnly; /**< out of PresetOpDescribe: not to be overwritten or removed */
    uint8_t mayReplace; /**< in of PresetOpSave: 1 puts the preset in the place of one that is
                           there; of PresetOpRemove: 1 removes it, 0 only asks */
    uint8_t reserved7;
    uint32_t count; /**< out of PresetOpList: entries */
    uint32_t index; /**< in of PresetOpDescribe: place in the list */
    uint32_t group; /**< out of PresetOpDescribe: PluginCorePresetGroup */
    uint32_t reserved20;
    /** In: a preset's name, or a file's path: see PluginCoreIsPresetPath(). PresetOpApply and
     * PresetOpRemove take a path without a file for a name, "/" for "-". PresetOpSave without a
     * name makes a new one, and makes one good that some file system would refuse: `presetName` has
     * it. PresetOpImport takes a file's path, PresetOpSetFolder a folder's. */
    const char* name;
    const char* comment;      /**< in of PresetOpSave; null: that of the preset replaced, or none */
    char presetName[256];     /**< out; texts are UTF-8, cut to their field and terminated */
    char presetComment[1024]; /**< out */
    char path[4096];          /**< out; empty for an entry without a file */
    /** Out: what went wrong and why. Of PresetOpDescribe: what a list shows in place of the
     * comment, such as a fault of the file, or that another preset hides this one. Of
     * PresetOpRemove that only asks: the question. */
    char message[1024];
} PresetRecord;

/** Whether the `name` of a PresetRecord is a file's path and not a preset's name: not 0 for what
 * holds a "/" or ends in ".xml", in small letters. */
static inline int PluginCoreIsPresetPath(const char* name)
{
    const size_t length = strlen(name);
    return strchr(name, '/') != NULL || (length >= 4 && strcmp(name + length - 4, ".xml") == 0);
}

/** Sub-operations of PLUGIN_CORE_MESSAGE_PRESET. */
typedef enum PluginCorePresetOp {
    PresetOpList =
        0,                /**< looks at the folders anew and counts; any of the next but
                             PresetOpDescribe     may change the list, and PresetOpList then counts again */
    PresetOpDescribe = 1, /**< name, group, comment and path of one entry of the list */
    PresetOpApply = 2,    /**< sets the instance's values by the preset `name`; names it */
    PresetOpSave = 3,     /**< writes the instance's values to `name`; returns name and path */
    PresetOpRemove = 4,   /**< removes the preset `name` for good, or asks whether to */
    PresetOpImport = 5, /**< copies the file `name` into the user's folder; returns name and path */
    PresetOpGetFolder = 6, /**< the `path` of the user's folder */
    PresetOpSetFolder = 7  /**< makes `name` the user's folder, in their settings and for all
                                instances; no name: the default. Returns the path. Not for instances
                                with the token "Offline", which change no settings */
} PluginCorePresetOp;

/**
 * Message of SelectorHostMessage with context 1: the user has taken hold of a parameter in a view
 * of the host's own, or has let it go; data: ParamEventRecord of kind ParamEventGestureBegins,
 * whose `value` is that from before the gesture, or ParamEventGestureEnds, whose `value` isn't
 * read. What is set in between comes by SelectorSetAutomatableParamValue, in either context. The
 * whole gesture becomes one step of the undo history, if it has changed a value that sessions keep;
 * values set outside of gestures become none. Answers PluginCoreUnsupported for another kind, and
 * for an index that is out of range.
 */
#define PLUGIN_CORE_MESSAGE_GESTURE 0x50754765u

/** Message of SelectorHostMessage with context 1: the instance's undo history; data:
 * HistoryRecord. */
#define PLUGIN_CORE_MESSAGE_HISTORY 0x50754869u

/**
 * One operation on an undo history. A call that carries it answers as one with a PresetRecord does.
 * The user's finished gestures, applied presets and HistoryOpResetAll add steps; going to one adds
 * none, and the next new step takes the place of all behind the one that the instance is at.
 */
typedef struct HistoryRecord {
    int32_t op;
    uint8_t failed;     /**< out: 1 when the operation failed; `message` is the reason */
    uint8_t isSelected; /**< out of HistoryOpDescribe: the instance is at this step */
    uint8_t slots;      /**< out of HistoryOpDescribe: bit n for slot n that holds this step */
    uint8_t reserved7;
    uint32_t count;   /**< out of HistoryOpList and HistoryOpOpen: steps */
    uint32_t index;   /**< in of HistoryOpDescribe and HistoryOpGoTo: 0 is the oldest step */
    const char* path; /**< in of HistoryOpOpen */
    char time[32];    /**< out: when the step was made, UTC, "YYYY-MM-DDTHH:MM:SSZ"; may be empty */
    char text[1024];  /**< out: what was done, such as "Sensitivity: 6.5" */
    char message[1024]; /**< out: what went wrong and why */
} HistoryRecord;

/** Sub-operations of PLUGIN_CORE_MESSAGE_HISTORY. */
typedef enum PluginCoreHistoryOp {
    HistoryOpList = 0, /**< counts this instance's steps */
    HistoryOpOpen = 1, /**< counts those in the file at `path`, which the next two then go by, until
                            another list; the instance's own stay as they are */
    HistoryOpDescribe = 2, /**< one step of the list: time and text */
    HistoryOpGoTo = 3,     /**< gives the instance the state of a step of the list */
    HistoryOpUndo = 4,     /**< to the step before, whose text it gives; fails at the first one */
    HistoryOpRedo = 5,     /**< to the step behind; fails at the last one */
    HistoryOpResetAll = 6  /**< sets all that sessions keep to its defaults: a step "Reset All" */
} PluginCoreHistoryOp;

/** Where a preset of the list comes from. */
typedef enum PluginCorePresetGroup {
    PresetGroupBuiltIn = 0, /**< made on the spot: the elements' defaults */
    PresetGroupFactory = 1, /**< came with the product */
    PresetGroupUser = 2     /**< in the user's preset folder */
} PluginCorePresetGroup;

#endif

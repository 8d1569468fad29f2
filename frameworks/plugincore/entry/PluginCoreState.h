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
    uint8_t
        mayReplace; /**< in of PresetOpSave: 1 puts the preset in the place of one that is there */
    uint8_t reserved7;
    uint32_t count; /**< out of PresetOpList: entries */
    uint32_t index; /**< in of PresetOpDescribe: place in the list made by PresetOpList */
    uint32_t group; /**< out of PresetOpDescribe: PluginCorePresetGroup */
    uint32_t reserved20;
    /** In: a preset's name, or a file's path: see PluginCoreIsPresetPath(). PresetOpApply takes a
     * path without a file for a name, "/" for "-". PresetOpSave without a name makes a new one. */
    const char* name;
    const char* comment;      /**< in of PresetOpSave; null: none */
    char presetName[256];     /**< out; texts are UTF-8, cut to their field and terminated */
    char presetComment[1024]; /**< out */
    char path[4096];          /**< out; empty for an entry without a file */
    /** Out: what went wrong and why. Of PresetOpDescribe: what a list shows in place of the
     * comment, such as a fault of the file, or that another preset hides this one. */
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
    PresetOpList = 0,     /**< looks at the folders anew and counts */
    PresetOpDescribe = 1, /**< name, group, comment and path of one entry of that list */
    PresetOpApply = 2,    /**< sets the instance's values by the preset `name`; names it */
    PresetOpSave = 3      /**< writes the instance's values to `name`; returns the path */
} PluginCorePresetOp;

/** Where a preset of the list comes from. */
typedef enum PluginCorePresetGroup {
    PresetGroupBuiltIn = 0, /**< made on the spot: the elements' defaults */
    PresetGroupFactory = 1, /**< came with the product */
    PresetGroupUser = 2     /**< in the user's preset folder */
} PluginCorePresetGroup;

#endif

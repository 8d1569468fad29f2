/* SPDX-License-Identifier: ISC
 *
 * What both directions of the protocol are made of: the answers, the selectors, the host's opcodes,
 * and the two functions. Included by PluginCoreCallback.h.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCOREPROTOCOL_H
#define PLUGINCORE_ENTRY_PLUGINCOREPROTOCOL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** First argument of every call, in both directions. */
#define PLUGIN_CORE_MAGIC 1077u
/** The exported symbol's name, for the dynamic loader. */
#define PLUGIN_CORE_ENTRY_NAME "PluginCoreCallback"
/** Most channels of a bus. */
#define PLUGIN_CORE_MAX_CHANNELS 24u
/** Most side buses of a process call. */
#define PLUGIN_CORE_MAX_SIDE_BUSES 16u

/** An instance; opaque to the caller. */
typedef struct PluginCore PluginCore;

/** Answers of the entry. The host callback answers 0 for success, anything else for a refusal. */
typedef enum PluginCoreResult {
    PluginCoreSuccess = 0,
    PluginCoreWrongMagic = 1,
    PluginCoreWrongContext = 2, /**< this selector doesn't take this context */
    PluginCoreUnknownSelector = 3,
    PluginCoreNullInstance = 4,
    PluginCoreNullRecord = 5,  /**< the record, or a pointer that it must hold, is null */
    PluginCoreUnsupported = 6, /**< unknown sub-operation, index out of range, not supported */
    PluginCoreNoEditor = 7     /**< the editor could not be opened, or isn't open */
} PluginCoreResult;

/** Third argument, in both directions: for which side the call is made. */
typedef enum PluginCoreContext {
    ContextProcess = 0, /**< the processing side */
    ContextUI = 1       /**< the UI side */
} PluginCoreContext;

/** Second argument of the entry; the comment names the record. */
typedef enum PluginCoreSelector {
    SelectorGetPluginInfo = 0,             /**< PluginInfoRequest; no instance */
    SelectorCreatePlugin = 1,              /**< CreateRecord; no instance */
    SelectorGetAllocationTrace = 2,        /**< AllocationTraceRecord */
    SelectorUnassigned3 = 3,               /**< none; does nothing */
    SelectorUnassigned4 = 4,               /**< none; does nothing */
    SelectorInitialize = 5,                /**< none */
    SelectorTerminate = 6,                 /**< none */
    SelectorDestroyPlugin = 7,             /**< none; no other call may run or follow */
    SelectorGetAutomatableParamCount = 8,  /**< uint32_t out */
    SelectorGetAutomatableParamList = 9,   /**< ParamListRecord of ParamInfoRecord */
    SelectorGetAutomatableParamValue = 10, /**< ParamValueRecord */
    SelectorSetAutomatableParamValue = 11, /**< ParamValueRecord */
    SelectorGetElementParamCount = 12,     /**< uint32_t out */
    SelectorGetElementParamList = 13,      /**< ParamListRecord of ElementParamInfoRecord */
    SelectorGetElementParamValue = 14,     /**< ParamValueRecord */
    SelectorSetElementParamValue = 15,     /**< ParamValueRecord */
    SelectorGetParamAtPoint = 16,          /**< ParamAtPointRecord */
    SelectorSetStreamFormat = 17,          /**< StreamFormatRecord */
    SelectorGetLatency = 18,               /**< uint32_t out, samples */
    SelectorResetProcessing = 19,          /**< uint32_t out, samples */
    SelectorSetProcessingState = 20,       /**< ProcessingStateRecord */
    SelectorSettle = 21,                   /**< none */
    SelectorProcess = 22,                  /**< ProcessRecord */
    SelectorProcessSidePass = 23,          /**< SidePassRecord */
    SelectorTransformQuery = 24,           /**< uint32_t in and out, PluginCoreTransformQuery */
    SelectorTransformNotify = 25,          /**< PluginCoreTransformNotice; read without a test */
    SelectorTransformReset = 26,           /**< none */
    SelectorTransformRead = 27,            /**< TransformReadRecord */
    SelectorEditorCommand = 28,            /**< EditorRecord */
    SelectorEditorKey = 29,                /**< EditorKeyRecord */
    SelectorEditorMouse = 30,              /**< EditorMouseRecord */
    SelectorStateCommand = 31,             /**< StateRecord */
    SelectorLoadTransformData = 32,        /**< TransformDataRecord */
    SelectorModuleListQuery = 33,          /**< ModuleListRecord */
    SelectorGetExtensionCount = 34,        /**< uint32_t out, always 0 */
    SelectorUnsupported35 = 35,            /**< any; answers PluginCoreUnsupported */
    SelectorUnsupported36 = 36,            /**< any; answers PluginCoreUnsupported */
    SelectorElementCommand = 37,           /**< ElementRecord */
    SelectorSetHostTrackValue = 38,        /**< uint32_t in */
    SelectorHostMessage = 39               /**< HostMessageRecord */
} PluginCoreSelector;

/**
 * Second argument of the host callback; the comment names the record. This build of the module
 * doesn't send 4 and 5, which belong to an editor, nor 18 and 19, which a console will ask for.
 */
typedef enum PluginCoreHostOpcode {
    HostOpcodeParamEvent = 1,           /**< ParamEventRecord */
    HostOpcodeLatencyChanged = 2,       /**< uint32_t, samples; the context is whose latency */
    HostOpcodeReloadEditor = 3,         /**< none; what is not automatable has changed */
    HostOpcodeUICodeEnd = 4,            /**< none */
    HostOpcodeUICodeBegin = 5,          /**< none */
    HostOpcodeGetHostDelay = 12,        /**< uint32_t out, samples that the host adds */
    HostOpcodeGetHostInfo = 13,         /**< HostInfoRecord out, asked once */
    HostOpcodeAutomationEvent = 14,     /**< AutomationEventRecord */
    HostOpcodeDirtyState = 16,          /**< none */
    HostOpcodeGetWindowHint = 17,       /**< WindowHintRecord out */
    HostOpcodeGetProcessSeconds = 18,   /**< float out: time spent on audio */
    HostOpcodeGetUISeconds = 19,        /**< float out: time spent on the UI side */
    HostOpcodeRequestReinstantiate = 20 /**< ReinstantiateRecord */
} PluginCoreHostOpcode;

/** The exported entry. `instance` is what CreatePlugin wrote; `data` is the selector's record. */
typedef uint32_t (*PluginCoreEntryFunction)(
    uint32_t magic, uint32_t selector, uint32_t context, PluginCore* instance, void* data);

/**
 * What the wrapper lends: (magic, opcode, context, refcon, record). It is called from within a call
 * of the entry, or from the module's own timer thread, and answers without waiting for another
 * thread. The context is what a message is about, not which thread brings it: a change of the
 * processing side's latency may come from the UI side while no audio runs. The callback may call
 * the entry again on the same thread; a new stream format that it asks for from inside a process
 * call or a change of latency is ignored.
 */
typedef uint32_t (*PluginCoreHostFunction)(
    uint32_t magic, uint32_t opcode, uint32_t context, void* hostRefcon, void* data);

#ifdef __cplusplus
}
#endif

#endif

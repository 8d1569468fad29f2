/* SPDX-License-Identifier: ISC
 *
 * The binary protocol between the module and whatever loads it: one exported function in, one host
 * callback out, and the plain records that both carry. Compiles as C11 and as C++; a wrapper needs
 * nothing else of this project.
 *
 * Layout: 64-bit, native byte order, natural alignment. Texts are UTF-8 and NUL-terminated. Bool
 * fields are 0 or 1. Members named `reserved` are written as zero and not read.
 *
 * Threads: context 0 is the processing side, context 1 the UI side. One thread at a time acts for
 * each; both may call at once.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCORECALLBACK_H
#define PLUGINCORE_ENTRY_PLUGINCORECALLBACK_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

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

/** Second argument of the entry; the comment names the record. */
typedef enum PluginCoreSelector {
    SelectorGetPluginInfo = 0,             /**< PluginInfoRequest; no instance */
    SelectorCreatePlugin = 1,              /**< CreateRecord; no instance */
    SelectorGetAllocationTrace = 2,        /**< AllocationTraceRecord */
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
    SelectorTransformQuery = 24,           /**< uint32_t in and out */
    SelectorTransformNotify = 25,          /**< uint32_t in; read without a test */
    SelectorTransformReset = 26,           /**< none */
    SelectorTransformRead = 27,            /**< TransformReadRecord */
    SelectorEditorCommand = 28,            /**< EditorRecord */
    SelectorEditorKey = 29,                /**< EditorKeyRecord */
    SelectorEditorMouse = 30,              /**< EditorMouseRecord */
    SelectorStateCommand = 31,             /**< StateRecord */
    SelectorLoadTransformData = 32,        /**< TransformDataRecord */
    SelectorModuleListQuery = 33,          /**< ModuleListRecord */
    SelectorGetExtensionCount = 34,        /**< uint32_t out, always 0 */
    SelectorElementCommand = 37,           /**< ElementRecord */
    SelectorSetHostTrackValue = 38,        /**< uint32_t in */
    SelectorHostMessage = 39               /**< HostMessageRecord */
} PluginCoreSelector;

/**
 * Second argument of the host callback; the comment names the record. This build of the module
 * sends 1, 2, 12, 16 and 17; the others belong to an editor and to services that it doesn't have.
 */
typedef enum PluginCoreHostOpcode {
    HostOpcodeParamEvent = 1,           /**< ParamEventRecord */
    HostOpcodeLatencyChanged = 2,       /**< uint32_t, samples; the context tells whose latency */
    HostOpcodeReloadEditor = 3,         /**< none */
    HostOpcodeUICodeEnd = 4,            /**< none */
    HostOpcodeUICodeBegin = 5,          /**< none */
    HostOpcodeGetHostDelay = 12,        /**< uint32_t out, samples that the host adds */
    HostOpcodeGetHostInfo = 13,         /**< HostInfoRecord out */
    HostOpcodeAutomationEvent = 14,     /**< AutomationEventRecord */
    HostOpcodeDirtyState = 16,          /**< none */
    HostOpcodeGetWindowHint = 17,       /**< WindowHintRecord out */
    HostOpcodeGetProcessSeconds = 18,   /**< float out */
    HostOpcodeGetUISeconds = 19,        /**< float out */
    HostOpcodeRequestReinstantiate = 20 /**< ReinstantiateRecord */
} PluginCoreHostOpcode;

/** Format numbers of PluginIdentity. */
typedef enum PluginCoreFormat {
    FormatStandalone = 0,
    FormatDX = 1,
    FormatVST = 2,
    FormatDPMRealTime = 3,
    FormatDPMAudioSuite = 4,
    FormatTDM = 5,
    FormatAAXRealTime = 6,
    FormatAAXAudioSuite = 7,
    FormatAAXTDM = 8,
    FormatAU = 9,
    FormatMAS = 10,
    FormatVST3 = 11
} PluginCoreFormat;

/** The exported entry. `instance` is what CreatePlugin wrote; `data` is the selector's record. */
typedef uint32_t (*PluginCoreEntryFunction)(
    uint32_t magic, uint32_t selector, uint32_t context, PluginCore* instance, void* data);

/**
 * What the wrapper lends: (magic, opcode, context, refcon, record). It is called from within a call
 * of the entry, or from the module's own timer thread, and answers without waiting for another
 * thread. The context says what a message is about, not which thread brings it: a change of the
 * processing side's latency may come from the UI side while no audio runs. The callback may call
 * the entry again on the same thread; a new stream format that it asks for from inside a process
 * call or a change of latency is not heard.
 */
typedef uint32_t (*PluginCoreHostFunction)(
    uint32_t magic, uint32_t opcode, uint32_t context, void* hostRefcon, void* data);

/** Called around each element's reset: begins is 1 before and 0 after it. [process] */
typedef void (*PluginCoreElementObserver)(void* observerContext, void* element, uint32_t begins);

/** Who is loading: filled by the wrapper, copied by value. */
typedef struct PluginIdentity {
    /**
     * Tokens separated by "|". "Lang:xx" forces the interface language. "Offline" is for a renderer
     * of files: the user's settings change neither latency nor values, and none is written.
     */
    char options[1024];
    int32_t format; /**< PluginCoreFormat */
    uint8_t reserved[4];
} PluginIdentity;

/** What the product is. Texts are cut to their field. */
typedef struct PluginInfoRecord {
    char vendor[64];
    char vendorLong[256];
    char bundlePrefix[256];
    char shortName[64];
    char displayName[64];
    char fullName[256];
    char versionText[64];
    uint32_t versionNumber;
    uint32_t buildNumber;
    uint32_t revision;
    uint32_t stateVersion;
    uint32_t supportsEditor;
    uint32_t formatFlags[3];
    uint32_t sideChainInputs;
    uint32_t sideChainCountC;
    uint32_t sideChainCountB;
    uint32_t optionFlags[15]; /**< options 33 to 47 */
    uint32_t optionFlag48;
    uint32_t optionFlag49;
    uint32_t reserved1136;
    uint32_t optionFlag110;
    uint32_t supportsBypass;
    uint32_t defaultWidth;  /**< pixels */
    uint32_t defaultHeight; /**< pixels */
    char text60[1024];
    uint32_t value62;
    char presetId[64];
    uint8_t reserved2248[52];
    uint32_t aaxProductId; /**< four-character code, first character in the top byte */
    uint32_t aaxVersion;
    char aaxVendorNames[1024];
    uint32_t aaxVendorId;
    char aaxProductNames[1024];
    char text82[2048];
    uint32_t vst2Id;
    uint32_t vst2Category;
    uint32_t optionFlag87;
    uint32_t optionFlag111;
    uint32_t optionFlag86;
    uint32_t optionFlag88;
    uint32_t optionFlag89;
    uint32_t value84;
    uint32_t values92[2];  /**< values 92 and 93 */
    uint32_t values94[10]; /**< values 94 to 103 */
    uint8_t reserved6488[4];
    uint32_t values104[6]; /**< values 104 to 109 */
    uint32_t isStandalone;
    char learnLabel[64];
    char resourceName[64];
    uint32_t auType;
    uint32_t auVendor;
    uint32_t auSubtype;
    char auName[64];
    uint32_t auSecondVendor;
    uint32_t auSecondSubtype;
    uint32_t value118;
    char debugProjectPath[1024];
} PluginInfoRecord;

/** SelectorGetPluginInfo. Byte 1023 of the options is set to 0 by the call. */
typedef struct PluginInfoRequest {
    PluginIdentity identity;
    PluginInfoRecord* info; /**< out */
} PluginInfoRequest;

/** SelectorCreatePlugin. `*instance` becomes null when construction fails (answer 6). */
typedef struct CreateRecord {
    PluginCoreHostFunction hostCallback; /**< null counts as a host that refuses every call */
    void* hostRefcon;                    /**< handed back with every host callback */
    char modulePath[2048];
    PluginIdentity identity;
    PluginCore** instance;  /**< out */
    float sampleRate;       /**< Hz; what isn't finite and above 0 counts as 44100 */
    uint32_t channelConfig; /**< 0 mono, 1 stereo, 13 to 34 plain layouts of 3 to 24 channels */
    int32_t flag;           /**< accepted; nothing depends on it */
    int32_t traceAllocations;
} CreateRecord;

/**
 * SelectorGetAllocationTrace: where to write the six values. The module has no hook in the heap,
 * so that `traceCount` and `wordCount` come out as 0 and `buffer` stays as it is.
 */
typedef struct AllocationTraceRecord {
    uint32_t* traceCount;
    uint32_t* stride; /**< always 200 */
    uint32_t* wordCount;
    void* buffer;             /**< may be null */
    uint64_t* constructStart; /**< stack top at construction when tracing was asked for, else 0 */
    uint64_t* editorStart;
} AllocationTraceRecord;

/** Kinds of ParamInfoRecord. */
typedef enum PluginCoreParamType {
    ParamTypeFloat = 0,
    ParamTypeBool = 1,
    ParamTypeEnum = 2
} PluginCoreParamType;

/** One automatable parameter. */
typedef struct ParamInfoRecord {
    char identifier[256]; /**< "element.parameter" */
    char displayName[1024];
    char units[1024];
    char labels[2048];       /**< of an enumeration, separated by tabs */
    uint32_t type;           /**< PluginCoreParamType */
    uint32_t flags;          /**< bit 0: logarithmic */
    uint32_t isAutomatable;  /**< 0 here; see ElementParamInfoRecord */
    uint32_t isAutomatable2; /**< 0 here */
    uint32_t reserved;
    uint32_t automatableIndex; /**< 0 here */
    float minimum;             /**< in the parameter's own units, as are the next two */
    float maximum;
    float defaultValue;
    uint32_t steps; /**< number of values of a bool or an enumeration, 0 for a float */
} ParamInfoRecord;

/** One parameter of any element. */
typedef struct ElementParamInfoRecord {
    ParamInfoRecord info; /**< with the automatable members filled */
    uint32_t elementIndex;
} ElementParamInfoRecord;

/** SelectorGetAutomatableParamList, SelectorGetElementParamList. */
typedef struct ParamListRecord {
    uint32_t count; /**< in: must equal the real count */
    uint32_t reserved;
    void* params; /**< out: array of `count` records */
} ParamListRecord;

/** Selectors 10, 11, 14, 15. The value is normalised: 0 to 1, linear over the range. */
typedef struct ParamValueRecord {
    uint32_t index;
    float value;
} ParamValueRecord;

/** SelectorGetParamAtPoint. */
typedef struct ParamAtPointRecord {
    int32_t x;
    int32_t y;
    uint32_t index; /**< out */
    uint32_t found; /**< out */
} ParamAtPointRecord;

/** SelectorSetStreamFormat. A rate or a layout that can't be served changes nothing. */
typedef struct StreamFormatRecord {
    float sampleRate; /**< Hz */
    uint32_t channelConfig;
} StreamFormatRecord;

/** SelectorSetProcessingState. */
typedef struct ProcessingStateRecord {
    int32_t active;
    int32_t hold;
} ProcessingStateRecord;

/** The host's transport; members that aren't named are the wrapper's own. */
typedef struct TransportRecord {
    uint8_t reserved0[24];
    double position;         /**< samples, of the block's first frame */
    int32_t isPositionValid; /**< not 0: `position` counts */
    uint8_t reserved36[100];
} TransportRecord;

/**
 * SelectorProcess: one block, in place. Samples that are no finite numbers, or beyond 1e15, count
 * as 0.
 */
typedef struct ProcessRecord {
    uint32_t frames; /**< any number; 0 does nothing */
    uint32_t reserved4;
    float** channels;           /**< one pointer a channel of the stream format */
    TransportRecord* transport; /**< may be null: no valid position */
    uint32_t sideBusCount;      /**< at most PLUGIN_CORE_MAX_SIDE_BUSES */
    uint32_t eventCount;
    uint8_t events[128];
    float** sideBuses[16];
    uint32_t sideBusChannels[16];
    int32_t renderFlagA;
    int32_t renderFlagB; /**< not 0: blocks carry no position */
} ProcessRecord;

/** SelectorProcessSidePass. */
typedef struct SidePassRecord {
    uint32_t frames;
    uint32_t reserved;
    void* first;
    void* second;
} SidePassRecord;

/** What TransformReadRecord.request may ask for. */
typedef enum PluginCoreTransformRead {
    TransformReadDetections = 1, /**< the buffer is an array of DetectionRecord */
    TransformReadTotals = 2      /**< the buffer is one DetectionTotalsRecord */
} PluginCoreTransformRead;

/**
 * SelectorTransformRead.
 *
 * TransformReadDetections gives the repairs that the instance has made, oldest first. The list is
 * bounded: a reader that stays away longer than 1024 repairs loses the oldest, which shows as a
 * jump of `number`. Any thread may read while audio runs; nothing is removed by reading. A position
 * that no repair has reached yet gives nothing until one does.
 */
typedef struct TransformReadRecord {
    uint32_t request;     /**< PluginCoreTransformRead */
    uint32_t capacity;    /**< records that the buffer takes */
    uint32_t recordBytes; /**< size of one record as the caller knows it; must match */
    uint32_t reserved12;
    void* buffer;
    uint32_t position; /**< in: number of the first detection wanted; out: of the next one */
    int32_t flag;      /**< out: 1 while more wait */
    uint32_t answered; /**< out: 1 when the request was understood */
    uint32_t count;    /**< out: records written */
} TransformReadRecord;

/**
 * One repair. Positions are centres of analysis frames, in samples of the input since the repair
 * last restarted (creation, reset, end of bypass, new format or latency); they may be negative.
 * The energies are sums of squared spectral magnitudes over all channels, the frames of the region
 * and the bins from 20 to 150 Hz.
 */
typedef struct DetectionRecord {
    uint32_t number;  /**< running number, from 0 */
    uint32_t restart; /**< how often the repair had restarted */
    int64_t centre;   /**< samples */
    int64_t start;    /**< samples, first frame of the region */
    int64_t end;      /**< samples, last frame of the region */
    float severity;   /**< 0 to 1 */
    float pitchHz;    /**< 0: unvoiced */
    float detection;  /**< detection value of the centre frame */
    float threshold;  /**< what it had to exceed */
    double energyBefore;
    double energyAfter;
    uint32_t hop;         /**< number of the hop in which the repair was made, from 0 */
    uint32_t regionStart; /**< index into the detection history, 0 the oldest */
    uint32_t regionEnd;
    uint32_t repairedBins; /**< bins below the upper limit of the repair */
} DetectionRecord;

/** Sums over all frames since the repair last restarted. */
typedef struct DetectionTotalsRecord {
    uint64_t hops;     /**< that have come in; the latest one's energy may still be missing */
    double bandEnergy; /**< before any repair; units of DetectionRecord.energyBefore */
    uint32_t restart;
    uint32_t detections; /**< number that the next repair will get */
} DetectionTotalsRecord;

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
    StateOpCompareChunk = 4 /**< tells differences of older chunks only; others are equal */
} PluginCoreStateOp;

/** SelectorLoadTransformData. */
typedef struct TransformDataRecord {
    uint8_t failed; /**< out */
    uint8_t reserved1[3];
    uint32_t size; /**< bytes */
    void* data;
} TransformDataRecord;

/** SelectorModuleListQuery. */
typedef struct ModuleListRecord {
    int32_t op;
    uint32_t reserved4;
    uint32_t count; /**< out */
    uint32_t index;
    uint32_t value; /**< out */
    uint32_t reserved20;
    char* text; /**< out */
    void* data; /**< out */
} ModuleListRecord;

/** SelectorElementCommand. */
typedef struct ElementRecord {
    int32_t op;
    uint32_t count;
    uint32_t index;
    char name[256]; /**< out */
    uint32_t reserved268;
    void* element;                      /**< out */
    PluginCoreElementObserver observer; /**< null removes it */
    void* observerContext;
    uint8_t observerOnWorker; /**< accepted; resets run on the calling thread */
    uint8_t reserved297[3];
    uint32_t tuningWord;
    uint8_t tuningFlag;
    uint8_t reserved305[7];
    uint64_t tuningFirst;
    uint64_t tuningSecond;
} ElementRecord;

/** Sub-operations of SelectorElementCommand. */
typedef enum PluginCoreElementOp {
    ElementOpGetCount = 0,
    ElementOpGetElement = 1,
    ElementOpSetObserver = 2,
    ElementOpSetTuningWord = 3,
    ElementOpSetTuningFlag = 4,
    ElementOpSetTuningRange = 5
} PluginCoreElementOp;

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
 * is known and the record is large enough; `failed` tells how the operation went. An instance whose
 * operation failed is as it was.
 */
typedef struct PresetRecord {
    int32_t op;
    uint8_t failed;     /**< out: 1 when the operation failed; `message` says why */
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
    PresetOpSave = 3      /**< writes the instance's values to `name`; tells the path */
} PluginCorePresetOp;

/** Where a preset of the list comes from. */
typedef enum PluginCorePresetGroup {
    PresetGroupBuiltIn = 0, /**< made on the spot: the elements' defaults */
    PresetGroupFactory = 1, /**< came with the product */
    PresetGroupUser = 2     /**< in the user's preset folder */
} PluginCorePresetGroup;

/** HostOpcodeParamEvent. */
typedef struct ParamEventRecord {
    uint32_t kind; /**< 0 gesture begins, 1 value changed, 2 gesture ends */
    uint32_t index;
    float value; /**< normalised */
} ParamEventRecord;

/** HostOpcodeGetHostInfo: the host's own name and version. */
typedef struct HostInfoRecord {
    uint32_t length; /**< bytes of the name */
    uint32_t reserved4;
    const char* name; /**< owned by the host, UTF-8 */
    float version;    /**< 0: unknown */
    uint32_t reserved20;
} HostInfoRecord;

/** HostOpcodeAutomationEvent: gestures of several parameters at once. */
typedef struct AutomationEventRecord {
    uint8_t gestures[152];
    uint32_t handled; /**< out: not 0 when the wrapper has dealt with it */
} AutomationEventRecord;

/** HostOpcodeRequestReinstantiate. */
typedef struct ReinstantiateRecord {
    uint32_t first;
    uint32_t second;
    void* third;
} ReinstantiateRecord;

/** HostOpcodeGetWindowHint. */
typedef struct WindowHintRecord {
    int32_t present; /**< 1: the other two are valid */
    uint32_t a;
    uint32_t b;
} WindowHintRecord;

#ifdef __cplusplus
}
#endif

#include "PluginCoreLayout.h"

#endif

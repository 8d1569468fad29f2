/* SPDX-License-Identifier: ISC
 *
 * Records about the product and the life of an instance. Included by PluginCoreCallback.h.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCOREINSTANCE_H
#define PLUGINCORE_ENTRY_PLUGINCOREINSTANCE_H

#include "PluginCoreProtocol.h"

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

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
    float sampleRate;       /**< Hz; one that can't be served counts as PLUGIN_CORE_FALLBACK_RATE */
    uint32_t channelConfig; /**< PluginCoreChannelConfig, or another code of a layout */
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

/** SelectorModuleListQuery. */
typedef struct ModuleListRecord {
    int32_t op; /**< PluginCoreModuleListOp */
    uint32_t reserved4;
    uint32_t count; /**< out */
    uint32_t index;
    uint32_t value; /**< out */
    uint32_t reserved20;
    char* text; /**< out */
    void* data; /**< out */
} ModuleListRecord;

/** Called around each element's reset: begins is 1 before and 0 after it. [process] */
typedef void (*PluginCoreElementObserver)(void* observerContext, void* element, uint32_t begins);

/** Sub-operations of SelectorModuleListQuery. */
typedef enum PluginCoreModuleListOp {
    ModuleListOpGetCount = 0,       /**< into `count` */
    ModuleListOpGetFirstValue = 1,  /**< of the module at `index`, into `value` */
    ModuleListOpGetSecondValue = 2, /**< likewise */
    ModuleListOpGetContent = 3,     /**< of the module at `index`, into `text` and `data` */
    ModuleListOpGetTotal = 4,       /**< a count, into `value` */
    ModuleListOpGetText = 5         /**< into `text` */
} PluginCoreModuleListOp;

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

/** HostOpcodeGetHostInfo: the host's own name and version. */
typedef struct HostInfoRecord {
    uint32_t length; /**< bytes of the name */
    uint32_t reserved4;
    const char* name; /**< owned by the host, UTF-8 */
    float version;    /**< 0: unknown */
    uint32_t reserved20;
} HostInfoRecord;

/** HostOpcodeRequestReinstantiate. */
typedef struct ReinstantiateRecord {
    uint32_t first;
    uint32_t second;
    void* third;
} ReinstantiateRecord;

#ifdef __cplusplus
}
#endif

#endif

/* SPDX-License-Identifier: ISC
 *
 * Records about parameters and what the user does to them. Included by PluginCoreCallback.h.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCOREPARAMS_H
#define PLUGINCORE_ENTRY_PLUGINCOREPARAMS_H

#include <stdint.h>

/** Kinds of ParamInfoRecord. */
typedef enum PluginCoreParamType {
    ParamTypeFloat = 0,
    ParamTypeBool = 1,
    ParamTypeEnum = 2
} PluginCoreParamType;

/** Bits of ParamInfoRecord.flags. */
typedef enum PluginCoreParamFlag {
    ParamFlagLogarithmic = 1 /**< a control for it moves by ratios */
} PluginCoreParamFlag;

/** One automatable parameter. */
typedef struct ParamInfoRecord {
    char identifier[256]; /**< "element.parameter" */
    char displayName[1024];
    char units[1024];
    char labels[2048];       /**< of an enumeration, separated by tabs */
    uint32_t type;           /**< PluginCoreParamType */
    uint32_t flags;          /**< of PluginCoreParamFlag */
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

/** Message of SelectorHostMessage with context 1; data: ChangedParamsRecord. */
#define PLUGIN_CORE_MESSAGE_CHANGED_PARAMS 0x50754350u

/**
 * The parameters of the session whose value isn't the default, for people: for each a line of its
 * identifier, a tab, its value and a line feed. PluginCoreUnsupported without a record.
 */
typedef struct ChangedParamsRecord {
    uint32_t size; /**< bytes; in: of `text`, out: of the whole list with the NUL at its end */
    uint32_t reserved4;
    char* text; /**< out; untouched when the list doesn't fit, or null */
} ChangedParamsRecord;

/** SelectorGetParamAtPoint. */
typedef struct ParamAtPointRecord {
    int32_t x;
    int32_t y;
    uint32_t index; /**< out */
    uint32_t found; /**< out */
} ParamAtPointRecord;

/** Kinds of ParamEventRecord. */
typedef enum PluginCoreParamEvent {
    ParamEventGestureBegins = 0,
    ParamEventValueChanged = 1,
    ParamEventGestureEnds = 2
} PluginCoreParamEvent;

/** HostOpcodeParamEvent. */
typedef struct ParamEventRecord {
    uint32_t kind; /**< PluginCoreParamEvent */
    uint32_t index;
    float value; /**< normalised */
} ParamEventRecord;

/** Most parameters of an AutomationEventRecord. */
#define PLUGIN_CORE_MAX_AUTOMATION_EVENTS 12u

/**
 * HostOpcodeAutomationEvent: what one action of the user, such as a preset, has changed of several
 * parameters at once. What the wrapper doesn't deal with comes as one HostOpcodeParamEvent each.
 */
typedef struct AutomationEventRecord {
    uint32_t count;                                             /**< events, from 2 on */
    ParamEventRecord events[PLUGIN_CORE_MAX_AUTOMATION_EVENTS]; /**< kind: value changed */
    uint32_t reserved148;
    uint32_t handled; /**< out: not 0 when the wrapper has dealt with it */
} AutomationEventRecord;

#endif

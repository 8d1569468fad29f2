/* SPDX-License-Identifier: ISC
 *
 * Proof at compile time that the records of PluginCoreCallback.h lie in memory as the protocol
 * says. Included by that header; not for use alone.
 */
#ifndef PLUGINCORE_ENTRY_PLUGINCORELAYOUT_H
#define PLUGINCORE_ENTRY_PLUGINCORELAYOUT_H

#include "PluginCoreCallback.h" /* so that this header also compiles alone */

#include <stddef.h>

#ifdef __cplusplus
#define PLUGIN_CORE_ASSERT(condition) static_assert(condition, #condition)
#else
#define PLUGIN_CORE_ASSERT(condition) _Static_assert(condition, #condition)
#endif
#define PLUGIN_CORE_SIZE(record, bytes) PLUGIN_CORE_ASSERT(sizeof(record) == (bytes))
#define PLUGIN_CORE_AT(record, member, bytes)                                                      \
    PLUGIN_CORE_ASSERT(offsetof(record, member) == (bytes))

PLUGIN_CORE_ASSERT(sizeof(void*) == 8);

PLUGIN_CORE_SIZE(PluginIdentity, 1032);
PLUGIN_CORE_AT(PluginIdentity, options, 0);
PLUGIN_CORE_AT(PluginIdentity, format, 1024);

PLUGIN_CORE_SIZE(PluginInfoRecord, 7760);
PLUGIN_CORE_AT(PluginInfoRecord, vendor, 0);
PLUGIN_CORE_AT(PluginInfoRecord, vendorLong, 64);
PLUGIN_CORE_AT(PluginInfoRecord, bundlePrefix, 320);
PLUGIN_CORE_AT(PluginInfoRecord, shortName, 576);
PLUGIN_CORE_AT(PluginInfoRecord, displayName, 640);
PLUGIN_CORE_AT(PluginInfoRecord, fullName, 704);
PLUGIN_CORE_AT(PluginInfoRecord, versionText, 960);
PLUGIN_CORE_AT(PluginInfoRecord, versionNumber, 1024);
PLUGIN_CORE_AT(PluginInfoRecord, buildNumber, 1028);
PLUGIN_CORE_AT(PluginInfoRecord, revision, 1032);
PLUGIN_CORE_AT(PluginInfoRecord, stateVersion, 1036);
PLUGIN_CORE_AT(PluginInfoRecord, supportsEditor, 1040);
PLUGIN_CORE_AT(PluginInfoRecord, formatFlags, 1044);
PLUGIN_CORE_AT(PluginInfoRecord, sideChainInputs, 1056);
PLUGIN_CORE_AT(PluginInfoRecord, sideChainCountC, 1060);
PLUGIN_CORE_AT(PluginInfoRecord, sideChainCountB, 1064);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlags, 1068);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlag48, 1128);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlag49, 1132);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlag110, 1140);
PLUGIN_CORE_AT(PluginInfoRecord, supportsBypass, 1144);
PLUGIN_CORE_AT(PluginInfoRecord, defaultWidth, 1148);
PLUGIN_CORE_AT(PluginInfoRecord, defaultHeight, 1152);
PLUGIN_CORE_AT(PluginInfoRecord, text60, 1156);
PLUGIN_CORE_AT(PluginInfoRecord, value62, 2180);
PLUGIN_CORE_AT(PluginInfoRecord, presetId, 2184);
PLUGIN_CORE_AT(PluginInfoRecord, aaxProductId, 2300);
PLUGIN_CORE_AT(PluginInfoRecord, aaxVersion, 2304);
PLUGIN_CORE_AT(PluginInfoRecord, aaxVendorNames, 2308);
PLUGIN_CORE_AT(PluginInfoRecord, aaxVendorId, 3332);
PLUGIN_CORE_AT(PluginInfoRecord, aaxProductNames, 3336);
PLUGIN_CORE_AT(PluginInfoRecord, text82, 4360);
PLUGIN_CORE_AT(PluginInfoRecord, vst2Id, 6408);
PLUGIN_CORE_AT(PluginInfoRecord, vst2Category, 6412);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlag87, 6416);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlag111, 6420);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlag86, 6424);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlag88, 6428);
PLUGIN_CORE_AT(PluginInfoRecord, optionFlag89, 6432);
PLUGIN_CORE_AT(PluginInfoRecord, value84, 6436);
PLUGIN_CORE_AT(PluginInfoRecord, values92, 6440);
PLUGIN_CORE_AT(PluginInfoRecord, values94, 6448);
PLUGIN_CORE_AT(PluginInfoRecord, values104, 6492);
PLUGIN_CORE_AT(PluginInfoRecord, isStandalone, 6516);
PLUGIN_CORE_AT(PluginInfoRecord, learnLabel, 6520);
PLUGIN_CORE_AT(PluginInfoRecord, resourceName, 6584);
PLUGIN_CORE_AT(PluginInfoRecord, auType, 6648);
PLUGIN_CORE_AT(PluginInfoRecord, auVendor, 6652);
PLUGIN_CORE_AT(PluginInfoRecord, auSubtype, 6656);
PLUGIN_CORE_AT(PluginInfoRecord, auName, 6660);
PLUGIN_CORE_AT(PluginInfoRecord, auSecondVendor, 6724);
PLUGIN_CORE_AT(PluginInfoRecord, auSecondSubtype, 6728);
PLUGIN_CORE_AT(PluginInfoRecord, value118, 6732);
PLUGIN_CORE_AT(PluginInfoRecord, debugProjectPath, 6736);

PLUGIN_CORE_SIZE(PluginInfoRequest, 1040);
PLUGIN_CORE_AT(PluginInfoRequest, identity, 0);
PLUGIN_CORE_AT(PluginInfoRequest, info, 1032);

PLUGIN_CORE_SIZE(CreateRecord, 3120);
PLUGIN_CORE_AT(CreateRecord, hostCallback, 0);
PLUGIN_CORE_AT(CreateRecord, hostRefcon, 8);
PLUGIN_CORE_AT(CreateRecord, modulePath, 16);
PLUGIN_CORE_AT(CreateRecord, identity, 2064);
PLUGIN_CORE_AT(CreateRecord, instance, 3096);
PLUGIN_CORE_AT(CreateRecord, sampleRate, 3104);
PLUGIN_CORE_AT(CreateRecord, channelConfig, 3108);
PLUGIN_CORE_AT(CreateRecord, flag, 3112);
PLUGIN_CORE_AT(CreateRecord, traceAllocations, 3116);

PLUGIN_CORE_SIZE(AllocationTraceRecord, 48);
PLUGIN_CORE_AT(AllocationTraceRecord, traceCount, 0);
PLUGIN_CORE_AT(AllocationTraceRecord, stride, 8);
PLUGIN_CORE_AT(AllocationTraceRecord, wordCount, 16);
PLUGIN_CORE_AT(AllocationTraceRecord, buffer, 24);
PLUGIN_CORE_AT(AllocationTraceRecord, constructStart, 32);
PLUGIN_CORE_AT(AllocationTraceRecord, editorStart, 40);

PLUGIN_CORE_SIZE(ParamInfoRecord, 4392);
PLUGIN_CORE_AT(ParamInfoRecord, identifier, 0);
PLUGIN_CORE_AT(ParamInfoRecord, displayName, 256);
PLUGIN_CORE_AT(ParamInfoRecord, units, 1280);
PLUGIN_CORE_AT(ParamInfoRecord, labels, 2304);
PLUGIN_CORE_AT(ParamInfoRecord, type, 4352);
PLUGIN_CORE_AT(ParamInfoRecord, flags, 4356);
PLUGIN_CORE_AT(ParamInfoRecord, isAutomatable, 4360);
PLUGIN_CORE_AT(ParamInfoRecord, isAutomatable2, 4364);
PLUGIN_CORE_AT(ParamInfoRecord, automatableIndex, 4372);
PLUGIN_CORE_AT(ParamInfoRecord, minimum, 4376);
PLUGIN_CORE_AT(ParamInfoRecord, maximum, 4380);
PLUGIN_CORE_AT(ParamInfoRecord, defaultValue, 4384);
PLUGIN_CORE_AT(ParamInfoRecord, steps, 4388);

PLUGIN_CORE_SIZE(ElementParamInfoRecord, 4396);
PLUGIN_CORE_AT(ElementParamInfoRecord, info, 0);
PLUGIN_CORE_AT(ElementParamInfoRecord, elementIndex, 4392);

PLUGIN_CORE_SIZE(ParamListRecord, 16);
PLUGIN_CORE_AT(ParamListRecord, count, 0);
PLUGIN_CORE_AT(ParamListRecord, params, 8);

PLUGIN_CORE_SIZE(ParamValueRecord, 8);
PLUGIN_CORE_AT(ParamValueRecord, index, 0);
PLUGIN_CORE_AT(ParamValueRecord, value, 4);

PLUGIN_CORE_SIZE(ParamAtPointRecord, 16);
PLUGIN_CORE_AT(ParamAtPointRecord, x, 0);
PLUGIN_CORE_AT(ParamAtPointRecord, y, 4);
PLUGIN_CORE_AT(ParamAtPointRecord, index, 8);
PLUGIN_CORE_AT(ParamAtPointRecord, found, 12);

PLUGIN_CORE_SIZE(StreamFormatRecord, 8);
PLUGIN_CORE_AT(StreamFormatRecord, sampleRate, 0);
PLUGIN_CORE_AT(StreamFormatRecord, channelConfig, 4);

PLUGIN_CORE_SIZE(ProcessingStateRecord, 8);
PLUGIN_CORE_AT(ProcessingStateRecord, active, 0);
PLUGIN_CORE_AT(ProcessingStateRecord, hold, 4);

PLUGIN_CORE_SIZE(TransportRecord, 136);
PLUGIN_CORE_AT(TransportRecord, position, 24);
PLUGIN_CORE_AT(TransportRecord, isPositionValid, 32);

PLUGIN_CORE_SIZE(ProcessRecord, 360);
PLUGIN_CORE_AT(ProcessRecord, frames, 0);
PLUGIN_CORE_AT(ProcessRecord, channels, 8);
PLUGIN_CORE_AT(ProcessRecord, transport, 16);
PLUGIN_CORE_AT(ProcessRecord, sideBusCount, 24);
PLUGIN_CORE_AT(ProcessRecord, eventCount, 28);
PLUGIN_CORE_AT(ProcessRecord, events, 32);
PLUGIN_CORE_AT(ProcessRecord, sideBuses, 160);
PLUGIN_CORE_AT(ProcessRecord, sideBusChannels, 288);
PLUGIN_CORE_AT(ProcessRecord, renderFlagA, 352);
PLUGIN_CORE_AT(ProcessRecord, renderFlagB, 356);

PLUGIN_CORE_SIZE(SidePassRecord, 24);
PLUGIN_CORE_AT(SidePassRecord, frames, 0);
PLUGIN_CORE_AT(SidePassRecord, first, 8);
PLUGIN_CORE_AT(SidePassRecord, second, 16);

PLUGIN_CORE_SIZE(TransformReadRecord, 40);
PLUGIN_CORE_AT(TransformReadRecord, request, 0);
PLUGIN_CORE_AT(TransformReadRecord, capacity, 4);
PLUGIN_CORE_AT(TransformReadRecord, recordBytes, 8);
PLUGIN_CORE_AT(TransformReadRecord, buffer, 16);
PLUGIN_CORE_AT(TransformReadRecord, position, 24);
PLUGIN_CORE_AT(TransformReadRecord, flag, 28);
PLUGIN_CORE_AT(TransformReadRecord, answered, 32);
PLUGIN_CORE_AT(TransformReadRecord, count, 36);

PLUGIN_CORE_SIZE(DetectionRecord, 80);
PLUGIN_CORE_AT(DetectionRecord, number, 0);
PLUGIN_CORE_AT(DetectionRecord, restart, 4);
PLUGIN_CORE_AT(DetectionRecord, centre, 8);
PLUGIN_CORE_AT(DetectionRecord, start, 16);
PLUGIN_CORE_AT(DetectionRecord, end, 24);
PLUGIN_CORE_AT(DetectionRecord, severity, 32);
PLUGIN_CORE_AT(DetectionRecord, pitchHz, 36);
PLUGIN_CORE_AT(DetectionRecord, detection, 40);
PLUGIN_CORE_AT(DetectionRecord, threshold, 44);
PLUGIN_CORE_AT(DetectionRecord, energyBefore, 48);
PLUGIN_CORE_AT(DetectionRecord, energyAfter, 56);
PLUGIN_CORE_AT(DetectionRecord, hop, 64);
PLUGIN_CORE_AT(DetectionRecord, regionStart, 68);
PLUGIN_CORE_AT(DetectionRecord, regionEnd, 72);
PLUGIN_CORE_AT(DetectionRecord, repairedBins, 76);

PLUGIN_CORE_SIZE(DetectionTotalsRecord, 24);
PLUGIN_CORE_AT(DetectionTotalsRecord, hops, 0);
PLUGIN_CORE_AT(DetectionTotalsRecord, bandEnergy, 8);
PLUGIN_CORE_AT(DetectionTotalsRecord, restart, 16);
PLUGIN_CORE_AT(DetectionTotalsRecord, detections, 20);

PLUGIN_CORE_SIZE(EditorRecord, 80);
PLUGIN_CORE_AT(EditorRecord, op, 0);
PLUGIN_CORE_AT(EditorRecord, parentWindow, 8);
PLUGIN_CORE_AT(EditorRecord, x, 16);
PLUGIN_CORE_AT(EditorRecord, y, 20);
PLUGIN_CORE_AT(EditorRecord, width, 24);
PLUGIN_CORE_AT(EditorRecord, height, 28);
PLUGIN_CORE_AT(EditorRecord, scale, 32);
PLUGIN_CORE_AT(EditorRecord, flagA, 36);
PLUGIN_CORE_AT(EditorRecord, flagB, 40);
PLUGIN_CORE_AT(EditorRecord, message, 44);
PLUGIN_CORE_AT(EditorRecord, messageFirst, 48);
PLUGIN_CORE_AT(EditorRecord, messageSecond, 52);
PLUGIN_CORE_AT(EditorRecord, handled, 56);
PLUGIN_CORE_AT(EditorRecord, result, 60);
PLUGIN_CORE_AT(EditorRecord, nativeWindow, 64);
PLUGIN_CORE_AT(EditorRecord, traceAllocations, 72);

PLUGIN_CORE_SIZE(EditorKeyRecord, 24);
PLUGIN_CORE_AT(EditorKeyRecord, keyCode, 12);
PLUGIN_CORE_AT(EditorKeyRecord, isPress, 16);
PLUGIN_CORE_AT(EditorKeyRecord, handled, 20);

PLUGIN_CORE_SIZE(EditorMouseRecord, 28);
PLUGIN_CORE_AT(EditorMouseRecord, x, 0);
PLUGIN_CORE_AT(EditorMouseRecord, y, 4);
PLUGIN_CORE_AT(EditorMouseRecord, buttons, 8);
PLUGIN_CORE_AT(EditorMouseRecord, kind, 12);
PLUGIN_CORE_AT(EditorMouseRecord, modifiers, 16);
PLUGIN_CORE_AT(EditorMouseRecord, useCurrentPosition, 20);
PLUGIN_CORE_AT(EditorMouseRecord, handled, 24);

PLUGIN_CORE_SIZE(StateRecord, 40);
PLUGIN_CORE_AT(StateRecord, op, 0);
PLUGIN_CORE_AT(StateRecord, failed, 4);
PLUGIN_CORE_AT(StateRecord, size, 8);
PLUGIN_CORE_AT(StateRecord, buffer, 16);
PLUGIN_CORE_AT(StateRecord, compareVersion, 24);
PLUGIN_CORE_AT(StateRecord, version, 28);
PLUGIN_CORE_AT(StateRecord, equal, 32);

PLUGIN_CORE_SIZE(TransformDataRecord, 16);
PLUGIN_CORE_AT(TransformDataRecord, failed, 0);
PLUGIN_CORE_AT(TransformDataRecord, size, 4);
PLUGIN_CORE_AT(TransformDataRecord, data, 8);

PLUGIN_CORE_SIZE(ModuleListRecord, 40);
PLUGIN_CORE_AT(ModuleListRecord, op, 0);
PLUGIN_CORE_AT(ModuleListRecord, count, 8);
PLUGIN_CORE_AT(ModuleListRecord, index, 12);
PLUGIN_CORE_AT(ModuleListRecord, value, 16);
PLUGIN_CORE_AT(ModuleListRecord, text, 24);
PLUGIN_CORE_AT(ModuleListRecord, data, 32);

PLUGIN_CORE_SIZE(ElementRecord, 328);
PLUGIN_CORE_AT(ElementRecord, op, 0);
PLUGIN_CORE_AT(ElementRecord, count, 4);
PLUGIN_CORE_AT(ElementRecord, index, 8);
PLUGIN_CORE_AT(ElementRecord, name, 12);
PLUGIN_CORE_AT(ElementRecord, element, 272);
PLUGIN_CORE_AT(ElementRecord, observer, 280);
PLUGIN_CORE_AT(ElementRecord, observerContext, 288);
PLUGIN_CORE_AT(ElementRecord, observerOnWorker, 296);
PLUGIN_CORE_AT(ElementRecord, tuningWord, 300);
PLUGIN_CORE_AT(ElementRecord, tuningFlag, 304);
PLUGIN_CORE_AT(ElementRecord, tuningFirst, 312);
PLUGIN_CORE_AT(ElementRecord, tuningSecond, 320);

PLUGIN_CORE_SIZE(HostMessageRecord, 16);
PLUGIN_CORE_AT(HostMessageRecord, message, 0);
PLUGIN_CORE_AT(HostMessageRecord, length, 4);
PLUGIN_CORE_AT(HostMessageRecord, data, 8);
PLUGIN_CORE_SIZE(PresetRecord, 6440);
PLUGIN_CORE_AT(PresetRecord, op, 0);
PLUGIN_CORE_AT(PresetRecord, failed, 4);
PLUGIN_CORE_AT(PresetRecord, isReadOnly, 5);
PLUGIN_CORE_AT(PresetRecord, mayReplace, 6);
PLUGIN_CORE_AT(PresetRecord, count, 8);
PLUGIN_CORE_AT(PresetRecord, index, 12);
PLUGIN_CORE_AT(PresetRecord, group, 16);
PLUGIN_CORE_AT(PresetRecord, name, 24);
PLUGIN_CORE_AT(PresetRecord, comment, 32);
PLUGIN_CORE_AT(PresetRecord, presetName, 40);
PLUGIN_CORE_AT(PresetRecord, presetComment, 296);
PLUGIN_CORE_AT(PresetRecord, path, 1320);
PLUGIN_CORE_AT(PresetRecord, message, 5416);

PLUGIN_CORE_SIZE(HistoryRecord, 2104);
PLUGIN_CORE_AT(HistoryRecord, op, 0);
PLUGIN_CORE_AT(HistoryRecord, failed, 4);
PLUGIN_CORE_AT(HistoryRecord, isSelected, 5);
PLUGIN_CORE_AT(HistoryRecord, slots, 6);
PLUGIN_CORE_AT(HistoryRecord, count, 8);
PLUGIN_CORE_AT(HistoryRecord, index, 12);
PLUGIN_CORE_AT(HistoryRecord, path, 16);
PLUGIN_CORE_AT(HistoryRecord, time, 24);
PLUGIN_CORE_AT(HistoryRecord, text, 56);
PLUGIN_CORE_AT(HistoryRecord, message, 1080);

PLUGIN_CORE_SIZE(RenderRegionRecord, 24);
PLUGIN_CORE_AT(RenderRegionRecord, last, 8);
PLUGIN_CORE_AT(RenderRegionRecord, lowHz, 16);
PLUGIN_CORE_AT(RenderRegionRecord, highHz, 20);

PLUGIN_CORE_SIZE(RenderRecord, 352);
PLUGIN_CORE_AT(RenderRecord, frames, 8);
PLUGIN_CORE_AT(RenderRecord, regions, 16);
PLUGIN_CORE_AT(RenderRecord, regionCount, 24);
PLUGIN_CORE_AT(RenderRecord, fadeMilliseconds, 28);
PLUGIN_CORE_AT(RenderRecord, refcon, 32);
PLUGIN_CORE_AT(RenderRecord, read, 40);
PLUGIN_CORE_AT(RenderRecord, write, 48);
PLUGIN_CORE_AT(RenderRecord, progress, 56);
PLUGIN_CORE_AT(RenderRecord, repair, 64);
PLUGIN_CORE_AT(RenderRecord, result, 72);
PLUGIN_CORE_AT(RenderRecord, failedRegion, 76);
PLUGIN_CORE_AT(RenderRecord, hops, 80);
PLUGIN_CORE_AT(RenderRecord, bandEnergy, 88);
PLUGIN_CORE_AT(RenderRecord, message, 96);

PLUGIN_CORE_SIZE(ParamEventRecord, 12);
PLUGIN_CORE_AT(ParamEventRecord, kind, 0);
PLUGIN_CORE_AT(ParamEventRecord, index, 4);
PLUGIN_CORE_AT(ParamEventRecord, value, 8);

PLUGIN_CORE_SIZE(WindowHintRecord, 12);
PLUGIN_CORE_AT(WindowHintRecord, present, 0);
PLUGIN_CORE_AT(WindowHintRecord, a, 4);
PLUGIN_CORE_AT(WindowHintRecord, b, 8);

PLUGIN_CORE_SIZE(HostInfoRecord, 24);
PLUGIN_CORE_AT(HostInfoRecord, length, 0);
PLUGIN_CORE_AT(HostInfoRecord, name, 8);
PLUGIN_CORE_AT(HostInfoRecord, version, 16);

PLUGIN_CORE_SIZE(ChangedParamsRecord, 16);
PLUGIN_CORE_AT(ChangedParamsRecord, text, 8);
PLUGIN_CORE_SIZE(AutomationEventRecord, 156);
PLUGIN_CORE_AT(AutomationEventRecord, events, 4);
PLUGIN_CORE_AT(AutomationEventRecord, handled, 152);

PLUGIN_CORE_SIZE(ReinstantiateRecord, 16);
PLUGIN_CORE_AT(ReinstantiateRecord, third, 8);

#undef PLUGIN_CORE_AT
#undef PLUGIN_CORE_SIZE
#undef PLUGIN_CORE_ASSERT

#endif

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/PluginCore.h"
#include "frameworks/qobase/util/Realtime.h"

// One function a selector, called once the call's form has been tested and its lock is held. Each
// answers a code of PluginCoreResult. `data` is the selector's record.
namespace EntryHandlers {

/// The selector's record.
template <typename Record>
Record& As(void* data)
{
    return *static_cast<Record*>(data);
}

using Handler = uint32_t (*)(PluginCore& plugin, DSP::Context context, void* data);

uint32_t DoNothing(PluginCore& plugin, DSP::Context context, void* data);
uint32_t AnswerUnsupported(PluginCore& plugin, DSP::Context context, void* data);

// Instance and parameters
uint32_t GetAllocationTrace(PluginCore& plugin, DSP::Context context, void* data);
uint32_t Initialize(PluginCore& plugin, DSP::Context context, void* data);
uint32_t Terminate(PluginCore& plugin, DSP::Context context, void* data);
uint32_t DestroyPlugin(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetAutomatableParamCount(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetAutomatableParamList(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetAutomatableParamValue(PluginCore& plugin, DSP::Context context, void* data);
uint32_t SetAutomatableParamValue(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetElementParamCount(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetElementParamList(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetElementParamValue(PluginCore& plugin, DSP::Context context, void* data);
uint32_t SetElementParamValue(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetParamAtPoint(PluginCore& plugin, DSP::Context context, void* data);
uint32_t ElementCommand(PluginCore& plugin, DSP::Context context, void* data);
uint32_t SetHostTrackValue(PluginCore& plugin, DSP::Context context, void* data);
uint32_t HostMessage(PluginCore& plugin, DSP::Context context, void* data);
/// The one message that comes without a lock; the record is that of SelectorHostMessage.
uint32_t Render(PluginCore& plugin, DSP::Context context, void* data);

// Signal path
uint32_t SetStreamFormat(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetLatency(PluginCore& plugin, DSP::Context context, void* data);
uint32_t ResetProcessing(PluginCore& plugin, DSP::Context context, void* data);
uint32_t SetProcessingState(PluginCore& plugin, DSP::Context context, void* data);
uint32_t Settle(PluginCore& plugin, DSP::Context context, void* data);
uint32_t Process(PluginCore& plugin, DSP::Context context, void* data) UTIL_NONBLOCKING;
uint32_t ProcessSidePass(PluginCore& plugin, DSP::Context context, void* data);
uint32_t TransformQuery(PluginCore& plugin, DSP::Context context, void* data);
uint32_t TransformNotify(PluginCore& plugin, DSP::Context context, void* data);
uint32_t TransformReset(PluginCore& plugin, DSP::Context context, void* data);
uint32_t TransformRead(PluginCore& plugin, DSP::Context context, void* data);
uint32_t LoadTransformData(PluginCore& plugin, DSP::Context context, void* data);

// Editor, state and module list. Without an editor each of its operations says so in its own way.
uint32_t EditorCommand(PluginCore& plugin, DSP::Context context, void* data);
uint32_t EditorKey(PluginCore& plugin, DSP::Context context, void* data);
uint32_t EditorMouse(PluginCore& plugin, DSP::Context context, void* data);
uint32_t StateCommand(PluginCore& plugin, DSP::Context context, void* data);
uint32_t ModuleListQuery(PluginCore& plugin, DSP::Context context, void* data);
uint32_t GetExtensionCount(PluginCore& plugin, DSP::Context context, void* data);

} // namespace EntryHandlers

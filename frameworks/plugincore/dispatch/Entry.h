// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/instance/PluginFactory.h"

/// Everything that the exported entry does: tests the call, takes the lock of its context, runs the
/// operation and answers a code of PluginCoreResult. Nothing is thrown across it. The entry itself
/// holds no state. [any]
uint32_t DispatchEntryCall(PluginFactory& factory,
                           uint32_t magic,
                           uint32_t selector,
                           uint32_t context,
                           PluginCore* instance,
                           void* data) noexcept;

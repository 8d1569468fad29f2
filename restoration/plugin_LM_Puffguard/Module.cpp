// SPDX-License-Identifier: ISC
// The one symbol that the module exports.
#include "frameworks/plugincore/dispatch/Entry.h"
#include "restoration/plugin_LM_Puffguard/PluginFactoryImpl.h"

#if defined(_WIN32)
#define MODULE_EXPORT __declspec(dllexport)
#else
#define MODULE_EXPORT __attribute__((visibility("default")))
#endif

extern "C" MODULE_EXPORT uint32_t PluginCoreCallback(
    uint32_t magic, uint32_t selector, uint32_t context, PluginCore* instance, void* data)
{
    return DispatchEntryCall(
        LMPuffguard::GetPluginFactory(), magic, selector, context, instance, data);
}

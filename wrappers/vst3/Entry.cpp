// SPDX-License-Identifier: ISC
// What a host looks for in the library.
#include "wrappers/vst3/Factory.h"

#define PUFFGUARD_EXPORT extern "C" __attribute__((visibility("default")))

/// The factory, with a reference for the caller; null when memory lacks.
PUFFGUARD_EXPORT void* GetPluginFactory();
/// Before and after all other calls; `library` is the handle that the host has loaded it by.
PUFFGUARD_EXPORT bool ModuleEntry(void* library);
PUFFGUARD_EXPORT bool ModuleExit();

void* GetPluginFactory()
{
    try {
        return (new Vst3::Factory())->GetInterface();
    } catch (const std::exception&) {
        return nullptr;
    }
}

// Nothing lives as long as the library: the module comes and goes with who uses it.
bool ModuleEntry(void* /*library*/)
{
    return true;
}

bool ModuleExit()
{
    return true;
}

// SPDX-License-Identifier: ISC
// A plug-in as the host calls it: one table of functions.
#include "wrappers/clap/Functions.h"

#include <memory>
#include <utility>

namespace Clap {

namespace {

bool Init(const clap_plugin_t* plugin) noexcept
{
    return Guarded(false, [&] { return PluginOf(plugin).Init(); });
}

void Destroy(const clap_plugin_t* plugin) noexcept
{
    delete &PluginOf(plugin); // the one that MakePlugin() released
}

bool Activate(const clap_plugin_t* plugin,
              double rate,
              uint32_t /*minimumFrames*/,
              uint32_t /*maximumFrames*/) noexcept
{
    return Guarded(false, [&] { return PluginOf(plugin).Activate(rate); });
}

void Deactivate(const clap_plugin_t* plugin) noexcept
{
    PluginOf(plugin).Deactivate();
}

bool StartProcessing(const clap_plugin_t* plugin) noexcept
{
    return PluginOf(plugin).IsActive();
}

void StopProcessing(const clap_plugin_t* /*plugin*/) noexcept {}

void Reset(const clap_plugin_t* plugin) noexcept
{
    PluginOf(plugin).Reset();
}

clap_process_status Process(const clap_plugin_t* plugin, const clap_process_t* process) noexcept
{
    return process != nullptr ? PluginOf(plugin).Process(*process) : CLAP_PROCESS_ERROR;
}

const void* GetExtension(const clap_plugin_t* plugin, const char* id) noexcept
{
    return PluginOf(plugin).IsReady() ? FindExtension(id) : nullptr;
}

void OnMainThread(const clap_plugin_t* plugin) noexcept
{
    PluginOf(plugin).OnMainThread();
}

} // namespace

const clap_plugin_t* MakePlugin(const clap_plugin_descriptor_t& descriptor,
                                const clap_host_t* host,
                                std::shared_ptr<const Wrapper::Module> module) noexcept
{
    const clap_plugin_t functions = {&descriptor,
                                     nullptr,
                                     Init,
                                     Destroy,
                                     Activate,
                                     Deactivate,
                                     StartProcessing,
                                     StopProcessing,
                                     Reset,
                                     Process,
                                     GetExtension,
                                     OnMainThread};
    return Guarded<const clap_plugin_t*>(nullptr, [&] {
        auto plugin = std::make_unique<Plugin>(functions, std::move(module), host);
        return &plugin.release()->GetFunctions();
    });
}

} // namespace Clap

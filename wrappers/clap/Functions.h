// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Plugin.h"

#include <clap/plugin.h>

#include <exception>

namespace Clap {

inline Plugin& PluginOf(const clap_plugin_t* plugin)
{
    return *static_cast<Plugin*>(plugin->plugin_data);
}

/// Nothing may be thrown into a host. What can be is a lack of memory.
template <typename Result, typename Function>
Result Guarded(Result onFault, Function&& function) noexcept
{
    try {
        return function();
    } catch (const std::exception&) {
        return onFault;
    }
}

/// The table of functions for one of the format's extensions; null for one that isn't offered.
const void* FindExtension(const char* id) noexcept;

/// A plug-in with its table of functions, to be freed by that table's destroy(). Null when there is
/// no memory. [any]
const clap_plugin_t* MakePlugin(const clap_plugin_descriptor_t& descriptor,
                                const clap_host_t* host,
                                std::shared_ptr<const Wrapper::Module> module) noexcept;

} // namespace Clap

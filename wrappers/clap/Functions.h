// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Plugin.h"
#include "wrappers/common/Guarded.h"

#include <clap/plugin.h>

namespace Clap {

inline Plugin& PluginOf(const clap_plugin_t* plugin)
{
    return *static_cast<Plugin*>(plugin->plugin_data);
}

using Wrapper::Guarded;

/// The table of functions for one of the format's extensions; null for one that isn't offered.
const void* FindExtension(const char* id) noexcept;

/// A plug-in with its table of functions, to be freed by that table's destroy(). Null when there is
/// no memory. [any]
const clap_plugin_t* MakePlugin(const clap_plugin_descriptor_t& descriptor,
                                const clap_host_t* host,
                                std::shared_ptr<const Wrapper::Module> module) noexcept;

} // namespace Clap

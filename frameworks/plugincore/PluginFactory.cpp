// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/PluginFactory.h"

#include "frameworks/plugincore/Plugin.h"

std::unique_ptr<PluginCore> PluginFactory::CreatePlugin(const PluginSetup& setup) const
{
    return std::make_unique<Plugin>(*this, setup);
}

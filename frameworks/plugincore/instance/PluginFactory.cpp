// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/PluginFactory.h"

#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/qobase/util/DictionaryReaderJSON.h"
#include "frameworks/qobase/util/JSONDictionaryWriter.h"

std::unique_ptr<PluginCore> PluginFactory::CreatePlugin(const PluginSetup& setup) const
{
    return std::make_unique<Plugin>(*this, setup);
}

std::unique_ptr<Util::DictionaryReader> PluginFactory::CreateReader() const
{
    return std::make_unique<Util::DictionaryReaderJSON>();
}

std::unique_ptr<Util::DictionaryWriter> PluginFactory::CreateWriter() const
{
    return std::make_unique<Util::JSONDictionaryWriter>();
}

std::unique_ptr<Context::ContextBase> PluginFactory::CreateContext() const
{
    return std::make_unique<Context::ContextBase>();
}

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/PluginFactory.h"

#include "frameworks/plugincore/instance/Editor.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/qobase/util/DictionaryReaderJSON.h"
#include "frameworks/qobase/util/JSONDictionaryWriter.h"

PluginFactory::~PluginFactory() = default;

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

std::unique_ptr<Translator>
PluginFactory::CreateTranslator(const std::optional<String>& /*language*/) const
{
    return std::make_unique<Translator>();
}

std::unique_ptr<Context::ContextBase> PluginFactory::CreateContext() const
{
    return std::make_unique<Context::ContextBase>();
}

std::unique_ptr<Editor> PluginFactory::CreateEditor(Plugin& /*plugin*/,
                                                    const EditorPlace& /*place*/) const
{
    return nullptr;
}

std::unique_ptr<Editor> PluginFactory::MakeEditor(Plugin& plugin, const EditorPlace& place) const
{
    std::call_once(uiRegistered, [this] { RegisterUI(); });
    return CreateEditor(plugin, place);
}

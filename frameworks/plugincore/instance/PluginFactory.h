// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/TransformBase.h"
#include "frameworks/plugincore/instance/Context.h"
#include "frameworks/plugincore/instance/PluginCore.h"
#include "frameworks/plugincore/product/Translator.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryManager.h"
#include "frameworks/qobase/util/DictionaryReader.h"
#include "frameworks/qobase/util/DictionaryWriter.h"

#include <memory>
#include <mutex>

class Editor;
class Plugin;

/// Builds the objects of an instance, so that a product can replace each of them. One object serves
/// the whole module. [setup]
class PluginFactory {
public:
    PluginFactory() = default;
    PluginFactory(const PluginFactory&) = delete;
    PluginFactory& operator=(const PluginFactory&) = delete;
    virtual ~PluginFactory();

    virtual const PluginDefinition& GetDefinition() const = 0;

    /// The signal path of an instance, with its elements made for this format.
    virtual std::unique_ptr<DSP::TransformBase>
    CreateTransform(DSP::ElementHost& host, float sampleRate, uint32_t channelConfig) const = 0;

    /// What the text of saved states is read and written by.
    virtual std::unique_ptr<Util::DictionaryReader> CreateReader() const;
    virtual std::unique_ptr<Util::DictionaryWriter> CreateWriter() const;

    /// Texts in the language of this code; empty: none is forced. Never null.
    virtual std::unique_ptr<Translator>
    CreateTranslator(const std::optional<String>& language) const;
    /// What sessions save beside the elements; never null.
    virtual std::unique_ptr<Context::ContextBase> CreateContext() const;

    /// The undo history of an instance that is under construction; null: it has none.
    virtual std::unique_ptr<HistoryManager> CreateHistory(Plugin& /*plugin*/) const
    {
        return nullptr;
    }

    /// Where an editor opens, in logical pixels of its parent.
    struct EditorPlace {
        void* parentWindow; ///< null: a window of its own
        uint32_t x;
        uint32_t y;
        uint32_t scale; ///< as in EditorRecord; 0: unknown
    };
    /// The editor of an instance; null: the product has none. The first call registers the
    /// product's kinds of widgets. [ui]
    std::unique_ptr<Editor> MakeEditor(Plugin& plugin, const EditorPlace& place) const;

    /// A new instance; throws when it can't be built. The caller owns it.
    virtual std::unique_ptr<PluginCore> CreatePlugin(const PluginSetup& setup) const;

protected:
    /// The product's kinds of widgets, once a module, before its first editor. [ui]
    virtual void RegisterUI() const {}
    /// See MakeEditor(). [ui]
    virtual std::unique_ptr<Editor> CreateEditor(Plugin& plugin, const EditorPlace& place) const;

private:
    mutable std::once_flag uiRegistered;
};

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/PluginFactory.h"
#include "restoration/plugin_LM_Puffguard/PluginDefinitionImpl.h"

namespace LMPuffguard {

/// Puts the product together.
class PluginFactoryImpl final : public PluginFactory {
public:
    const PluginDefinition& GetDefinition() const override { return definition; }
    std::unique_ptr<DSP::TransformBase> CreateTransform(DSP::ElementHost& host,
                                                        float sampleRate,
                                                        uint32_t channelConfig) const override;
    std::unique_ptr<HistoryManager> CreateHistory(Plugin& plugin) const override;

private:
    PluginDefinitionImpl definition;
};

/// The module's factory, made at first use. [any]
PluginFactory& GetPluginFactory();

} // namespace LMPuffguard

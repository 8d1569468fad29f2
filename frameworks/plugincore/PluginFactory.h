// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/DelaySettings.h"
#include "frameworks/plugincore/PluginCore.h"
#include "frameworks/plugincore/dsp/TransformBase.h"

#include <memory>

/// Builds the objects of an instance, so that a product can replace each of them. One object serves
/// the whole module. [setup]
class PluginFactory {
public:
    PluginFactory() = default;
    PluginFactory(const PluginFactory&) = delete;
    PluginFactory& operator=(const PluginFactory&) = delete;
    virtual ~PluginFactory() = default;

    virtual const PluginDefinition& GetDefinition() const = 0;

    /// The signal path of an instance, with its elements made for this format.
    virtual std::unique_ptr<DSP::TransformBase>
    CreateTransform(DSP::ElementHost& host, float sampleRate, uint32_t channelConfig) const = 0;

    /// What the user has set about the latency that hosts are told.
    virtual DelaySettings GetDelaySettings() const { return {}; }

    /// A new instance; throws when it can't be built. The caller owns it.
    virtual std::unique_ptr<PluginCore> CreatePlugin(const PluginSetup& setup) const;
};

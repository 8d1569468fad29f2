// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/LatencyReport.h"
#include "frameworks/plugincore/product/PluginDefinition.h"
#include "frameworks/qobase/util/ConfigFile.h"

#include <memory>

/// The user's settings as an instance finds them. The files have their own locks. [any]
class PluginSettings {
public:
    PluginSettings(const PluginDefinition& newDefinition, bool newIsOffline);

    /// The user's settings for this product, also of an offline instance, which looks at them only
    /// for what it is asked to do.
    Util::ConfigFile& GetProductFile() { return productFile; }
    /// The settings that products share; null when there are none.
    Util::ConfigFile* GetSharedFile() { return sharedFile.get(); }
    /// Tries once more to write what could not be written; every tick.
    void WriteWaiting();

    /// Nothing that a user has set when the instance is offline. A frozen delay that is out of
    /// range counts as none. [setup]
    LatencyReport::Settings ReadLatencySettings() const;
    /// Where a developer has layouts and pictures that take the place of the built-in ones; empty
    /// when there are none, and for an offline instance. [setup]
    String ReadResourceOverride() const;

private:
    const bool isOffline;
    const PluginDefinition& definition;
    Util::ConfigFile productFile;
    const std::unique_ptr<Util::ConfigFile> sharedFile;
};

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/LatencyReport.h"
#include "frameworks/plugincore/product/PluginDefinition.h"
#include "frameworks/qobase/util/ConfigFile.h"

#include <memory>

/// The user's settings as an instance finds them. The files have their own locks. [any]
class PluginSettings {
public:
    PluginSettings(const PluginDefinition& definition, bool newIsOffline);

    /// The user's settings for this product, also of an offline instance, which looks at them only
    /// for what it is asked to do.
    Util::ConfigFile& GetProductFile() { return productFile; }
    /// The settings that products share; null when there are none.
    Util::ConfigFile* GetSharedFile() { return sharedFile.get(); }

    /// Nothing that a user has set when the instance is offline. A frozen delay that is out of
    /// range counts as none. [setup]
    LatencyReport::Settings ReadLatencySettings() const;

private:
    const bool isOffline;
    Util::ConfigFile productFile;
    const std::unique_ptr<Util::ConfigFile> sharedFile;
};

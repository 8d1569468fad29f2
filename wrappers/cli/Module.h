// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <stdexcept>
#include <string>

namespace Cli {

/// The module could not be loaded, or an instance refused a call.
class ModuleError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The loaded module and its one entry. It stays loaded until the process ends, because threads of
/// the module may outlive the last instance by a moment. Calls may come from any thread.
class Module {
public:
    /// Loads the file that $PUFFGUARD_MODULE names or, without it, the first one that exists of the
    /// places where installation and build put it, counted from the executable. Throws ModuleError.
    static Module Load();

    /// One call of the entry; the answer is a PluginCoreResult.
    uint32_t Call(uint32_t selector, uint32_t context, PluginCore* instance, void* data) const;

    const std::string& GetPath() const { return path; }

    /// What the module says of itself.
    const PluginInfoRecord& GetInfo() const { return info; }

private:
    explicit Module(const std::string& file);

    std::string path;
    PluginCoreEntryFunction entry = nullptr;
    PluginInfoRecord info = {};
};

} // namespace Cli

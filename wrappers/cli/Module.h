// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Cli {

/// The module could not be loaded, or an instance refused a call.
class ModuleError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The text in a field of a record, which may fill it without a terminator.
template <size_t Size>
// NOLINTNEXTLINE(modernize-avoid-c-arrays): the records are C
std::string TextOf(const char (&field)[Size])
{
    const std::string_view all(static_cast<const char*>(field), Size);
    return std::string(all.substr(0, all.find('\0')));
}

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

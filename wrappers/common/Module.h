// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Log.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

struct PluginCore;

namespace Wrapper {

/// The module's description of the product.
struct Product {
    std::string vendor;
    std::string vendorLong;
    std::string displayName;
    std::string versionText;
    uint32_t versionNumber = 0;
};

/// The loaded module and its one entry. It is unloaded with the object, so that a host can remove
/// the plug-in from memory. Calls may come from any thread.
class Module {
public:
    using Folders = std::vector<std::filesystem::path>;

    /// Loads the file that $PUFFGUARD_MODULE names or, without it, the first one that exists:
    /// beside the wrapper's own file, in "../puffguard", in "../../puffguard". When the wrapper's
    /// file isn't where it was loaded from any more, nowhere. Null, after a line in the log, when
    /// there is none, it can't be loaded or is of another version than the wrapper. [any]
    static std::shared_ptr<const Module> Load(const LogFunction& log);

    /// The same, where the installation has `folders` of its own for the module. [any]
    static std::shared_ptr<const Module> Load(const Folders& folders, const LogFunction& log);

    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    Module(Module&&) = delete;
    Module& operator=(Module&&) = delete;

    /// One call of the entry; the answer is a PluginCoreResult.
    uint32_t
    Call(uint32_t selector, uint32_t context, PluginCore* instance, void* data) const noexcept;

    /// As it was named.
    const std::filesystem::path& GetPath() const { return path; }
    const Product& GetProduct() const { return product; }
    /// Goes with each saved state.
    uint32_t GetStateVersion() const { return stateVersion; }

private:
    using Entry = uint32_t (*)(uint32_t, uint32_t, uint32_t, PluginCore*, void*);

    explicit Module(std::filesystem::path file);
    void Describe();

    std::filesystem::path path;
    void* library = nullptr;
    Entry entry = nullptr;
    Product product;
    uint32_t stateVersion = 0;
};

} // namespace Wrapper

// SPDX-License-Identifier: ISC
#include "wrappers/common/Module.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/Text.h"

#include <dlfcn.h>
#include <link.h>

#include <array>
#include <climits>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Wrapper {

namespace {

constexpr const char* ModuleFileName = "LMPuffguard.so";
// Inside a bundle; beside the folder of a wrapper; beside the folder of bundles.
constexpr std::array<std::string_view, 3> Places = {".", "../puffguard", "../../puffguard"};

// A library's folder as it was when the library was loaded, whatever the current folder is now.
std::filesystem::path FolderOf(const char* library)
{
    std::array<char, size_t{2} * PATH_MAX> folder{};
    void* const handle = ::dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr) {
        ::dlinfo(handle, RTLD_DI_ORIGIN, folder.data());
        ::dlclose(handle);
    }
    return folder.data();
}

// The file that this code was linked into; empty when it is no longer where it was loaded from.
std::filesystem::path OwnFile()
{
    Dl_info info = {};
    void* map = nullptr;
    if (::dladdr1(reinterpret_cast<void*>(&OwnFile), &info, &map, RTLD_DL_LINKMAP) == 0) {
        return {};
    }
    const std::filesystem::path name = static_cast<const link_map*>(map)->l_name;
    std::error_code failure; // leaves an empty path
    if (name.empty()) {      // the program
        return std::filesystem::canonical("/proc/self/exe", failure);
    }
    const auto file = name.is_absolute() ? name : FolderOf(name.c_str()) / name.filename();
    return file.is_absolute() ? std::filesystem::canonical(file, failure) : "";
}

Module::Folders UsualFolders()
{
    const std::filesystem::path own = OwnFile().parent_path();
    Module::Folders folders;
    if (own.empty()) {
        return folders;
    }
    for (const std::string_view place : Places) {
        folders.push_back((own / place).lexically_normal());
    }
    return folders;
}

// "a, b and c"
std::string Enumerate(const std::vector<std::string>& names)
{
    std::string text;
    for (size_t i = 0; i < names.size(); ++i) {
        text += (i == 0 ? "" : i + 1 < names.size() ? ", " : " and ") + names[i];
    }
    return text;
}

std::filesystem::path FindModule(const Module::Folders& folders)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the environment is never changed
    const char* chosen = std::getenv("PUFFGUARD_MODULE");
    if (chosen != nullptr && *chosen != '\0') {
        return chosen;
    }
    std::vector<std::string> tried;
    if (folders.empty()) {
        throw std::runtime_error("the module isn't named by PUFFGUARD_MODULE, and where to look for"
                                 " it can't be told: the plug-in or program has moved");
    }
    for (const std::filesystem::path& folder : folders) {
        std::error_code failure;
        tried.push_back((folder / ModuleFileName).string());
        if (std::filesystem::exists(tried.back(), failure)) {
            return tried.back();
        }
    }
    throw std::runtime_error("the module is neither named by PUFFGUARD_MODULE nor found at " +
                             Enumerate(tried));
}

} // namespace

std::shared_ptr<const Module> Module::Load(const LogFunction& log)
{
    return Load(UsualFolders(), log);
}

std::shared_ptr<const Module> Module::Load(const Folders& folders, const LogFunction& log)
{
    try {
        // The constructor is private, so that no module exists that isn't usable.
        const std::shared_ptr<Module> module(new Module(FindModule(folders)));
        module->Describe();
        return module;
    } catch (const std::exception& fault) {
        log(fault.what());
        return nullptr;
    }
}

Module::Module(std::filesystem::path file)
    : path(std::move(file))
{
    // A bare name would be searched for in the system's folders.
    const std::filesystem::path exact = path.has_parent_path() ? path : "." / path;
    library = ::dlopen(exact.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): each thread has a text of its own here
        throw std::runtime_error(std::string("the module can't be loaded: ") + ::dlerror());
    }
    static_assert(std::is_same_v<Entry, PluginCoreEntryFunction>);
    entry = reinterpret_cast<Entry>(::dlsym(library, PLUGIN_CORE_ENTRY_NAME));
}

Module::~Module()
{
    ::dlclose(library);
}

uint32_t
Module::Call(uint32_t selector, uint32_t context, PluginCore* instance, void* data) const noexcept
{
    return entry(PLUGIN_CORE_MAGIC, selector, context, instance, data);
}

void Module::Describe()
{
    if (entry == nullptr) {
        throw std::runtime_error(path.string() + " has no " PLUGIN_CORE_ENTRY_NAME);
    }
    PluginInfoRecord info = {};
    PluginInfoRequest request = {};
    request.info = &info;
    if (Call(SelectorGetPluginInfo, ContextUI, nullptr, &request) != PluginCoreSuccess) {
        throw std::runtime_error(path.string() + " doesn't describe itself");
    }
    if (info.versionNumber != PUFFGUARD_MODULE_VERSION) {
        throw std::runtime_error(path.string() + " is of version " +
                                 std::to_string(info.versionNumber) + ", and " +
                                 std::to_string(PUFFGUARD_MODULE_VERSION) + " is wanted");
    }
    product.vendor = TextOf(info.vendor);
    product.vendorLong = TextOf(info.vendorLong);
    product.displayName = TextOf(info.displayName);
    product.versionText = TextOf(info.versionText);
    product.versionNumber = info.versionNumber;
    stateVersion = info.stateVersion;
}

} // namespace Wrapper

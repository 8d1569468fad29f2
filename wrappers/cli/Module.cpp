// SPDX-License-Identifier: ISC
#include "wrappers/cli/Module.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace Cli {

namespace {

constexpr const char* moduleFileName = "LMPuffguard.so";

std::vector<std::filesystem::path> UsualPlaces()
{
    std::error_code failure;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", failure);
    const auto prefix = executable.parent_path().parent_path();
    std::vector<std::filesystem::path> places = {prefix / PUFFGUARD_LIBRARY_FOLDER};
    if (places.front() != prefix / "lib") {
        places.push_back(prefix / "lib");
    }
    for (auto& place : places) {
        place = place / "puffguard" / moduleFileName;
    }
    return places;
}

std::string FindModule()
{
    const char* chosen = std::getenv("PUFFGUARD_MODULE"); // NOLINT(concurrency-mt-unsafe)
    if (chosen != nullptr && *chosen != '\0') {
        return chosen;
    }
    std::string tried;
    for (const auto& place : UsualPlaces()) {
        std::error_code failure;
        if (std::filesystem::exists(place, failure)) {
            return place.string();
        }
        tried += (tried.empty() ? "" : " and ") + place.string();
    }
    throw ModuleError("the module is neither named by PUFFGUARD_MODULE nor found at " + tried);
}

} // namespace

Module Module::Load()
{
    return Module(FindModule());
}

Module::Module(const std::string& file)
    : path(file)
{
    // A bare name would be searched for in the system's folders.
    const std::string exact = file.find('/') == std::string::npos ? "./" + file : file;
    void* library = ::dlopen(exact.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw ModuleError(std::string("the module can't be loaded: ") + ::dlerror());
    }
    entry = reinterpret_cast<PluginCoreEntryFunction>(::dlsym(library, PLUGIN_CORE_ENTRY_NAME));
    if (entry == nullptr) {
        throw ModuleError(file + " has no " PLUGIN_CORE_ENTRY_NAME);
    }
    PluginInfoRequest request = {};
    request.identity.format = FormatStandalone;
    request.info = &info;
    if (Call(SelectorGetPluginInfo, 1, nullptr, &request) != PluginCoreSuccess) {
        throw ModuleError(file + " doesn't describe itself");
    }
}

uint32_t Module::Call(uint32_t selector, uint32_t context, PluginCore* instance, void* data) const
{
    return entry(PLUGIN_CORE_MAGIC, selector, context, instance, data);
}

} // namespace Cli

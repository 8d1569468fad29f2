// SPDX-License-Identifier: ISC
#include "wrappers/cli/effect/Module.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace Cli {

namespace {

Wrapper::Module::Folders UsualFolders()
{
    std::error_code failure;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (!executable.is_absolute()) {
        return {}; // unknown places aren't those below the current folder
    }
    const auto prefix = executable.parent_path().parent_path();
    Wrapper::Module::Folders folders = {prefix / PUFFGUARD_LIBRARY_FOLDER / "puffguard"};
    if (folders.front() != prefix / "lib" / "puffguard") {
        folders.push_back(prefix / "lib" / "puffguard");
    }
    return folders;
}

} // namespace

std::shared_ptr<const Wrapper::Module> LoadModule()
{
    std::string complaint;
    auto module =
        Wrapper::Module::Load(UsualFolders(), [&](const std::string& text) { complaint = text; });
    if (module == nullptr) {
        throw ModuleError(complaint);
    }
    return module;
}

} // namespace Cli

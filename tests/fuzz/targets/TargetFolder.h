// SPDX-License-Identifier: ISC
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <cstdint>
#include <filesystem>
#include <string>

namespace Fuzz {

/// The user's folders, in one of this process's own. run-target.sh puts it into memory, because a
/// target makes thousands of files.
class TargetFolder {
public:
    const std::filesystem::path& GetPath() const { return folders.Home().Path(); }

    /// Writes a file, with its folder, and tells its path.
    std::string Put(const char* name, const uint8_t* data, size_t size) const
    {
        const std::filesystem::path file = GetPath() / name;
        Support::WriteText(file, {reinterpret_cast<const char*>(data), size});
        return file;
    }

    /// Removes all that lies in a folder.
    void Clear(const char* folder) const
    {
        std::error_code ignored;
        std::filesystem::remove_all(GetPath() / folder, ignored);
    }

private:
    Support::UserFolders folders;
};

} // namespace Fuzz

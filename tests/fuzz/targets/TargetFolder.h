// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace Fuzz {

/// A folder of this process's own that all of the user's folders lead to; gone with the object. In
/// memory where there is such a place, because a target makes thousands of files.
class TargetFolder {
public:
    TargetFolder()
    {
        const std::filesystem::path memory = "/dev/shm";
        const bool hasMemory = std::filesystem::is_directory(memory);
        std::string pattern = hasMemory ? memory : std::filesystem::temp_directory_path();
        pattern += "/fuzz-XXXXXX";
        path = ::mkdtemp(pattern.data());
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
            ::setenv(name, path.c_str(), 1);
        }
    }
    TargetFolder(const TargetFolder&) = delete;
    TargetFolder& operator=(const TargetFolder&) = delete;
    ~TargetFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    const std::filesystem::path& GetPath() const { return path; }

    /// Writes a file, with its folder, and tells its path.
    std::string Put(const char* name, const uint8_t* data, size_t size) const
    {
        const std::filesystem::path file = path / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        return file;
    }

    /// Removes all that lies in a folder.
    void Clear(const char* folder) const
    {
        std::error_code ignored;
        std::filesystem::remove_all(path / folder, ignored);
    }

private:
    std::filesystem::path path;
};

} // namespace Fuzz

// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace Support {

/// The bytes of a file; none where it can't be read.
inline std::string ReadText(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Makes the file of these bytes, and the folders that lead to it.
inline void WriteText(const std::filesystem::path& path, std::string_view text)
{
    std::error_code ignored; // a file in the way shows in what a test then finds
    std::filesystem::create_directories(path.parent_path(), ignored);
    std::ofstream(path, std::ios::binary) << text;
}

/// A fresh folder that goes with the object, whatever is in it by then.
class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "puffguard-test-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        path = pattern;
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    const std::filesystem::path& Path() const { return path; }
    std::string operator/(const std::string& name) const { return (path / name).string(); }

private:
    std::filesystem::path path;
};

/// Moves all folders of the user into a temporary one for as long as the object lives. Make it
/// before anything that asks for them, while no other thread looks at the environment.
class UserFolders {
public:
    UserFolders()
    {
        Move("HOME", "");
        Move("XDG_CONFIG_HOME", "config");
        Move("XDG_DATA_HOME", "data");
    }
    UserFolders(const UserFolders&) = delete;
    UserFolders& operator=(const UserFolders&) = delete;
    ~UserFolders()
    {
        for (std::size_t i = 0; i < count; ++i) {
            if (former[i].second) {
                setenv(former[i].first, former[i].second->c_str(), 1);
            } else {
                unsetenv(former[i].first);
            }
        }
    }

    /// Stands for the home folder; "config" and "data" below it for the other two.
    const TemporaryFolder& Home() const { return home; }

private:
    void Move(const char* name, const char* folder)
    {
        const char* value = getenv(name);
        former[count++] = {name,
                           value != nullptr ? std::optional<std::string>(value) : std::nullopt};
        setenv(name, (home.Path() / folder).c_str(), 1);
    }

    TemporaryFolder home;
    std::array<std::pair<const char*, std::optional<std::string>>, 3> former;
    std::size_t count = 0;
};

} // namespace Support

// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Contract {

inline uint32_t CountEntries(const char* folder)
{
    const std::filesystem::directory_iterator all(folder);
    return static_cast<uint32_t>(std::distance(begin(all), end(all)));
}

/// Mapped pieces of files whose path holds this.
inline uint32_t CountMappings(const std::string& part)
{
    std::ifstream maps("/proc/self/maps");
    uint32_t count = 0;
    for (std::string line; std::getline(maps, line);) {
        count += line.find(part) != std::string::npos ? 1 : 0;
    }
    return count;
}

/// What the process holds of the system.
struct Holdings {
    bool operator==(const Holdings&) const = default;

    uint32_t threads = CountEntries("/proc/self/task");
    uint32_t descriptors = CountEntries("/proc/self/fd");
    uint32_t mappings = CountMappings(".so");
};

inline std::ostream& operator<<(std::ostream& stream, const Holdings& all)
{
    return stream << all.threads << " threads, " << all.descriptors << " files, " << all.mappings
                  << " mappings";
}

} // namespace Contract

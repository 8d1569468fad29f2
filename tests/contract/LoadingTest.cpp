// SPDX-License-Identifier: ISC
// Hosts load each binary, look at what is in it and unload it, again and again: nothing of it stays
// in the process. A program of its own, since a binary that is in use elsewhere isn't unloaded.
#include "tests/contract/support/Formats.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

using namespace Contract;

class Loading : public testing::TestWithParam<Format> {};

uint32_t CountEntries(const char* folder)
{
    const std::filesystem::directory_iterator all(folder);
    return static_cast<uint32_t>(std::distance(begin(all), end(all)));
}

/// Mapped pieces of files whose path holds this.
uint32_t CountMappings(const std::string& part)
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
    uint32_t threads = CountEntries("/proc/self/task");
    uint32_t descriptors = CountEntries("/proc/self/fd");
    uint32_t mappings = CountMappings(".so");
};

void LoadAndUnload(const FormatBinary& binary)
{
    // What the binary lacks shows at once, and what it brings stays its own.
    void* const library = dlopen(binary.path.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_TRUE(binary.scan(library));
    ASSERT_EQ(dlclose(library), 0);
    // A format's module lies beside its binary.
    const auto folder = std::filesystem::path(binary.path).parent_path().string() + "/";
    EXPECT_EQ(CountMappings(folder), 0U) << "something of it is still there";
}

} // namespace

TEST_P(Loading, LeavesNothingBehindHoweverOften)
{
    const FormatBinary binary = GetParam().getBinary();
    LoadAndUnload(binary); // the system's libraries stay
    const Holdings before;
    for (int round = 0; round < 50 && !HasFailure(); ++round) {
        LoadAndUnload(binary);
    }
    const Holdings after;
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_EQ(after.descriptors, before.descriptors);
    EXPECT_EQ(after.mappings, before.mappings);
}

INSTANTIATE_TEST_SUITE_P(Formats,
                         Loading,
                         testing::ValuesIn(GetFormats()),
                         NameOf<testing::TestParamInfo<Format>>);

// SPDX-License-Identifier: ISC
// Hosts load each binary, look at what is in it and unload it, again and again: nothing of it stays
// in the process. A program of its own, since a binary that is in use elsewhere isn't unloaded.
#include "tests/contract/support/Formats.h"
#include "tests/contract/support/Holdings.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <map>

namespace {

using namespace Contract;

class Loading : public testing::TestWithParam<Format> {};

std::string ContentOf(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// By name, what lies in the folder Presets beside a binary.
std::map<std::string, std::string> PresetsBeside(const std::string& binary)
{
    std::map<std::string, std::string> presets;
    const auto folder = std::filesystem::path(binary).parent_path() / "Presets";
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        presets[entry.path().filename()] = ContentOf(entry);
    }
    return presets;
}

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
    EXPECT_EQ(Holdings(), before);
}

// Each bundle has a module of its own, which looks for them there.
TEST_P(Loading, FindsTheFactoryPresetsBesideItsModule)
{
    const auto presets = PresetsBeside(GetEntryBinary().path);
    EXPECT_GE(presets.size(), 6U);
    EXPECT_EQ(PresetsBeside(GetParam().getBinary().path), presets);
}

INSTANTIATE_TEST_SUITE_P(Formats,
                         Loading,
                         testing::ValuesIn(GetFormats()),
                         NameOf<testing::TestParamInfo<Format>>);

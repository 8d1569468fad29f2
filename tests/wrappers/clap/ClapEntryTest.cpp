// SPDX-License-Identifier: ISC
// What a host finds before there is an instance, and when there can be none.
#include "tests/wrappers/clap/support/ClapTest.h"

#include <set>

using ClapEntryTest = ClapTest;

namespace {

/// Ends the use of the library for as long as the object lives, so that it looks for its module
/// anew.
class Unused {
public:
    explicit Unused(const char* module)
    {
        ClapHost::Entry()->deinit();
        setenv("PUFFGUARD_MODULE", module, 1);
    }
    ~Unused()
    {
        unsetenv("PUFFGUARD_MODULE");
        ClapHost::BeginUse();
    }
    Unused(const Unused&) = delete;
    Unused& operator=(const Unused&) = delete;
};

} // namespace

TEST_F(ClapEntryTest, AScanFindsOneEffectThatSaysWhatItIs)
{
    const clap_plugin_factory_t* factory = ClapHost::Factory();
    ASSERT_NE(factory, nullptr);
    ASSERT_EQ(factory->get_plugin_count(factory), 1U);
    EXPECT_EQ(factory->get_plugin_descriptor(factory, 1), nullptr);
    const clap_plugin_descriptor_t* descriptor = factory->get_plugin_descriptor(factory, 0);
    ASSERT_NE(descriptor, nullptr);
    EXPECT_TRUE(clap_version_is_compatible(descriptor->clap_version));
    EXPECT_STREQ(descriptor->id, ClapHost::pluginId);
    for (const char* word :
         {descriptor->name, descriptor->vendor, descriptor->version, descriptor->description}) {
        ASSERT_NE(word, nullptr);
        EXPECT_STRNE(word, "");
    }
    std::multiset<std::string> features;
    for (const char** feature = descriptor->features; *feature != nullptr; ++feature) {
        features.insert(*feature);
    }
    const std::multiset<std::string> expected = {
        "audio-effect", "mono", "restoration", "stereo", "surround"};
    EXPECT_EQ(features, expected);
}

TEST_F(ClapEntryTest, WhatIsUnknownIsNotMade)
{
    EXPECT_EQ(ClapHost::Entry()->get_factory("clap.other-factory"), nullptr);
    EXPECT_EQ(ClapHost::Entry()->get_factory(nullptr), nullptr);
    const clap_plugin_factory_t* factory = ClapHost::Factory();
    const std::string longer = std::string(ClapHost::pluginId) + ".";
    for (const char* id : {"", "example.puffguard", longer.c_str()}) {
        EXPECT_EQ(factory->create_plugin(factory, host.Get(), id), nullptr) << id;
    }
    EXPECT_EQ(factory->create_plugin(factory, nullptr, ClapHost::pluginId), nullptr);
    clap_host_t old = *host.Get();
    old.clap_version = {0, 26, 0};
    EXPECT_EQ(factory->create_plugin(factory, &old, ClapHost::pluginId), nullptr);
}

TEST_F(ClapEntryTest, TheLibraryIsInUseUntilItsLastUserEnds)
{
    ASSERT_TRUE(ClapHost::BeginUse());
    ClapHost::Entry()->deinit();
    EXPECT_NE(ClapHost::Factory(), nullptr);
    {
        const Unused unused("");
        EXPECT_EQ(ClapHost::Factory(), nullptr);
        ClapHost::Entry()->deinit(); // one too many
        EXPECT_EQ(ClapHost::Factory(), nullptr);
    }
    EXPECT_NE(ClapHost::Factory(), nullptr);
}

TEST_F(ClapEntryTest, WithoutAModuleOfItsVersionThereIsNoPluginAndALineSaysWhy)
{
    const struct {
        const char* module;
        const char* reason;
    } cases[] = {{"/nowhere/module.so", "/nowhere/module.so"}, {OTHER_MODULE, "is of version"}};
    for (const auto& [module, reason] : cases) {
        const Unused unused(module);
        testing::internal::CaptureStderr();
        EXPECT_FALSE(ClapHost::BeginUse());
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_TRUE(said.starts_with("puffguard.clap: ")) << said;
        EXPECT_NE(said.find(reason), std::string::npos) << said;
        EXPECT_EQ(ClapHost::Factory(), nullptr);
    }
}

TEST_F(ClapEntryTest, WithoutAnInstanceInitFailsAndTheHostsLogSaysWhy)
{
    const Unused unused(CLOSED_MODULE);
    ASSERT_TRUE(ClapHost::BeginUse());
    {
        const ClapHost::Plugin plugin(host);
        EXPECT_FALSE(plugin);
        ASSERT_NE(plugin.Get(), nullptr);
        EXPECT_EQ(plugin.Get()->get_extension(plugin.Get(), CLAP_EXT_STATE), nullptr);
    }
    ASSERT_EQ(host.logged.size(), 1U);
    EXPECT_TRUE(host.logged[0].starts_with("puffguard.clap: ")) << host.logged[0];

    host.offersExtensions = false;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(ClapHost::Plugin(host));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), host.logged[0] + "\n");
    ClapHost::Entry()->deinit();
}

TEST_F(ClapEntryTest, NothingIsOfferedBeforeInit)
{
    const clap_plugin_factory_t* factory = ClapHost::Factory();
    const clap_plugin_t* plugin = factory->create_plugin(factory, host.Get(), ClapHost::pluginId);
    ASSERT_NE(plugin, nullptr);
    EXPECT_EQ(plugin->get_extension(plugin, CLAP_EXT_PARAMS), nullptr);
    EXPECT_FALSE(plugin->activate(plugin, 48000, 1, 64));
    EXPECT_FALSE(plugin->start_processing(plugin));
    const clap_process_t process{};
    EXPECT_EQ(plugin->process(plugin, &process), CLAP_PROCESS_ERROR);
    plugin->reset(plugin);
    plugin->on_main_thread(plugin);
    plugin->deactivate(plugin);
    plugin->destroy(plugin);
}

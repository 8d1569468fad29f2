// SPDX-License-Identifier: ISC
// What a host finds before there is an instance, and when there can be none.
#include "tests/wrappers/clap/support/ClapTest.h"

#include <dlfcn.h>

#include <set>

using ClapEntryTest = ClapTest;
using ClapHost::Use;

namespace {

/// A copy of the built file and, in another folder, what a plug-in that looks around in the current
/// folder would find there.
class ClapPlaceTest : public ClapTest {
protected:
    ClapPlaceTest()
    {
        std::filesystem::create_directory(place);
        std::filesystem::create_directory(decoy);
        std::filesystem::copy(PUFFGUARD_CLAP, place / "puffguard.clap");
        std::filesystem::copy(PUFFGUARD_CLAP, decoy / "puffguard.clap");
        std::filesystem::copy(USER_MODULE, decoy / "LMPuffguard.so");
    }

    ~ClapPlaceTest() override { std::filesystem::current_path(former); }

    /// Loads the copy by a name that counts from its folder.
    std::unique_ptr<void, int (*)(void*)> LoadCopy() const
    {
        std::filesystem::current_path(place);
        return {dlopen("./puffguard.clap", RTLD_NOW | RTLD_LOCAL), dlclose};
    }
    /// Whether it finds a module while the decoy's folder is the current one.
    bool Begins(void* library) const
    {
        const auto* entry = static_cast<const clap_plugin_entry_t*>(dlsym(library, "clap_entry"));
        std::filesystem::current_path(decoy);
        const bool isDone = entry->init("./puffguard.clap");
        if (isDone) {
            entry->deinit();
        }
        return isDone;
    }

    const std::filesystem::path former = std::filesystem::current_path();
    const Support::TemporaryFolder folder;
    const std::filesystem::path place = folder.Path() / "place";
    const std::filesystem::path decoy = folder.Path() / "decoy";
};

} // namespace

TEST_F(ClapEntryTest, AScanFindsOneEffectThatSaysWhatItIs)
{
    const Use use;
    const clap_plugin_factory_t* factory = use.GetFactory();
    ASSERT_NE(factory, nullptr);
    ASSERT_EQ(factory->get_plugin_count(factory), 1U);
    EXPECT_EQ(factory->get_plugin_descriptor(factory, 1), nullptr);
    const clap_plugin_descriptor_t* descriptor = factory->get_plugin_descriptor(factory, 0);
    ASSERT_NE(descriptor, nullptr);
    EXPECT_TRUE(clap_version_is_compatible(descriptor->clap_version));
    EXPECT_STREQ(descriptor->id, ClapHost::PluginId);
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
    const Use use;
    EXPECT_EQ(use.GetEntry()->get_factory("clap.other-factory"), nullptr);
    EXPECT_EQ(use.GetEntry()->get_factory(nullptr), nullptr);
    const clap_plugin_factory_t* factory = use.GetFactory();
    const std::string longer = std::string(ClapHost::PluginId) + ".";
    for (const char* id : {"", "example.puffguard", longer.c_str()}) {
        EXPECT_EQ(factory->create_plugin(factory, host->Get(), id), nullptr) << id;
    }
    EXPECT_EQ(factory->create_plugin(factory, nullptr, ClapHost::PluginId), nullptr);
    clap_host_t old = *host->Get();
    old.clap_version = {0, 26, 0};
    EXPECT_EQ(factory->create_plugin(factory, &old, ClapHost::PluginId), nullptr);
}

TEST_F(ClapEntryTest, TheLibraryIsInUseUntilItsLastUserEnds)
{
    const Use first; // for as long as the file is there
    {
        const Use second;
    }
    EXPECT_NE(first.GetFactory(), nullptr);
    first.GetEntry()->deinit();
    EXPECT_EQ(first.GetFactory(), nullptr);
    first.GetEntry()->deinit(); // one too many
    const Use again;
    EXPECT_NE(again.GetFactory(), nullptr);
    ASSERT_TRUE(first.GetEntry()->init(PUFFGUARD_CLAP)); // which its end takes back
}

TEST_F(ClapPlaceTest, APluginThatWasNamedFromItsFolderLooksForItsModuleThere)
{
    const auto library = LoadCopy();
    ASSERT_NE(library, nullptr);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Begins(library.get()));
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find(place / "LMPuffguard.so"), std::string::npos) << said;
    std::filesystem::copy(USER_MODULE, place / "LMPuffguard.so");
    EXPECT_TRUE(Begins(library.get()));
}

TEST_F(ClapPlaceTest, APluginThatIsNoLongerWhereItWasLooksNowhere)
{
    const auto library = LoadCopy();
    ASSERT_NE(library, nullptr);
    std::filesystem::remove(place / "puffguard.clap");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Begins(library.get()));
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("has moved"), std::string::npos) << said;
}

TEST_F(ClapEntryTest, WithoutAnInstanceInitFailsAndTheHostsLogSaysWhy)
{
    setenv("FAKE_REFUSES", std::to_string(SelectorCreatePlugin).c_str(), 1);
    const ModuleChoice fake(FAKE_MODULE);
    {
        const ClapHost::Plugin plugin(host);
        EXPECT_FALSE(plugin);
        ASSERT_NE(plugin.Get(), nullptr);
        EXPECT_EQ(plugin.Get()->get_extension(plugin.Get(), CLAP_EXT_STATE), nullptr);
    }
    ASSERT_EQ(host->logged.size(), 1U);
    EXPECT_TRUE(host->logged[0].starts_with("puffguard.clap: ")) << host->logged[0];

    host->offersExtensions = false;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(ClapHost::Plugin(host));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), host->logged[0] + "\n");
    unsetenv("FAKE_REFUSES");
}

TEST_F(ClapEntryTest, WhatIsMissingInACallIsRefused)
{
    const ClapHost::Plugin plugin(host);
    const clap_plugin_t* self = plugin.Get();
    EXPECT_EQ(self->get_extension(self, nullptr), nullptr);
    EXPECT_EQ(self->process(self, nullptr), CLAP_PROCESS_ERROR);
    const auto* params = plugin.Find<clap_plugin_params_t>(CLAP_EXT_PARAMS);
    const clap_id id = plugin.Describe(0).id;
    double value = 0;
    EXPECT_FALSE(params->get_info(self, 0, nullptr));
    EXPECT_FALSE(params->get_value(self, id, nullptr));
    EXPECT_FALSE(params->value_to_text(self, id, 1.0, nullptr, 16));
    EXPECT_FALSE(params->text_to_value(self, id, nullptr, &value));
    EXPECT_FALSE(params->text_to_value(self, id, "1", nullptr));
    params->flush(self, nullptr, nullptr);
    const auto* state = plugin.Find<clap_plugin_state_t>(CLAP_EXT_STATE);
    EXPECT_FALSE(state->save(self, nullptr));
    EXPECT_FALSE(state->load(self, nullptr));
    const auto* ports = plugin.Find<clap_plugin_audio_ports_t>(CLAP_EXT_AUDIO_PORTS);
    EXPECT_FALSE(ports->get(self, 0, true, nullptr));
    using namespace Clap::Abi;
    const auto* configs = plugin.Find<PluginAudioPortsConfig>(ExtAudioPortsConfig);
    EXPECT_FALSE(configs->get(self, 0, nullptr));
    const auto* surround = plugin.Find<PluginSurround>(ExtSurround);
    EXPECT_EQ(surround->getChannelMap(self, true, 0, nullptr, 8), 0U);
}

TEST_F(ClapEntryTest, NothingIsOfferedBeforeInit)
{
    const Use use;
    const clap_plugin_factory_t* factory = use.GetFactory();
    const clap_plugin_t* plugin = factory->create_plugin(factory, host->Get(), ClapHost::PluginId);
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

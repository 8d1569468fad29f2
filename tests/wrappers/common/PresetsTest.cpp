// SPDX-License-Identifier: ISC
#include "wrappers/common/Presets.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "tests/wrappers/common/support/ModuleTest.h"

using Wrapper::PresetGroup;
using Wrapper::Presets;

namespace {

struct PresetsTest : ModuleTest {
    const std::unique_ptr<Wrapper::Instance> instance = Create(FAKE_MODULE);
};

} // namespace

TEST_F(PresetsTest, FaultsStandWithThePresetOrInTheLog)
{
    Presets presets(*instance);
    const auto list = presets.List();
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), 3U);
    EXPECT_EQ(list->at(0).comment, std::string(1023, 'c') + "..."); // fills its field: it is cut
    EXPECT_EQ(list->at(2).comment, "ccc");
    EXPECT_EQ(list->at(1).problem, "it is damaged");
    EXPECT_EQ(list->at(1).group, PresetGroup::Factory);
    EXPECT_EQ(list->at(2).group, PresetGroup::User);

    for (const auto& [name, problem] : {std::pair("fine", ""),
                                        std::pair("broken", "it is damaged"),
                                        std::pair("mute", "the module doesn't say why not")}) {
        logged.clear();
        EXPECT_EQ(presets.Apply(name)->problem, problem);
        EXPECT_EQ(presets.Save(name, "", Presets::Replace::Allow)->problem, problem);
        EXPECT_TRUE(logged.empty());
        EXPECT_EQ(instance->ApplyPreset(name), *problem == '\0');
        EXPECT_EQ(logged.empty(), *problem == '\0');
    }
}

TEST_F(PresetsTest, AModuleWithoutPresetsIsToldFromAPresetWithAFault)
{
    Presets presets(*instance);
    Refuse(SelectorHostMessage);
    EXPECT_FALSE(presets.List());
    EXPECT_FALSE(presets.Apply("fine"));
    EXPECT_FALSE(presets.Save("fine", "", Presets::Replace::Refuse));
    EXPECT_EQ(logged,
              (std::vector<std::string>{"the module refuses to list presets (answer 6)",
                                        "the module refuses to apply a preset (answer 6)",
                                        "the module refuses to save a preset (answer 6)"}));
    EXPECT_TRUE(instance->ListPresets().empty());
    EXPECT_FALSE(instance->ApplyPreset("fine"));
}

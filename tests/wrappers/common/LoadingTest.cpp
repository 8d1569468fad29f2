// SPDX-License-Identifier: ISC
#include "tests/wrappers/common/support/ModuleTest.h"

using LoadingTest = ModuleTest;

TEST_F(LoadingTest, WhatIsNoModuleOfThisVersionIsRefusedAndTheLogSaysWhy)
{
    const Support::TemporaryFolder folder;
    std::ofstream(folder / "text.so") << "not a library";
    const struct {
        std::string file;
        std::vector<std::string> expected; // parts of the line
    } cases[] = {
        {folder / "missing.so", {"missing.so", "can't be loaded"}},
        {folder / "text.so", {"text.so", "can't be loaded"}},
        {FAKE_OTHER_MODULE, {"is of version 5990", "6000 is wanted"}},
        {NO_MODULE, {"has no PluginCoreCallback"}},
        // Without a choice, all places are told that were looked at.
        {"", {"LMPuffguard.so", "/puffguard/LMPuffguard.so", "nor found at"}},
    };
    for (const auto& [file, expected] : cases) {
        logged.clear();
        EXPECT_EQ(Load(file), nullptr) << file;
        ASSERT_EQ(logged.size(), 1U) << file;
        for (const std::string& part : expected) {
            EXPECT_NE(logged[0].find(part), std::string::npos) << logged[0];
        }
    }
}

TEST_F(LoadingTest, TheModuleDescribesTheProduct)
{
    const auto module = Load(PUFFGUARD_MODULE);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->GetProduct().displayName, "LM 6 Puff-guard");
    EXPECT_EQ(module->GetProduct().vendor, "Norvane");
    EXPECT_EQ(module->GetProduct().versionText, "6.00");
}

TEST_F(LoadingTest, ChannelsThatNoLayoutHasMakeNoInstance)
{
    for (const uint32_t channels : {0U, 25U, 4000000000U}) {
        EXPECT_EQ(Create(PUFFGUARD_MODULE, channels), nullptr);
    }
    EXPECT_EQ(logged.size(), 3U);
}

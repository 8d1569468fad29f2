// SPDX-License-Identifier: ISC
// What an instance says of itself and finds out about its host.
#include "frameworks/plugincore/instance/HostIdentification.h"
#include "frameworks/plugincore/instance/PluginCore.h"
#include "frameworks/plugincore/product/PluginInfo.h"
#include "restoration/plugin_LM_Puffguard/PluginFactoryImpl.h"

#include <gtest/gtest.h>

#include <cstring>

TEST(HostIdentification, TakesTheFirstMatchInTheTablesOrder)
{
    const auto number = [](const char* file) { return IdentifyHost(file).number; };
    EXPECT_EQ(number("/usr/bin/Cubase12"), 5U);
    EXPECT_EQ(number("ProTools"), 2U);
    EXPECT_EQ(number("wave editor.exe"), 9U); // before Wavelab
    EXPECT_EQ(number("sam editor"), 25U);     // no "sample"
    EXPECT_EQ(number("Sample Editor"), 8U);
    EXPECT_EQ(number("WaveLab 11"), 11U);
    EXPECT_EQ(number("C:\\Apps\\REAPER.exe"), 24U);
    EXPECT_EQ(number("film"), 35U);
    EXPECT_EQ(number("auvaltool"), 30U);
    EXPECT_EQ(number("xctest"), 34U);
    EXPECT_EQ(number("all unit tests"), 34U);
    EXPECT_EQ(number("audpack"), 0U);            // "dp" anywhere
    EXPECT_EQ(number("/opt/reaper/plain"), 36U); // folders don't count
    EXPECT_STREQ(IdentifyHost("").name, "Unknown");
}

TEST(PluginCore, ReadsTheLanguageAndTheFormat)
{
    const auto setup = [](const char* options, int32_t format) {
        PluginSetup made;
        std::strncpy(made.identity.options, options, sizeof made.identity.options - 1);
        made.identity.format = format;
        made.sampleRate = 48000;
        return made;
    };
    const auto& factory = LMPuffguard::GetPluginFactory();
    const auto german = factory.CreatePlugin(setup("x|Lang:de|Lang:fr", 11));
    EXPECT_EQ(german->GetForcedLanguage(), String("de"));
    EXPECT_EQ(german->GetFormatName(), String("VST3"));
    const auto klingon = factory.CreatePlugin(setup("Lang:tlh|Lang:fr", 12));
    EXPECT_EQ(klingon->GetForcedLanguage(), std::nullopt); // the first such token decides
    EXPECT_EQ(klingon->GetFormatName(), String("?"));
    EXPECT_EQ(factory.CreatePlugin(setup("", -1))->GetFormatName(), String("?"));
}

TEST(CopyText, CutsBetweenCharactersAndTerminates)
{
    char field[6];
    CopyText(field, String("abcdefgh"));
    EXPECT_STREQ(field, "abcde");
    CopyText(field, String("abcd\xC3\xA9")); // the accent would need byte 6
    EXPECT_STREQ(field, "abcd");
    CopyText(field, String());
    EXPECT_STREQ(field, "");
}

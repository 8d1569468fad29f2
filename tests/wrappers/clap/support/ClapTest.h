// SPDX-License-Identifier: ISC
#pragma once

#include "tests/support/ModuleHost.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/clap/support/ClapHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>

/// Tests find no settings of the user, and see to it that the plug-in breaks no rule of threads.
class ClapTest : public testing::Test {
protected:
    static constexpr uint32_t rate = 48000;

    void SetUp() override { ASSERT_TRUE(ClapHost::BeginUse()); }

    void TearDown() override
    {
        EXPECT_EQ(host.GetFaults(), std::vector<std::string>{});
        ClapHost::Entry()->deinit();
    }

    static TestHost::Audio Speech(uint32_t channels)
    {
        return TestHost::MakeSpeechLike(channels, rate, static_cast<float>(rate));
    }

    /// What the module makes of it at `strength`, 0 to 10.
    static TestHost::Audio Expected(TestHost::Audio audio, float strength = 5.0F)
    {
        TestHost::Instance direct(static_cast<float>(rate), static_cast<uint32_t>(audio.size()));
        direct.Set(TestHost::Strength, strength / 10);
        direct.Run(audio, 512);
        return audio;
    }

    /// Runs `frames` in place from `begin` on.
    static clap_process_status Run(ClapHost::Plugin& plugin,
                                   TestHost::Audio& audio,
                                   uint32_t begin,
                                   uint32_t frames,
                                   const ClapHost::InputEvents* in = nullptr)
    {
        std::array<float*, 8> channels{};
        for (size_t c = 0; c < audio.size(); ++c) {
            channels[c] = audio[c].data() + begin;
        }
        return plugin.Process(
            channels.data(), channels.data(), static_cast<uint32_t>(audio.size()), frames, in);
    }

    /// Runs everything in place, in blocks of `block` frames.
    static void Run(ClapHost::Plugin& plugin, TestHost::Audio& audio, uint32_t block)
    {
        const auto frames = static_cast<uint32_t>(audio[0].size());
        for (uint32_t done = 0; done < frames; done += block) {
            ASSERT_EQ(Run(plugin, audio, done, std::min(block, frames - done)), CLAP_PROCESS_TAIL);
        }
    }

    /// Of a parameter by the begin of its name.
    static clap_param_info_t Find(const ClapHost::Plugin& plugin, const std::string& name)
    {
        for (uint32_t i = 0; i < plugin.CountParameters(); ++i) {
            const clap_param_info_t info = plugin.Describe(i);
            if (std::string(info.name).starts_with(name)) {
                return info;
            }
        }
        ADD_FAILURE() << "no parameter " << name;
        return {};
    }

    Support::UserFolders folders;
    ClapHost::Host host;
};

/// Tests with a plug-in that is there from the beginning.
class ClapPluginTest : public ClapTest {
protected:
    void SetUp() override
    {
        ClapTest::SetUp();
        ASSERT_TRUE(plugin.emplace(host));
    }
    void TearDown() override
    {
        plugin.reset(); // its end may break rules, too
        ClapTest::TearDown();
    }

    std::optional<ClapHost::Plugin> plugin;
};

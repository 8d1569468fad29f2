// SPDX-License-Identifier: ISC
#pragma once

#include "tests/contract/support/Takes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/clap/support/ClapHost.h"

#include <gtest/gtest.h>

#include <cstdlib>

/// The module that plug-ins use for as long as the object lives. Make it before any of them.
class ModuleChoice {
public:
    explicit ModuleChoice(const char* file) { setenv("PUFFGUARD_MODULE", file, 1); }
    ~ModuleChoice() { unsetenv("PUFFGUARD_MODULE"); }
    ModuleChoice(const ModuleChoice&) = delete;
    ModuleChoice& operator=(const ModuleChoice&) = delete;
};

/// Tests find no settings of the user, and fail when the plug-in breaks a rule of threads.
class ClapTest : public testing::Test {
protected:
    static constexpr uint32_t Rate = 48000;

    /// One second.
    static TestHost::Audio Speech() { return Contract::MakeSpeech(Rate, 2, 1.0); }

    /// What the module makes of speech at `strength`, 0 to 10.
    static TestHost::Audio Expected(float strength = 5.0F)
    {
        return Contract::Expected(Speech(), Rate, {.strength = strength / 10});
    }

    Support::UserFolders folders;
    const std::shared_ptr<ClapHost::Host> host = std::make_shared<ClapHost::Host>();
};

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/PluginCore.h"
#include "frameworks/plugincore/product/PluginDefinition.h"

#include <cstring>
#include <vector>

/// A product made for tests, which set what they need.
class TestDefinition final : public PluginDefinition {
public:
    explicit TestDefinition(const char* newShortName)
        : shortName(newShortName)
    {
    }
    String GetVendor() const override { return "Test"; }
    String GetShortName() const override { return shortName; }
    uint32_t GetMaxBlockFrames() const override { return maxBlockFrames; }
    uint32_t GetStateVersion() const override { return 1; }
    uint32_t GetVersionNumber() const override { return 6000; }
    SessionMode GetSessionMode() const override { return sessionMode; }
    uint32_t GetTimerPeriod() const override { return timerPeriod; }
    uint32_t GetModuleCount() const override { return static_cast<uint32_t>(modules.size()); }
    uint32_t GetModuleFirstValue(uint32_t index) const override { return 10 + index; }
    uint32_t GetModuleSecondValue(uint32_t index) const override { return 20 + index; }
    ModuleContent GetModuleContent(uint32_t index) const override { return modules[index]; }
    uint32_t GetModuleTotal() const override { return 30; }
    String GetModuleListText() const override { return modules.empty() ? "" : "all of them"; }

    uint32_t maxBlockFrames = 8192;
    SessionMode sessionMode = SessionMode::Shared;
    uint32_t timerPeriod = 0; // ms
    std::vector<ModuleContent> modules;

private:
    const String shortName;
};

/// What creates an instance of 48 kHz and one channel for a host that is called by `callback`.
inline PluginSetup
MakeSetup(PluginCoreHostFunction callback, void* refcon, const char* options = "")
{
    PluginSetup setup;
    setup.hostCallback = callback;
    setup.hostRefcon = refcon;
    setup.sampleRate = 48000.0F;
    setup.channelConfig = 0;
    std::strncpy(setup.identity.options, options, sizeof setup.identity.options - 1);
    return setup;
}

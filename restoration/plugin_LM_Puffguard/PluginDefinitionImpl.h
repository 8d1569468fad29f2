// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/product/PluginDefinition.h"

namespace LMPuffguard {

/// This product.
class PluginDefinitionImpl final : public PluginDefinition {
public:
    bool UsesDSPThread() const override { return true; }
    String GetVendor() const override { return "Norvane"; }
    String GetVendorLong() const override { return "Norvane, Inc."; }
    String GetBundlePrefix() const override { return "com.norvane.audioplugins"; }
    String GetShortName() const override { return "LM6Pfgd"; }
    String GetDisplayName() const override { return "LM 6 Puff-guard"; }
    String GetFullName() const override { return "LM 6 Puff-guard"; }
    String GetSuiteName() const override { return "LM 6 Audio Editor"; }
    String GetPresetFolder() const override
    {
        return "%USERDOCS%/Norvane/LM 6 Audio Editor/Presets/Puff-guard";
    }
    String GetPresetId() const override { return "LM6Pfgd"; }
    String GetVersionText() const override;
    uint32_t GetVersionNumber() const override;
    uint32_t GetBuildNumber() const override { return 1210; }
    uint32_t GetRevision() const override { return 3589173; }
    uint32_t GetStateVersion() const override { return 1; }
    String GetSharedConfigId() const override { return "LM6Pfgd"; }
    bool SupportsEditor() const override { return true; }
    uint32_t GetMaxBlockFrames() const override { return 8192; }
    std::optional<uint32_t> GetMinWidth() const override { return GetDefaultWidth(); }
    std::optional<uint32_t> GetMinHeight() const override { return GetDefaultHeight(); }
    std::optional<uint32_t> GetMaxWidth() const override { return GetDefaultWidth(); }
    std::optional<uint32_t> GetMaxHeight() const override { return GetDefaultHeight(); }
    bool IsStandalone() const override { return true; }
    uint32_t GetTimerPeriod() const override { return 100; }
    uint32_t GetDefaultWidth() const override { return 440; }
    uint32_t GetDefaultHeight() const override { return 264; }
    String GetHelpFile() const override { return "HTML Help/Default.htm"; }
    String GetMorePresetsPath() const override
    {
        return "https://www.norvane.example/products/audio/lm/more_presets.asp?lang=%1";
    }
    String GetAnalyticsRegistryPath() const override { return "SOFTWARE\\Norvane\\LM6\\Analytics"; }
    uint32_t GetAAXProductId() const override { return FourCharacterCode("Wn6B"); }
    uint32_t GetAAXVersion() const override { return 1024; }
    String GetAAXVendorNames() const override
    {
        return "Norvane, Inc.\nNorvane Inc\nNorvane\nQotp\nQo";
    }
    uint32_t GetAAXVendorId() const override { return FourCharacterCode("Qotp"); }
    String GetAAXProductNames() const override
    {
        return "LM 6 Puff-guard\nLM6Puffguard\nLM6Pufg\nPg";
    }
    uint32_t GetVST2Id() const override { return FourCharacterCode("W6B0"); }
    uint32_t GetVST2Category() const override { return 128; }
    String GetLearnLabel() const override { return "LEARN"; }
    String GetResourceName() const override { return "LM6PUFFGUARD"; }
    uint32_t GetAUType() const override { return FourCharacterCode("aufx"); }
    uint32_t GetAUVendor() const override { return FourCharacterCode("Qotp"); }
    uint32_t GetAUSubtype() const override { return FourCharacterCode("Wn6B"); }
    String GetAUName() const override { return "LM 6 Puff-guard"; }
    String GetDebugProjectPath() const override
    {
        return "/Restoration/plugin_LM_Puffguard/build/win_vc100/Win32/"
               "Debug CRTStatic DLL_LMPuffguardPlugin";
    }
    uint32_t GetParamPanelColumns() const override { return 2; }
    bool GetOptionFlag(uint32_t number) const override;
    uint32_t GetValue(uint32_t number) const override;
};

} // namespace LMPuffguard

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <optional>

/// A four-character code with its first character in the top byte.
constexpr uint32_t FourCharacterCode(const char (&text)[5])
{
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = code << 8 | static_cast<uint8_t>(text[i]);
    }
    return code;
}

/// What sets the sessions of a product apart.
enum class SessionMode : uint32_t {
    Shared = 0,        ///< nothing: they share one history file
    OwnHistory = 1,    ///< each instance has a history file of its own
    KeptIdentifier = 2 ///< likewise, and the state keeps the identifier that names it
};

/// What a product is: names, identifiers for each plug-in format, versions, sizes. Every operation
/// is a query without side effect; the defaults are neutral. One object serves the whole module.
/// Lengths are in pixels. Threads: [any].
class PluginDefinition {
public:
    PluginDefinition() = default;
    PluginDefinition(const PluginDefinition&) = delete;
    PluginDefinition& operator=(const PluginDefinition&) = delete;
    virtual ~PluginDefinition() = default;

    virtual bool UsesDSPThread() const { return false; }
    virtual String GetVendor() const { return ""; }
    virtual String GetVendorLong() const { return ""; }
    virtual String GetBundlePrefix() const { return ""; }
    virtual String GetShortName() const { return ""; }
    virtual String GetDisplayName() const { return ""; }
    virtual String GetFullName() const { return ""; }
    virtual String GetSuiteName() const { return ""; }
    virtual String GetPresetFolder() const { return ""; }
    virtual String GetFactoryPresetFolder() const { return ""; }
    virtual String GetPresetId() const { return ""; }
    virtual String GetVersionText() const { return ""; }
    virtual uint32_t GetVersionNumber() const { return 0; }
    virtual uint32_t GetBuildNumber() const { return 0; }
    virtual uint32_t GetRevision() const { return 0; }
    virtual uint32_t GetStateVersion() const { return 0; }
    virtual String GetSharedConfigId() const { return ""; }
    virtual std::optional<String> GetConfigPath() const { return std::nullopt; }
    virtual bool SupportsEditor() const { return false; }

    /// Largest block that the elements are given, in frames.
    virtual uint32_t GetMaxBlockFrames() const { return 0; }

    virtual std::optional<uint32_t> GetMinWidth() const { return std::nullopt; }
    virtual std::optional<uint32_t> GetMinHeight() const { return std::nullopt; }
    virtual std::optional<uint32_t> GetMaxWidth() const { return std::nullopt; }
    virtual std::optional<uint32_t> GetMaxHeight() const { return std::nullopt; }
    virtual bool SupportsBypass() const { return GetSideChainCount(29) == 0; }
    virtual bool IsStandalone() const { return false; }
    /// Milliseconds between two ticks of an instance; 0: none.
    virtual uint32_t GetTimerPeriod() const { return 0; }
    virtual uint32_t GetDefaultWidth() const { return 0; }
    virtual uint32_t GetDefaultHeight() const { return 0; }
    virtual String GetHelpFile() const { return ""; }
    virtual String GetMorePresetsPath() const { return ""; }
    virtual SessionMode GetSessionMode() const { return SessionMode::Shared; }
    virtual String GetAnalyticsRegistryPath() const { return ""; }
    virtual uint32_t GetAAXProductId() const { return 0; }
    virtual uint32_t GetAAXVersion() const { return 0; }
    virtual String GetAAXVendorNames() const { return ""; }
    virtual uint32_t GetAAXVendorId() const { return 0; }
    virtual String GetAAXProductNames() const { return ""; }
    virtual uint32_t GetVST2Id() const { return 0; }
    virtual uint32_t GetVST2Category() const { return 0; }
    virtual String GetLearnLabel() const { return ""; }
    virtual String GetResourceName() const { return ""; }
    virtual uint32_t GetAUType() const { return 0; }
    virtual uint32_t GetAUVendor() const { return 0; }
    virtual uint32_t GetAUSubtype() const { return 0; }
    virtual String GetAUName() const { return ""; }
    virtual String GetDebugProjectPath() const { return ""; }
    virtual uint32_t GetParamPanelColumns() const { return 0; }

    // A list of modules that the product is made of, for the wrapper; most products are none (71 to
    // 76 of the protocol). `index` is below GetModuleCount().
    struct ModuleContent {
        String text;
        Util::Bytes data;
    };
    virtual uint32_t GetModuleCount() const { return 0; }
    virtual uint32_t GetModuleFirstValue(uint32_t /*index*/) const { return 0; }
    virtual uint32_t GetModuleSecondValue(uint32_t /*index*/) const { return 0; }
    virtual ModuleContent GetModuleContent(uint32_t /*index*/) const { return {}; }
    virtual uint32_t GetModuleTotal() const { return 0; }
    virtual String GetModuleListText() const { return ""; }

    // What the wrappers know by number only. The number is the query's place in the protocol.

    /// 29 to 31.
    virtual uint32_t GetSideChainCount(uint32_t /*number*/) const { return 0; }
    /// 26 to 28, 33 to 49, 65, 86 to 89, 110, 111.
    virtual bool GetOptionFlag(uint32_t /*number*/) const { return false; }
    /// 62, 84, 92 to 109, 116 to 118.
    virtual uint32_t GetValue(uint32_t /*number*/) const { return 0; }
    /// 60, 82.
    virtual String GetText(uint32_t /*number*/) const { return ""; }
};

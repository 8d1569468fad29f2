// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/preset/file/PresetFileBase.h"

namespace Preset {

/// How a program identifies itself in its presets.
struct ProgramIdentity {
    String type; ///< the root element's name
    uint32_t paramsVersion = 0;
    uint32_t pluginVersion = 0; ///< major * 1000 + minor
    uint32_t pluginBuild = 0;
};

/// How a preset's version stands to the program's.
enum class VersionMatch { Same, Newer, Earlier };

/// The product family's form of a preset file: its rules of versions and older types.
class LmPresetFile : public PresetFileBase {
public:
    LmPresetFile(ProgramIdentity newIdentity,
                 PresetDSPInterfaceBase& newDsp,
                 const Util::ConfigFile* newSettings);

    String GetType() const override { return identity.type; }
    uint32_t GetPluginVersion() const override { return identity.pluginVersion; }
    uint32_t GetPluginBuild() const override { return identity.pluginBuild; }
    uint32_t GetParamsVersion() const override { return identity.paramsVersion; }
    bool IsCurrentFormat(const Util::XmlNode& root) override;
    bool IsParamsVersionValid(std::optional<uint32_t> version) const override;
    bool IsPluginVersionValid(std::optional<uint32_t> version) const override;
    bool IsTypeValid(const String& type) const override { return type == identity.type; }

    /// Whether the last file that was read is of another type; false also when only its version is
    /// another one.
    bool IsTypeWrong() const { return isTypeWrong; }
    /// Which of the two is the later, for a head of this program's type. Same: can be read. Empty
    /// when the head has none.
    std::optional<VersionMatch> CompareVersion(const PresetHead& headRead) const;
    /// For a person, of a head that is newer or earlier: its version and the program's.
    String DescribeVersions(const PresetHead& headRead) const;

protected:
    std::unique_ptr<LegacyPresetFileHandlerBase> MakeLegacyHandler(const String& type) override;
    bool IsCategoryRequired(const String& element) const override;

private:
    const ProgramIdentity identity;
    bool isTypeWrong = false;
};

} // namespace Preset

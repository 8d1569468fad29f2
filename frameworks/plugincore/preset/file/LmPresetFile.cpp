// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/LmPresetFile.h"

#include "frameworks/plugincore/preset/file/LegacyPresetFileHandler.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Preset {
namespace {

constexpr uint32_t VersionsOfMajor = 1000;

String ToText(uint32_t version)
{
    return String("%1.%2").arg(version / VersionsOfMajor).arg(version % VersionsOfMajor);
}

VersionMatch Order(uint32_t read, uint32_t own)
{
    return read > own ? VersionMatch::Newer : VersionMatch::Earlier;
}

} // namespace

LmPresetFile::LmPresetFile(ProgramIdentity newIdentity,
                           PresetDSPInterfaceBase& newDsp,
                           const Util::ConfigFile* newSettings)
    : PresetFileBase(newDsp, newSettings)
    , identity(std::move(newIdentity))
{
}

bool LmPresetFile::IsCurrentFormat(const Util::XmlNode& root)
{
    isTypeWrong = !IsTypeValid(root.GetName());
    return PresetFileBase::IsCurrentFormat(root);
}

bool LmPresetFile::IsParamsVersionValid(std::optional<uint32_t> version) const
{
    return version == identity.paramsVersion;
}

bool LmPresetFile::IsPluginVersionValid(std::optional<uint32_t> version) const
{
    if (!version || *version < VersionsOfMajor) {
        return false;
    }
    const uint32_t major = *version / VersionsOfMajor;
    const uint32_t own = identity.pluginVersion / VersionsOfMajor;
    // Presets of these three generations stay readable for all that came after them.
    return major >= 3 && major <= 5 ? own >= major : own == major;
}

std::optional<VersionMatch> LmPresetFile::CompareVersion(const PresetHead& headRead) const
{
    if (!headRead.pluginVersion || !headRead.paramsVersion) {
        return std::nullopt;
    }
    if (!IsPluginVersionValid(headRead.pluginVersion)) {
        return Order(*headRead.pluginVersion, identity.pluginVersion);
    }
    if (!IsParamsVersionValid(headRead.paramsVersion)) {
        return Order(*headRead.paramsVersion, identity.paramsVersion);
    }
    return VersionMatch::Same;
}

String LmPresetFile::DescribeVersions(const PresetHead& headRead) const
{
    if (!IsPluginVersionValid(headRead.pluginVersion)) {
        return "written by " + ToText(headRead.pluginVersion.value_or(0)) + ", this is " +
               ToText(identity.pluginVersion);
    }
    return String("its parameters are of version %1, these of %2")
        .arg(headRead.paramsVersion.value_or(0))
        .arg(identity.paramsVersion);
}

std::unique_ptr<LegacyPresetFileHandlerBase> LmPresetFile::MakeLegacyHandler(const String& type)
{
    switch (FindLegacyFamily(type)) {
    case LegacyFamily::ChannelOps:
    case LegacyFamily::Declicker:
    case LegacyFamily::Denoiser:
    case LegacyFamily::Gain:
    case LegacyFamily::Deconstruct:
        // Kindred products: this one has none of their elements, so that there is nothing their
        // values could be mapped to. A product that has makes its handler here.
    case LegacyFamily::Other:
        break;
    }
    return std::make_unique<LegacyPresetFileHandlerBase>(*this,
                                                         LegacyPresetFileHandlerBase::Renames());
}

bool LmPresetFile::IsCategoryRequired(const String& element) const
{
    // Elements that came into the family's sets over time; older presets lack them.
    static constexpr const char* OptionalOnes[] = {"InputLevel",
                                                   "OutputLevel",
                                                   "Gain",
                                                   "Global",
                                                   "DenoiserOption",
                                                   "DenoiserZLOption",
                                                   "SpectralRepairStreamer",
                                                   "Histogram"};
    return std::none_of(std::begin(OptionalOnes), std::end(OptionalOnes), [&](const char* word) {
        return element == word;
    });
}

} // namespace Preset

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/PluginSettings.h"

namespace {

// No host delays by more than this, a minute and a half at the highest rate; a dry line that long
// can still be had.
constexpr int32_t LongestFrozenDelay = 1 << 24;

String MakePath(const String& vendor, const String& identifier)
{
    return String("SOFTWARE/%1/%2").arg(vendor).arg(identifier);
}

String MakeProductPath(const PluginDefinition& definition)
{
    return definition.GetConfigPath().value_or(
        MakePath(definition.GetVendor(), definition.GetShortName()));
}

std::unique_ptr<Util::ConfigFile> MakeSharedFile(const PluginDefinition& definition)
{
    const String identifier = definition.GetSharedConfigId();
    return identifier.IsEmpty()
               ? nullptr
               : std::make_unique<Util::ConfigFile>(MakePath(definition.GetVendor(), identifier));
}

std::optional<uint32_t> ReadFrozenDelay(const Util::ConfigFile& settings)
{
    const int32_t samples = settings.ReadInt("FrozenSystemDelay", -1);
    const bool isUsable = samples >= 0 && samples <= LongestFrozenDelay;
    return isUsable ? std::optional<uint32_t>(static_cast<uint32_t>(samples)) : std::nullopt;
}

} // namespace

PluginSettings::PluginSettings(const PluginDefinition& newDefinition, bool newIsOffline)
    : isOffline(newIsOffline)
    , definition(newDefinition)
    , productFile(MakeProductPath(newDefinition))
    , sharedFile(MakeSharedFile(newDefinition))
{
}

void PluginSettings::WriteWaiting()
{
    productFile.WriteWaiting();
    if (sharedFile) {
        sharedFile->WriteWaiting();
    }
}

LatencyReport::Settings PluginSettings::ReadLatencySettings() const
{
    if (isOffline) {
        return {};
    }
    return {productFile.ReadBool("DelayCompensationEnable", true), ReadFrozenDelay(productFile)};
}

String PluginSettings::ReadResourceOverride() const
{
    if (isOffline) {
        return "";
    }
    const Util::ConfigFile ofVendor(String("SOFTWARE/%1").arg(definition.GetVendor()));
    return ofVendor.ReadString(
        String("%1.%2").arg("ResourceOverridePath").arg(definition.GetShortName()), "");
}

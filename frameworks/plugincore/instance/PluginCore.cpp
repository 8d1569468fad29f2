// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/PluginCore.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <vector>

namespace {

constexpr std::array<const char*, 12> FormatNames{"SA",
                                                  "DX",
                                                  "VST",
                                                  "DPM-RT",
                                                  "DPM-AS",
                                                  "TDM",
                                                  "AAX-RT",
                                                  "AAX-AS",
                                                  "AAX-TI",
                                                  "AU",
                                                  "MAS",
                                                  "VST3"};

constexpr std::array<std::string_view, 7> Languages{"en", "ja", "de", "fr", "it", "es", "ko"};

// The first token that names a language decides, also when it is one that isn't known.
std::optional<String> ReadLanguage(const char* options)
{
    const String prefix("Lang:");
    for (const String& token : String(options).Split('|')) {
        if (token.StartsWith(prefix)) {
            const String code = token.Mid(prefix.Length());
            const bool known = std::count(Languages.begin(), Languages.end(), code.View()) != 0;
            return known ? std::optional<String>(code) : std::nullopt;
        }
    }
    return std::nullopt;
}

bool HasToken(const char* options, const String& token)
{
    const std::vector<String> tokens = String(options).Split('|');
    return std::find(tokens.begin(), tokens.end(), token) != tokens.end();
}

PluginIdentity Terminated(PluginIdentity identity)
{
    identity.options[std::size(identity.options) - 1] = '\0';
    return identity;
}

} // namespace

PluginCore::PluginCore(const PluginDefinition& newDefinition, const PluginSetup& setup)
    : identity(Terminated(setup.identity))
    , forcedLanguage(ReadLanguage(identity.options))
    , isOffline(HasToken(identity.options, "Offline"))
    , definition(newDefinition)
    , hostCallback(setup.hostCallback, setup.hostRefcon)
    , modulePath(setup.modulePath)
    , threadController("PluginCore")
{
}

PluginCore::~PluginCore() = default;

String PluginCore::GetFormatName() const
{
    const auto number = static_cast<std::size_t>(identity.format);
    return identity.format >= 0 && number < FormatNames.size() ? FormatNames[number] : "?";
}

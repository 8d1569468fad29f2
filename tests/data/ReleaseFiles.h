// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/ui/model/historyfile/HistoryFile.h"
#include "tests/support/ModuleHost.h"

#include <array>
#include <string>
#include <utility>

/// What every folder beside this file holds, one a release: a preset, a session, an undo history
/// and the settings, as that release wrote them. They are never edited; a later version reads them.
namespace ReleaseFiles {

constexpr const char* PresetName = "preset.xml";
constexpr const char* SessionName = "session.chunk";
constexpr const char* HistoryName = "history.hst";
constexpr const char* SettingsName = "settings.json";

/// What preset and session hold: an automatable parameter and its normalised value.
constexpr std::array<std::pair<uint32_t, float>, 3> Values{{{TestHost::Sensitivity, 0.75F},
                                                            {TestHost::Strength, 0.25F},
                                                            {TestHost::UpperFrequency, 0.5F}}};
/// What they say of themselves; the history's two steps have the first and the session's values.
constexpr const char* Comment = "Für „Anna“ & Co.";
constexpr std::array<const char*, 2> Labels{"Initial state", "Strength \xE2\x86\x92 2.5"};

} // namespace ReleaseFiles

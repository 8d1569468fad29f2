// SPDX-License-Identifier: ISC
#include "wrappers/cli/effect/Presets.h"

#include "wrappers/cli/text/Text.h"
#include "wrappers/cli/text/TextTable.h"
#include "wrappers/cli/text/Version.h"

#include <nlohmann/json.hpp>

namespace Cli {

namespace {

const char* GroupName(Wrapper::PresetGroup group)
{
    switch (group) {
    case Wrapper::PresetGroup::Factory:
        return "factory";
    case Wrapper::PresetGroup::User:
        return "user";
    case Wrapper::PresetGroup::BuiltIn:
        break;
    }
    return "built in";
}

nlohmann::ordered_json TextOrNull(const std::string& text)
{
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(ToUtf8(text));
}

} // namespace

std::string PresetTable(const std::vector<Wrapper::Preset>& presets)
{
    TextTable table({"NAME", "FROM", "COMMENT"});
    for (const Wrapper::Preset& preset : presets) {
        table.Add({preset.name,
                   GroupName(preset.group),
                   preset.problem.empty() ? preset.comment : preset.problem});
    }
    return table.Format();
}

std::string PresetJson(const std::vector<Wrapper::Preset>& presets)
{
    nlohmann::ordered_json json;
    json["version"] = GetVersion();
    json["presets"] = nlohmann::ordered_json::array();
    for (const Wrapper::Preset& preset : presets) {
        json["presets"].push_back({{"name", ToUtf8(preset.name)},
                                   {"from", GroupName(preset.group)},
                                   {"comment", ToUtf8(preset.comment)},
                                   {"file", TextOrNull(preset.path)},
                                   {"readOnly", preset.isReadOnly},
                                   {"problem", TextOrNull(preset.problem)}});
    }
    return json.dump(2) + "\n";
}

} // namespace Cli

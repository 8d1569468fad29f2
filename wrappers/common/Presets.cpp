// SPDX-License-Identifier: ISC
#include "wrappers/common/Presets.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/Instance.h"
#include "wrappers/common/Text.h"

namespace Wrapper {

namespace {

// The entry cuts a long comment to its field, at the beginning of a character: one of which no more
// than a character's greatest length is left is taken for cut.
std::string CommentOf(const PresetRecord& record)
{
    constexpr size_t GreatestCharacter = 4;
    const std::string comment = TextOf(record.presetComment);
    const bool isCut = comment.size() + GreatestCharacter >= sizeof record.presetComment;
    return isCut ? comment + "..." : comment;
}

PresetGroup GroupOf(uint32_t number)
{
    switch (number) {
    case PresetGroupFactory:
        return PresetGroup::Factory;
    case PresetGroupUser:
        return PresetGroup::User;
    default:
        return PresetGroup::BuiltIn;
    }
}

Preset MakePreset(const PresetRecord& record)
{
    Preset preset;
    preset.name = TextOf(record.presetName);
    preset.comment = CommentOf(record);
    preset.group = GroupOf(record.group);
    preset.path = TextOf(record.path);
    preset.problem = TextOf(record.message);
    preset.isReadOnly = record.isReadOnly != 0;
    return preset;
}

// Of an operation, unlike an entry of the list, a message is a fault only if the record has failed.
Preset MakeResult(const PresetRecord& record)
{
    Preset preset = MakePreset(record);
    if (record.failed == 0) {
        preset.problem.clear();
    } else if (preset.problem.empty()) {
        preset.problem = "the module doesn't say why not";
    }
    return preset;
}

bool Request(const Instance& instance, EntryKey key, PresetRecord& record, const char* purpose)
{
    HostMessageRecord message = {PLUGIN_CORE_MESSAGE_PRESET, sizeof record, &record};
    return instance.Request(key, SelectorHostMessage, &message, purpose);
}

} // namespace

bool Presets::IsFile(const std::string& name)
{
    return PluginCoreIsPresetPath(name.c_str()) != 0;
}

std::optional<std::vector<Preset>> Presets::List()
{
    PresetRecord list = {};
    list.op = PresetOpList;
    if (!Request(instance, {}, list, "list presets")) {
        return std::nullopt;
    }
    if (list.failed != 0) {
        instance.Log({}, MakeResult(list).problem);
        return std::nullopt;
    }
    std::vector<Preset> presets;
    for (uint32_t index = 0; index < list.count; ++index) {
        PresetRecord record = {};
        record.op = PresetOpDescribe;
        record.index = index;
        if (!Request(instance, {}, record, "describe a preset")) {
            return std::nullopt;
        }
        presets.push_back(MakePreset(record));
    }
    return presets;
}

std::optional<Preset> Presets::Apply(const std::string& name)
{
    PresetRecord record = {};
    record.op = PresetOpApply;
    record.name = name.c_str();
    return Request(instance, {}, record, "apply a preset") ? std::optional(MakeResult(record))
                                                           : std::nullopt;
}

std::optional<Preset>
Presets::Save(const std::string& name, const std::string& comment, Replace replace)
{
    PresetRecord record = {};
    record.op = PresetOpSave;
    record.mayReplace = replace == Replace::Allow ? 1 : 0;
    record.name = name.c_str();
    record.comment = comment.empty() ? nullptr : comment.c_str();
    return Request(instance, {}, record, "save a preset") ? std::optional(MakeResult(record))
                                                          : std::nullopt;
}

std::optional<Preset> Presets::Import(const std::string& file)
{
    PresetRecord record = {};
    record.op = PresetOpImport;
    record.name = file.c_str();
    return Request(instance, {}, record, "import a preset") ? std::optional(MakeResult(record))
                                                            : std::nullopt;
}

std::optional<Presets::Question> Presets::AskToRemove(const std::string& name)
{
    PresetRecord record = {};
    record.op = PresetOpRemove;
    record.name = name.c_str();
    if (!Request(instance, {}, record, "look for a preset")) {
        return std::nullopt;
    }
    return Question{TextOf(record.message), MakeResult(record).problem};
}

std::optional<Preset> Presets::Remove(const std::string& name)
{
    PresetRecord record = {};
    record.op = PresetOpRemove;
    record.mayReplace = 1;
    record.name = name.c_str();
    return Request(instance, {}, record, "remove a preset") ? std::optional(MakeResult(record))
                                                            : std::nullopt;
}

std::optional<Preset> Presets::SetFolder(const std::string& folder)
{
    PresetRecord record = {};
    record.op = PresetOpSetFolder;
    record.name = folder.c_str();
    return Request(instance, {}, record, "take a preset folder") ? std::optional(MakeResult(record))
                                                                 : std::nullopt;
}

} // namespace Wrapper

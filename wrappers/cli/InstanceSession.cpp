// SPDX-License-Identifier: ISC
// What an instance lasts by: saved sessions and presets.
#include "wrappers/cli/FileError.h"
#include "wrappers/cli/Instance.h"

#include <fmt/format.h>

namespace Cli {

namespace {

constexpr uint32_t uiContext = 1;

// The entry cuts a long comment to its field, at the beginning of a character: one of which no more
// than a character's greatest length is left is taken for cut.
std::string CommentOf(const PresetRecord& record)
{
    constexpr size_t greatestCharacter = 4;
    const std::string comment = TextOf(record.presetComment);
    const bool isCut = comment.size() + greatestCharacter >= sizeof record.presetComment;
    return isCut ? comment + "..." : comment;
}

Preset MakePreset(const PresetRecord& record)
{
    Preset preset;
    preset.name = TextOf(record.presetName);
    preset.path = TextOf(record.path);
    preset.comment = CommentOf(record);
    preset.problem = TextOf(record.message);
    preset.group = static_cast<PluginCorePresetGroup>(record.group);
    preset.isReadOnly = record.isReadOnly != 0;
    return preset;
}

} // namespace

bool Instance::CallState(StateRecord& record) const
{
    Call(SelectorStateCommand, uiContext, &record, "save or load a session");
    return record.failed == 0;
}

bool Instance::LoadState(std::string_view state)
{
    std::string bytes(state); // the record's pointer is not to constant bytes
    StateRecord record = {};
    record.op = StateOpSetChunk;
    record.size = static_cast<uint32_t>(bytes.size());
    record.buffer = bytes.data();
    record.version = module.GetInfo().stateVersion;
    return CallState(record);
}

std::string Instance::SaveState() const
{
    StateRecord record = {};
    record.op = StateOpGetSize;
    if (!CallState(record)) {
        throw ModuleError("the module doesn't tell the size of its session");
    }
    std::string state(record.size, '\0');
    record.op = StateOpGetChunk;
    record.buffer = state.data();
    if (!CallState(record)) {
        throw ModuleError("the module doesn't save its session");
    }
    return state;
}

void Instance::CallPreset(PresetRecord& record, const char* purpose) const
{
    HostMessageRecord message = {PLUGIN_CORE_MESSAGE_PRESET, sizeof record, &record};
    Call(SelectorHostMessage, uiContext, &message, purpose);
    if (record.failed != 0) {
        throw FileError(TextOf(record.message));
    }
}

Preset Instance::ApplyPreset(const std::string& name)
{
    PresetRecord record = {};
    record.op = PresetOpApply;
    record.name = name.c_str();
    CallPreset(record, "apply a preset");
    return MakePreset(record);
}

std::string
Instance::SavePreset(const std::string& name, const std::string& comment, Overwrite overwrite)
{
    PresetRecord record = {};
    record.op = PresetOpSave;
    record.mayReplace = overwrite == Overwrite::Allow ? 1 : 0;
    record.name = name.c_str();
    record.comment = comment.c_str();
    CallPreset(record, "save a preset");
    return TextOf(record.path);
}

std::vector<Preset> Instance::ListPresets()
{
    PresetRecord list = {};
    list.op = PresetOpList;
    CallPreset(list, "list presets");
    std::vector<Preset> presets;
    for (uint32_t index = 0; index < list.count; ++index) {
        PresetRecord record = {};
        record.op = PresetOpDescribe;
        record.index = index;
        HostMessageRecord message = {PLUGIN_CORE_MESSAGE_PRESET, sizeof record, &record};
        Call(SelectorHostMessage, uiContext, &message, "describe a preset");
        presets.push_back(MakePreset(record));
    }
    return presets;
}

} // namespace Cli

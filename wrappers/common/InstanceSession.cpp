// SPDX-License-Identifier: ISC
// What an instance lasts by: states and presets.
#include "wrappers/common/Instance.h"
#include "wrappers/common/Text.h"

namespace Wrapper {

namespace {

// A value that changes between the two calls changes the size.
constexpr int saveAttempts = 8;

// No session is longer; the entry counts bytes in 32 bits.
constexpr size_t longestState = size_t{64} << 20U;

} // namespace

bool Instance::CallState(StateRecord& record)
{
    return Call(SelectorStateCommand, Side::UI, &record) == PluginCoreSuccess && record.failed == 0;
}

std::vector<uint8_t> Instance::SaveState()
{
    for (int attempt = 0; attempt < saveAttempts; ++attempt) {
        StateRecord record = {};
        record.op = StateOpGetSize;
        if (!CallState(record)) {
            break;
        }
        std::vector<uint8_t> state(record.size);
        record.op = StateOpGetChunk;
        record.buffer = state.data();
        if (CallState(record)) {
            return state;
        }
    }
    log("the module doesn't save its state");
    return {};
}

bool Instance::LoadState(std::span<const uint8_t> state)
{
    if (state.empty() || state.size() > longestState) {
        return false;
    }
    std::vector<uint8_t> bytes(state.begin(), state.end()); // the record's are not constant
    StateRecord record = {};
    record.op = StateOpSetChunk;
    record.size = static_cast<uint32_t>(bytes.size());
    record.buffer = bytes.data();
    record.version = module->GetStateVersion();
    return CallState(record);
}

bool Instance::CallPreset(PresetRecord& record)
{
    HostMessageRecord message = {PLUGIN_CORE_MESSAGE_PRESET, sizeof record, &record};
    if (Call(SelectorHostMessage, Side::UI, &message) != PluginCoreSuccess) {
        log("the module knows no presets");
        return false;
    }
    if (record.failed != 0) {
        log(TextOf(record.message));
    }
    return record.failed == 0;
}

std::vector<Preset> Instance::ListPresets()
{
    PresetRecord list = {};
    list.op = PresetOpList;
    std::vector<Preset> presets;
    const uint32_t count = CallPreset(list) ? list.count : 0;
    for (uint32_t index = 0; index < count; ++index) {
        PresetRecord record = {};
        record.op = PresetOpDescribe;
        record.index = index;
        if (CallPreset(record)) {
            presets.push_back({TextOf(record.presetName),
                               TextOf(record.presetComment),
                               static_cast<PluginCorePresetGroup>(record.group)});
        }
    }
    return presets;
}

bool Instance::ApplyPreset(const std::string& name)
{
    PresetRecord record = {};
    record.op = PresetOpApply;
    record.name = name.c_str();
    return CallPreset(record);
}

} // namespace Wrapper

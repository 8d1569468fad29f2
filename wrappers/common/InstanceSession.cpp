// SPDX-License-Identifier: ISC
// What an instance lasts by: states and presets.
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/Instance.h"
#include "wrappers/common/Presets.h"
#include "wrappers/common/SessionBytes.h"

namespace Wrapper {

namespace {

// A value that changes between the two calls changes the size.
constexpr int SaveAttempts = 8;

} // namespace

bool Instance::CallState(StateRecord& record)
{
    return Request(SelectorStateCommand, &record, "save or load a session") && record.failed == 0;
}

std::vector<uint8_t> Instance::SaveState()
{
    for (int attempt = 0; attempt < SaveAttempts; ++attempt) {
        StateRecord record = {};
        record.op = StateOpGetSize;
        if (!CallState(record) || record.size > LongestState) {
            break;
        }
        std::vector<uint8_t> state(record.size);
        record.op = StateOpGetChunk;
        record.buffer = state.data();
        if (CallState(record)) {
            return state;
        }
    }
    log("the module doesn't save its session");
    return {};
}

bool Instance::LoadState(std::span<const uint8_t> state)
{
    if (state.empty() || state.size() > LongestState) {
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

std::vector<Preset> Instance::ListPresets()
{
    return Presets(*this).List().value_or(std::vector<Preset>());
}

bool Instance::ApplyPreset(const std::string& name)
{
    const std::optional<Preset> preset = Presets(*this).Apply(name);
    if (preset && !preset->problem.empty()) {
        log(preset->problem);
    }
    return preset && preset->problem.empty();
}

} // namespace Wrapper

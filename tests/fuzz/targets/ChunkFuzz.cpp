// SPDX-License-Identifier: ISC
// Any bytes as a session's state, and any text in one, given to one live instance: a refused chunk
// changes nothing, and after a taken one the instance saves a state that it takes again and saves
// as the same bytes.
#include "frameworks/plugincore/dispatch/Entry.h"
#include "frameworks/plugincore/instance/StateChunk.h"
#include "restoration/plugin_LM_Puffguard/PluginFactoryImpl.h"
#include "tests/fuzz/targets/TargetFolder.h"

#include <cstdlib>
#include <vector>

namespace {

/// An instance of the product, driven by its entry, whose state is saved and loaded. A call that
/// the entry refuses ends the program.
class LiveInstance {
public:
    LiveInstance()
    {
        CreateRecord record = {};
        record.hostCallback = [](uint32_t, uint32_t, uint32_t, void*, void*) -> uint32_t {
            return PluginCoreUnsupported;
        };
        record.identity.format = FormatStandalone;
        record.instance = &core;
        record.sampleRate = 48000;
        Call(SelectorCreatePlugin, &record);
        Call(SelectorInitialize, nullptr);
    }
    LiveInstance(const LiveInstance&) = delete;
    LiveInstance& operator=(const LiveInstance&) = delete;
    ~LiveInstance() { Call(SelectorDestroyPlugin, nullptr); }

    std::vector<uint8_t> Save()
    {
        StateRecord record = {};
        record.op = StateOpGetSize;
        Call(SelectorStateCommand, &record);
        std::vector<uint8_t> chunk(record.size);
        record.op = StateOpGetChunk;
        record.buffer = chunk.data();
        Call(SelectorStateCommand, &record);
        if (record.failed != 0) {
            std::abort();
        }
        return chunk;
    }

    bool Load(std::vector<uint8_t> chunk)
    {
        StateRecord record = {};
        record.op = StateOpSetChunk;
        record.size = static_cast<uint32_t>(chunk.size());
        record.buffer = chunk.data();
        record.version = 1;
        Call(SelectorStateCommand, &record);
        return record.failed == 0;
    }

private:
    void Call(uint32_t selector, void* data)
    {
        if (DispatchEntryCall(
                LMPuffguard::GetPluginFactory(), PLUGIN_CORE_MAGIC, selector, 1, core, data) !=
            PluginCoreSuccess) {
            std::abort();
        }
    }

    PluginCore* core = nullptr;
};

void Try(LiveInstance& instance, const std::vector<uint8_t>& chunk)
{
    const std::vector<uint8_t> before = instance.Save();
    const bool isTaken = instance.Load(chunk);
    const std::vector<uint8_t> after = instance.Save();
    if (!isTaken && after != before) {
        std::abort();
    }
    if (!instance.Load(after) || instance.Save() != after) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const Fuzz::TargetFolder folder;
    static LiveInstance instance;
    Try(instance, {data, data + size});
    const String text = std::string_view(reinterpret_cast<const char*>(data), size);
    std::vector<uint8_t> chunk(StateChunk::GetChunkSizeOfText(text));
    StateChunk::WriteText(text, chunk);
    Try(instance, chunk);
    return 0;
}

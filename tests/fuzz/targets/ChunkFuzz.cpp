// SPDX-License-Identifier: ISC
// Any bytes as a session's state, and any text in one, given to one live instance: a refused chunk
// changes nothing, and after a taken one the instance saves a state that it takes again and saves
// as the same bytes.
#include "frameworks/plugincore/instance/StateChunk.h"
#include "tests/fuzz/targets/LiveInstance.h"
#include "tests/fuzz/targets/TargetFolder.h"

#include <cstdlib>

namespace {

void Try(Fuzz::LiveInstance& instance, const std::vector<uint8_t>& chunk)
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
    static Fuzz::LiveInstance instance;
    Try(instance, {data, data + size});
    const String text = std::string_view(reinterpret_cast<const char*>(data), size);
    std::vector<uint8_t> chunk(StateChunk::GetChunkSizeOfText(text));
    StateChunk::WriteText(text, chunk);
    Try(instance, chunk);
    return 0;
}

// SPDX-License-Identifier: ISC
// Any bytes as a compressed preset are refused, or give at most what their length claims.
#include "frameworks/plugincore/preset/file/PresetBytes.h"

#include <cstdlib>
#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const auto text = Preset::InflatePreset({data, size});
    if (!text) {
        return 0;
    }
    uint32_t claim = 0;
    std::memcpy(&claim, data, sizeof claim);
    if (text->size() > claim) {
        std::abort();
    }
    return 0;
}

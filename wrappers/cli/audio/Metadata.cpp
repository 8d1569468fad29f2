// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/Metadata.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Cli {

namespace {

// Room for the history texts behind the fixed part of a broadcast or cart chunk; libsndfile keeps
// 16 KiB of them and refuses to take as much.
constexpr size_t HistoryRoom = size_t{15} * 1024;

} // namespace

void Metadata::TakeChunk(SNDFILE* file, int getCommand, int setCommand, size_t size)
{
    std::vector<char> bytes(size);
    if (sf_command(file, getCommand, bytes.data(), static_cast<int>(size)) == SF_TRUE) {
        chunks.push_back({setCommand, std::move(bytes)});
    }
}

Metadata Metadata::ReadFrom(SNDFILE* file, int channels)
{
    Metadata result;
    for (int kind = SF_STR_FIRST; kind <= SF_STR_LAST; ++kind) {
        const char* text = sf_get_string(file, kind);
        if (text != nullptr) {
            result.texts.push_back({kind, text});
        }
    }
    result.TakeChunk(file,
                     SFC_GET_BROADCAST_INFO,
                     SFC_SET_BROADCAST_INFO,
                     sizeof(SF_BROADCAST_INFO) + HistoryRoom);
    result.TakeChunk(
        file, SFC_GET_CART_INFO, SFC_SET_CART_INFO, sizeof(SF_CART_INFO) + HistoryRoom);
    result.TakeChunk(file, SFC_GET_INSTRUMENT, SFC_SET_INSTRUMENT, sizeof(SF_INSTRUMENT));
    uint32_t cueCount = 0;
    if (sf_command(file, SFC_GET_CUE_COUNT, &cueCount, sizeof cueCount) == SF_TRUE) {
        // The count is a claim of the file; libsndfile copies what it really read.
        const size_t count = std::min<size_t>(cueCount, 100'000);
        result.TakeChunk(file,
                         SFC_GET_CUE,
                         SFC_SET_CUE,
                         offsetof(SF_CUES, cue_points) + count * sizeof(SF_CUE_POINT));
    }
    result.TakeChunk(file,
                     SFC_GET_CHANNEL_MAP_INFO,
                     SFC_SET_CHANNEL_MAP_INFO,
                     static_cast<size_t>(channels) * sizeof(int));
    return result;
}

void Metadata::WriteTo(SNDFILE* file) const
{
    for (const Text& text : texts) {
        sf_set_string(file, text.kind, text.text.c_str());
    }
    for (const Chunk& chunk : chunks) {
        std::vector<char> bytes = chunk.bytes;
        sf_command(file, chunk.setCommand, bytes.data(), static_cast<int>(bytes.size()));
    }
}

} // namespace Cli

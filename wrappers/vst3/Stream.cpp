// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Stream.h"

#include "wrappers/common/SessionBytes.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace Vst3 {

namespace {

constexpr size_t PieceSize = 65536;

} // namespace

std::vector<uint8_t> ReadAll(v3_bstream** stream)
{
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> piece(PieceSize);
    while (stream != nullptr) {
        int32_t count = 0;
        // The end shows in no bytes, with an error or without one.
        v3_cpp_obj(stream)->read(stream, piece.data(), static_cast<int32_t>(piece.size()), &count);
        if (count <= 0) {
            break;
        }
        const auto end = piece.begin() + std::min<ptrdiff_t>(count, std::ssize(piece));
        bytes.insert(bytes.end(), piece.begin(), end);
        if (bytes.size() > Wrapper::LongestState) {
            return {};
        }
    }
    return bytes;
}

bool WriteAll(v3_bstream** stream, std::span<const uint8_t> bytes)
{
    while (stream != nullptr && !bytes.empty()) {
        const size_t wanted = std::min(bytes.size(), PieceSize);
        int32_t count = 0;
        // The stream doesn't write into them; its type only doesn't show it.
        const v3_result result = v3_cpp_obj(stream)->write(
            stream, const_cast<uint8_t*>(bytes.data()), static_cast<int32_t>(wanted), &count);
        if (result != V3_OK || count <= 0) {
            return false;
        }
        bytes = bytes.subspan(std::min(wanted, static_cast<size_t>(count)));
    }
    return stream != nullptr;
}

} // namespace Vst3

// SPDX-License-Identifier: ISC
#include "wrappers/clap/Streams.h"

#include "wrappers/common/SessionBytes.h"

#include <array>

namespace Clap {

std::optional<std::vector<uint8_t>> ReadAll(const clap_istream_t& stream)
{
    std::vector<uint8_t> bytes;
    std::array<uint8_t, 16384> piece{};
    while (bytes.size() <= Wrapper::LongestSession) {
        const int64_t count = stream.read(&stream, piece.data(), piece.size());
        if (count == 0) {
            return bytes;
        }
        if (count < 0 || count > static_cast<int64_t>(piece.size())) {
            return std::nullopt;
        }
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + count);
    }
    return std::nullopt;
}

bool WriteAll(const clap_ostream_t& stream, std::span<const uint8_t> bytes)
{
    while (!bytes.empty()) {
        const int64_t count = stream.write(&stream, bytes.data(), bytes.size());
        if (count <= 0 || count > static_cast<int64_t>(bytes.size())) {
            return false;
        }
        bytes = bytes.subspan(static_cast<size_t>(count));
    }
    return true;
}

} // namespace Clap

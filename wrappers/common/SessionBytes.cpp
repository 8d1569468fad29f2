// SPDX-License-Identifier: ISC
#include "wrappers/common/SessionBytes.h"

#include "wrappers/common/Instance.h"

#include <algorithm>
#include <array>

namespace Wrapper {

namespace {

// Magic word, version, bypass. A state alone begins with the length of its text, little-endian and
// at most 64 MiB, and goes on with a zlib stream: its first four bytes are never letters.
constexpr std::array<uint8_t, 4> Magic = {'P', 'g', 'S', 's'};
constexpr uint8_t CurrentVersion = 1;
constexpr size_t VersionAt = 4;
constexpr size_t BypassAt = 5;

// The lower half of a zlib stream's first byte names its method, of which there is one.
constexpr size_t StreamAt = 4;
constexpr uint8_t MethodMask = 0x0F;
constexpr uint8_t MethodDeflate = 8;

} // namespace

std::vector<uint8_t> EncodeSession(bool isBypassed, std::span<const uint8_t> state)
{
    if (state.empty()) {
        return {};
    }
    std::vector<uint8_t> bytes(Magic.begin(), Magic.end());
    bytes.reserve(SessionHeadSize + state.size());
    bytes.push_back(CurrentVersion);
    bytes.push_back(isBypassed ? 1 : 0);
    bytes.insert(bytes.end(), state.begin(), state.end());
    return bytes;
}

std::optional<SessionBytes> DecodeSession(std::span<const uint8_t> bytes)
{
    if (bytes.size() <= SessionHeadSize) {
        return std::nullopt;
    }
    if (!std::equal(Magic.begin(), Magic.end(), bytes.begin())) {
        const bool isState = (bytes[StreamAt] & MethodMask) == MethodDeflate;
        return isState ? std::optional(SessionBytes{std::nullopt, bytes}) : std::nullopt;
    }
    if (bytes[VersionAt] != CurrentVersion || bytes[BypassAt] > 1) {
        return std::nullopt;
    }
    return SessionBytes{bytes[BypassAt] == 1, bytes.subspan(SessionHeadSize)};
}

bool LoadSession(Instance& instance, std::span<const uint8_t> bytes)
{
    const std::optional<SessionBytes> session = DecodeSession(bytes);
    if (!session || !instance.LoadState(session->state)) {
        return false;
    }
    const std::optional<uint32_t> bypass = instance.GetBypassIndex();
    if (bypass && session->isBypassed) {
        instance.SetParameter(Side::UI, *bypass, *session->isBypassed ? 1.0F : 0.0F);
    }
    return true;
}

} // namespace Wrapper

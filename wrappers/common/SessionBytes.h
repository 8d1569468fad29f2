// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Wrapper {

class Instance;

/// Most bytes of an instance's state; the entry counts them in 32 bits.
inline constexpr size_t LongestState = size_t{64} << 20U;
/// Bytes of a session before its state.
inline constexpr size_t SessionHeadSize = 6;
/// Most bytes of a session.
inline constexpr size_t LongestSession = SessionHeadSize + LongestState;

/// What a session keeps of an instance in a format whose hosts leave the bypass to the plug-in: the
/// instance's state holds none. The state lies in the bytes that it was read from.
struct SessionBytes {
    std::optional<bool> isBypassed; ///< none: not in the bytes
    std::span<const uint8_t> state; ///< as of Instance::SaveState()
};

/// A head and the state. Empty when there is no state. [any]
std::vector<uint8_t> EncodeSession(bool isBypassed, std::span<const uint8_t> state);

/// What EncodeSession() gives, or a state alone, as the command saves it in a file. None for bytes
/// that are neither by their first few; whether a state is one shows in Instance::LoadState().
/// [any]
std::optional<SessionBytes> DecodeSession(std::span<const uint8_t> bytes);

/// Brings back what the bytes keep. False, and nothing changed, when they keep nothing. [ui]
bool LoadSession(Instance& instance, std::span<const uint8_t> bytes);

} // namespace Wrapper

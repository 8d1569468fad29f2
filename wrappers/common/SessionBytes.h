// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Wrapper {

class Instance;

/// What a session keeps of an instance in a format whose hosts leave the bypass to the plug-in: the
/// instance's state holds none. The state lies in the bytes that it was read from.
struct SessionBytes {
    std::optional<bool> isBypassed; ///< none: the bytes don't say
    std::span<const uint8_t> state; ///< as of Instance::SaveState()
};

/// A head and the state. Empty when there is no state. [any]
std::vector<uint8_t> EncodeSession(bool isBypassed, std::span<const uint8_t> state);

/// What EncodeSession() gives, or a state alone, as the command saves it in a file. None for bytes
/// that are neither by their first few; whether a state is one tells Instance::LoadState(). [any]
std::optional<SessionBytes> DecodeSession(std::span<const uint8_t> bytes);

/// Brings back what the bytes keep. False, and nothing changed, when they keep nothing. [ui]
bool LoadSession(Instance& instance, std::span<const uint8_t> bytes);

} // namespace Wrapper

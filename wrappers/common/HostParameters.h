// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Instance.h"
#include "wrappers/common/LastWords.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Wrapper {

class HostBlock;

/// The number by which a host's sessions and automation know a parameter. It follows from the
/// identifier (32-bit FNV-1a), so that it stays when others come and go; the top bit is free, which
/// hosts and bridges between formats keep for themselves. [any]
constexpr uint32_t MakeParameterId(std::string_view identifier)
{
    uint32_t hash = 2166136261U;
    for (const char letter : identifier) {
        hash = (hash ^ static_cast<uint8_t>(letter)) * 16777619U;
    }
    return hash & 0x7FFFFFFFU;
}

/// The automatable parameters of an instance in a format whose hosts know them by numbers, send a
/// value once and leave the bypass to the plug-in: what is set from either side, with the last word
/// the host's, and the sessions that keep it. Indices are in range.
class HostParameters {
public:
    using TakeOver = std::function<void(uint32_t index, float normalised)>;

    /// `newInstance` lives longer than any call. [setup]
    explicit HostParameters(Instance& newInstance);

    uint32_t Count() const noexcept { return static_cast<uint32_t>(ids.size()); } ///< [any]
    const std::vector<uint32_t>& GetIds() const noexcept { return ids; }          ///< [any]
    std::optional<uint32_t> Find(uint32_t id) const noexcept;                     ///< [any]
    const Parameter& At(uint32_t index) const noexcept;                           ///< [any]
    bool IsBypass(uint32_t index) const noexcept;                                 ///< [any]

    /// Hands each value that the UI side has to `takeOver`. [ui]
    void ReadAll(const TakeOver& takeOver);
    /// What the host sets. On the thread of `side`.
    void Set(Side side, uint32_t index, float normalised) noexcept;
    /// What the host only shows, for a session that is saved next: the audio goes on with the last
    /// word, if there is one. [ui]
    void SetForSession(uint32_t index, float normalised) noexcept;
    /// What the UI side of the instance has set by itself. [any]
    void NoteChange(uint32_t index, float normalised) noexcept;

    /// First of all in a block. Where the UI side may be ahead, a frame goes through, which changes
    /// nothing in the audio, and what the host has set is set anew. [process]
    void BeginBlock(HostBlock& block) noexcept;

    /// Empty, after a line in the log, when it can't be had. [ui]
    std::vector<uint8_t> Save();
    /// `takeOver` gets the values that are the session's. False, and nothing changed, when the
    /// bytes are no session. [ui]
    bool Load(std::span<const uint8_t> session, const TakeOver& takeOver);

private:
    void NoteBypass(uint32_t index, float normalised) noexcept;
    void Apply(Side side, uint32_t index, float normalised) noexcept;
    void HandOver(uint32_t index, const TakeOver& takeOver);

    Instance& instance;
    std::vector<uint32_t> ids; // by parameter
    LastWords words;
    // The UI side of the instance learns of the audio side's values somewhat later.
    std::atomic<bool> isBypassed{false};
};

} // namespace Wrapper

// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>
#include <cmath>
#include <cstdint>
#include <functional>
#include <vector>

namespace Wrapper {

/// Sees to it that of two sides that set the same parameters the host's has the last word.
///
/// What the UI side sets reaches the audio at the begin of a block, after what the host has set for
/// that block, even if the host's value is the newer one. So the values of the audio side are kept
/// until the UI side next acts on their parameter. When the UI side may be ahead, a wrapper lets a
/// block begin (one frame will do, no sample depends on the cut) and sets the kept values anew.
///
/// For formats that send a value once. Where it stands in a port, the port is read again instead.
class LastWords {
public:
    /// Nothing is kept of parameters 0 to `count` - 1. [setup]
    explicit LastWords(uint32_t count);

    /// What the audio side sets, normalised. [process]
    void Keep(uint32_t index, float normalised) noexcept { words[index] = normalised; }
    /// The UI side acts on a parameter: the audio side's value isn't the last word any more. [any]
    void Drop(uint32_t index) noexcept;
    /// The UI side has set something. The mark comes after the value: a block that takes it knows
    /// that the value is there. [any]
    void MarkUIAhead() noexcept { isUIAhead = true; }

    /// Loads a session from the UI side, and answers what `load` does: false when it has changed
    /// nothing. Blocks may run meanwhile. What the host sets in them is newer than the session and
    /// stays; the other parameters, whose values are the session's, go to `takeOver`. What the host
    /// has set before doesn't come back over what is loaded. [ui]
    bool Load(const std::function<bool()>& load, const std::function<void(uint32_t)>& takeOver);

    /// Whether the UI side may be ahead, once: then a block has to begin before Restate().
    /// [process]
    bool MustBeginBlock() noexcept { return isUIAhead.exchange(false); }
    /// Hands each kept value to `set(index, normalised)`. [process]
    template <typename Set>
    void Restate(Set&& set) const noexcept
    {
        for (uint32_t index = 0; index < words.size(); ++index) {
            const float word = words[index];
            if (!std::isnan(word)) {
                set(index, word);
            }
        }
    }

private:
    std::vector<std::atomic<float>> words; // NaN: none
    std::atomic<bool> isUIAhead{false};
};

} // namespace Wrapper

// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

/// Rate and layout of the audio that an instance works on. [any]
struct StreamFormat {
    float sampleRate;       ///< Hz
    uint32_t channelConfig; ///< layout code

    bool operator==(const StreamFormat&) const = default;

    /// Whether the elements can be built for it. The bounds of the rate lie far outside of what
    /// audio has; they keep a nonsensical number from asking for all memory or for frames of no
    /// length. The layout has to name at least one channel.
    bool IsServable() const noexcept;
    /// What an instance takes that is created for this format: 44100 Hz in place of a rate that
    /// can't be served, mono in place of such a layout.
    StreamFormat WithFallbacks() const noexcept;
};

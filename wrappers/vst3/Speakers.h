// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Layouts.h"

#include <travesty/audio_processor.h>

#include <array>
#include <cstdint>

namespace Vst3 {

/// An arrangement that a bus can have. Channels lie in the order of the bits, which is that of the
/// layout.
struct Arrangement {
    v3_speaker_arrangement mask;
    const Wrapper::Layout* layout;

    constexpr uint32_t ChannelCount() const { return layout->ChannelCount(); }
};

namespace Masks {

inline constexpr v3_speaker_arrangement Stereo = V3_SPEAKER_L | V3_SPEAKER_R;
inline constexpr v3_speaker_arrangement Surround51 =
    Stereo | V3_SPEAKER_C | V3_SPEAKER_LFE | V3_SPEAKER_LS | V3_SPEAKER_RS;
inline constexpr v3_speaker_arrangement Music71 = Surround51 | V3_SPEAKER_SL | V3_SPEAKER_SR;
inline constexpr v3_speaker_arrangement Cinema71 = Surround51 | V3_SPEAKER_LC | V3_SPEAKER_RC;

} // namespace Masks

/// All that are served. A single left or centre speaker is mono in hosts that go by the number of
/// channels, or by a film's layout; cinemas have two more speakers in front instead of at the
/// sides.
inline constexpr std::array<Arrangement, 7> Arrangements = {{
    {Masks::Stereo, &Wrapper::Layouts::Stereo},
    {V3_SPEAKER_M, &Wrapper::Layouts::Mono},
    {V3_SPEAKER_L, &Wrapper::Layouts::Mono},
    {V3_SPEAKER_C, &Wrapper::Layouts::Mono},
    {Masks::Surround51, &Wrapper::Layouts::Surround51},
    {Masks::Music71, &Wrapper::Layouts::Surround71},
    {Masks::Cinema71, &Wrapper::Layouts::Surround71},
}};

/// What a plug-in has before its host chooses.
inline constexpr const Arrangement& DefaultArrangement = Arrangements[0];

/// Null when it isn't served.
constexpr const Arrangement* FindArrangement(v3_speaker_arrangement mask)
{
    for (const Arrangement& arrangement : Arrangements) {
        if (arrangement.mask == mask) {
            return &arrangement;
        }
    }
    return nullptr;
}

} // namespace Vst3

// SPDX-License-Identifier: ISC
#pragma once

#include <travesty/audio_processor.h>

#include <array>
#include <bit>
#include <cstdint>

namespace Vst3 {

/// An arrangement that a bus can have. Channels lie in the order of the bits.
struct Speakers {
    v3_speaker_arrangement mask = 0;
    const char* name = ""; ///< for people

    constexpr uint32_t ChannelCount() const { return static_cast<uint32_t>(std::popcount(mask)); }
};

namespace Masks {

inline constexpr v3_speaker_arrangement mono = V3_SPEAKER_M;
inline constexpr v3_speaker_arrangement stereo = V3_SPEAKER_L | V3_SPEAKER_R;
inline constexpr v3_speaker_arrangement surround51 =
    stereo | V3_SPEAKER_C | V3_SPEAKER_LFE | V3_SPEAKER_LS | V3_SPEAKER_RS;
inline constexpr v3_speaker_arrangement music71 = surround51 | V3_SPEAKER_SL | V3_SPEAKER_SR;
inline constexpr v3_speaker_arrangement cinema71 = surround51 | V3_SPEAKER_LC | V3_SPEAKER_RC;

} // namespace Masks

/// All that are served. A single left or centre speaker is mono in hosts that go by the number of
/// channels, or by a film's layout.
inline constexpr std::array<Speakers, 7> arrangements = {{
    {Masks::stereo, "Stereo"},
    {Masks::mono, "Mono"},
    {V3_SPEAKER_L, "Mono"},
    {V3_SPEAKER_C, "Mono"},
    {Masks::surround51, "5.1"},
    {Masks::music71, "7.1"},
    {Masks::cinema71, "7.1 Cinema"},
}};

/// What a plug-in has before its host says anything else.
inline constexpr const Speakers& defaultArrangement = arrangements[0];

/// Null when it isn't served.
constexpr const Speakers* FindArrangement(v3_speaker_arrangement mask)
{
    for (const Speakers& speakers : arrangements) {
        if (speakers.mask == mask) {
            return &speakers;
        }
    }
    return nullptr;
}

} // namespace Vst3

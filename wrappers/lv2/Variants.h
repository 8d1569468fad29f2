// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace Lv2 {

/// A speaker, as port-groups.ttl names it.
struct Channel {
    const char* symbol; ///< end of the symbols of its ports
    const char* name;   ///< for people
    const char* designation;
};

/// One plug-in of the bundle.
struct Variant {
    const char* uri;
    const char* symbol; ///< of its file
    const char* name;   ///< for people, added to the product's
    const char* group;  ///< class of the groups of its audio ports
    std::span<const Channel> channels;

    constexpr uint32_t ChannelCount() const { return static_cast<uint32_t>(channels.size()); }
};

namespace Speakers {

// In the order of wave files, which most hosts map to ports one by one.
inline constexpr std::array<Channel, 1> mono = {{{"center", "Center", "center"}}};
inline constexpr std::array<Channel, 2> stereo = {{
    {"left", "Left", "left"},
    {"right", "Right", "right"},
}};
inline constexpr std::array<Channel, 6> surround51 = {{
    {"left", "Left", "left"},
    {"right", "Right", "right"},
    {"center", "Center", "center"},
    {"lfe", "LFE", "lowFrequencyEffects"},
    {"rear_left", "Rear Left", "rearLeft"},
    {"rear_right", "Rear Right", "rearRight"},
}};
inline constexpr std::array<Channel, 8> surround71 = {{
    {"left", "Left", "left"},
    {"right", "Right", "right"},
    {"center", "Center", "center"},
    {"lfe", "LFE", "lowFrequencyEffects"},
    {"rear_left", "Rear Left", "rearLeft"},
    {"rear_right", "Rear Right", "rearRight"},
    {"side_left", "Side Left", "sideLeft"},
    {"side_right", "Side Right", "sideRight"},
}};

} // namespace Speakers

/// Identifiers stay for good: sessions hold them. Nothing is served at that address.
#define PUFFGUARD_LV2_URI "https://puffguard.example/lv2/"

inline constexpr const char* stateUri = PUFFGUARD_LV2_URI "state";

inline constexpr std::array<Variant, 4> variants = {{
    {PUFFGUARD_LV2_URI "mono", "mono", "Mono", "MonoGroup", Speakers::mono},
    {PUFFGUARD_LV2_URI "stereo", "stereo", "Stereo", "StereoGroup", Speakers::stereo},
    {PUFFGUARD_LV2_URI "surround51",
     "surround51",
     "5.1",
     "FivePointOneGroup",
     Speakers::surround51},
    {PUFFGUARD_LV2_URI "surround71",
     "surround71",
     "7.1",
     "SevenPointOneGroup",
     Speakers::surround71},
}};

} // namespace Lv2

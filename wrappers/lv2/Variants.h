// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Layouts.h"

#include <array>
#include <cstdint>

namespace Lv2 {

/// A speaker, as port-groups.ttl names it.
struct Channel {
    const char* symbol; ///< end of the symbols of its ports
    const char* name;   ///< for people
    const char* designation;
};

constexpr Channel GetChannel(Wrapper::Speaker speaker)
{
    switch (speaker) {
    case Wrapper::Speaker::FrontLeft:
        return {"left", "Left", "left"};
    case Wrapper::Speaker::FrontRight:
        return {"right", "Right", "right"};
    case Wrapper::Speaker::FrontCentre:
        return {"center", "Center", "center"};
    case Wrapper::Speaker::LowFrequency:
        return {"lfe", "LFE", "lowFrequencyEffects"};
    case Wrapper::Speaker::BackLeft:
        return {"rear_left", "Rear Left", "rearLeft"};
    case Wrapper::Speaker::BackRight:
        return {"rear_right", "Rear Right", "rearRight"};
    case Wrapper::Speaker::SideLeft:
        return {"side_left", "Side Left", "sideLeft"};
    case Wrapper::Speaker::SideRight:
        break;
    }
    return {"side_right", "Side Right", "sideRight"};
}

/// One plug-in of the bundle. Its name for people is its layout's, added to the product's.
struct Variant {
    const char* uri;
    const char* symbol; ///< of its file
    const char* group;  ///< class of the groups of its audio ports
    const Wrapper::Layout* layout;

    constexpr uint32_t ChannelCount() const { return layout->ChannelCount(); }
};

/// Identifiers stay for good: sessions hold them. Nothing is served at that address.
#define PUFFGUARD_LV2_URI "https://puffguard.example/lv2/"

inline constexpr const char* StateUri = PUFFGUARD_LV2_URI "state";

inline constexpr std::array<Variant, 4> Variants = {{
    {PUFFGUARD_LV2_URI "mono", "mono", "MonoGroup", &Wrapper::Layouts::Mono},
    {PUFFGUARD_LV2_URI "stereo", "stereo", "StereoGroup", &Wrapper::Layouts::Stereo},
    {PUFFGUARD_LV2_URI "surround51",
     "surround51",
     "FivePointOneGroup",
     &Wrapper::Layouts::Surround51},
    {PUFFGUARD_LV2_URI "surround71",
     "surround71",
     "SevenPointOneGroup",
     &Wrapper::Layouts::Surround71},
}};

} // namespace Lv2

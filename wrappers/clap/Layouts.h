// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Abi.h"

#include <array>
#include <cstdint>
#include <span>

namespace Clap {

/// One set of channels that the main ports can have.
struct Layout {
    clap_id id;       ///< of its configuration; sessions hold it
    const char* name; ///< for people
    const char* portType;
    std::span<const uint8_t> speakers; ///< Abi::Speaker of each channel

    constexpr uint32_t ChannelCount() const { return static_cast<uint32_t>(speakers.size()); }
    constexpr uint64_t SpeakerMask() const
    {
        uint64_t mask = 0;
        for (const uint8_t speaker : speakers) {
            mask |= uint64_t{1} << speaker;
        }
        return mask;
    }
};

namespace Speakers {

// In the order of wave files.
inline constexpr std::array<uint8_t, 1> mono = {Abi::FrontCenter};
inline constexpr std::array<uint8_t, 2> stereo = {Abi::FrontLeft, Abi::FrontRight};
inline constexpr std::array<uint8_t, 6> surround51 = {Abi::FrontLeft,
                                                      Abi::FrontRight,
                                                      Abi::FrontCenter,
                                                      Abi::LowFrequency,
                                                      Abi::BackLeft,
                                                      Abi::BackRight};
inline constexpr std::array<uint8_t, 8> surround71 = {Abi::FrontLeft,
                                                      Abi::FrontRight,
                                                      Abi::FrontCenter,
                                                      Abi::LowFrequency,
                                                      Abi::BackLeft,
                                                      Abi::BackRight,
                                                      Abi::SideLeft,
                                                      Abi::SideRight};

} // namespace Speakers

inline constexpr std::array<Layout, 4> layouts = {{
    {1, "Mono", Abi::portMono, Speakers::mono},
    {2, "Stereo", Abi::portStereo, Speakers::stereo},
    {6, "5.1", Abi::portSurround, Speakers::surround51},
    {8, "7.1", Abi::portSurround, Speakers::surround71},
}};

/// What a new instance has until the host selects another.
inline constexpr const Layout& defaultLayout = layouts[1];

} // namespace Clap

// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace Wrapper {

enum class Speaker {
    FrontLeft,
    FrontRight,
    FrontCentre,
    LowFrequency,
    BackLeft,
    BackRight,
    SideLeft,
    SideRight
};

/// One set of channels that a plug-in offers to its hosts, in every format that names speakers.
struct Layout {
    const char* name;                  ///< for people
    std::span<const Speaker> speakers; ///< of each channel, in the order of wave files

    constexpr uint32_t ChannelCount() const { return static_cast<uint32_t>(speakers.size()); }
};

namespace Layouts {

/// The speakers of the largest layout; the others have the first of them.
inline constexpr std::array<Speaker, 8> AllSpeakers = {Speaker::FrontLeft,
                                                       Speaker::FrontRight,
                                                       Speaker::FrontCentre,
                                                       Speaker::LowFrequency,
                                                       Speaker::BackLeft,
                                                       Speaker::BackRight,
                                                       Speaker::SideLeft,
                                                       Speaker::SideRight};

inline constexpr std::span<const Speaker> Speakers = AllSpeakers;

inline constexpr Layout Mono = {"Mono", Speakers.subspan(2, 1)};
inline constexpr Layout Stereo = {"Stereo", Speakers.first(2)};
inline constexpr Layout Surround51 = {"5.1", Speakers.first(6)};
inline constexpr Layout Surround71 = {"7.1", Speakers};

/// All of them; a host that chooses none gets stereo.
inline constexpr std::array<const Layout*, 4> All = {&Mono, &Stereo, &Surround51, &Surround71};

} // namespace Layouts

} // namespace Wrapper

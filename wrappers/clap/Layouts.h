// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Abi.h"
#include "wrappers/common/Layouts.h"

#include <cstdint>

namespace Clap {

using Wrapper::Layout;

/// The number of a layout's configuration; sessions hold it.
constexpr clap_id GetId(const Layout& layout)
{
    return layout.ChannelCount();
}

constexpr const char* GetPortType(const Layout& layout)
{
    switch (layout.ChannelCount()) {
    case 1:
        return Abi::PortMono;
    case 2:
        return Abi::PortStereo;
    default:
        return Abi::PortSurround;
    }
}

constexpr uint8_t GetNumber(Wrapper::Speaker speaker)
{
    switch (speaker) {
    case Wrapper::Speaker::FrontLeft:
        return Abi::FrontLeft;
    case Wrapper::Speaker::FrontRight:
        return Abi::FrontRight;
    case Wrapper::Speaker::FrontCentre:
        return Abi::FrontCenter;
    case Wrapper::Speaker::LowFrequency:
        return Abi::LowFrequency;
    case Wrapper::Speaker::BackLeft:
        return Abi::BackLeft;
    case Wrapper::Speaker::BackRight:
        return Abi::BackRight;
    case Wrapper::Speaker::SideLeft:
        return Abi::SideLeft;
    case Wrapper::Speaker::SideRight:
        break;
    }
    return Abi::SideRight;
}

constexpr uint64_t GetSpeakerMask(const Layout& layout)
{
    uint64_t mask = 0;
    for (const Wrapper::Speaker speaker : layout.speakers) {
        mask |= uint64_t{1} << GetNumber(speaker);
    }
    return mask;
}

} // namespace Clap

// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

namespace Lv2 {

/// Which port has which index: the automatable parameters in their order, the latency, then the
/// audio inputs and outputs. What isn't automatable has no port, since a port is automatable by its
/// nature; the saved state holds it.
struct Ports {
    uint32_t parameters;
    uint32_t channels;

    constexpr uint32_t Latency() const { return parameters; }
    constexpr uint32_t Input(uint32_t channel) const { return parameters + 1 + channel; }
    constexpr uint32_t Output(uint32_t channel) const { return Input(channels) + channel; }
    constexpr uint32_t Count() const { return Output(channels); }
};

} // namespace Lv2

// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <optional>

/// The user's wishes about the latency that hosts are told.
struct DelaySettings {
    /// False: hosts are told 0, whatever the elements take.
    bool delayCompensationEnabled = true;
    /// Samples that hosts are told whatever the elements take.
    std::optional<uint32_t> frozenSystemDelay;
};

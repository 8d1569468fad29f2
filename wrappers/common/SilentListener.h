// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Listener.h"

namespace Wrapper {

/// For a wrapper that reports to nobody, such as one without controls.
class SilentListener final : public Listener {
public:
    void OnLatencyChanged(Side /*side*/, uint32_t /*samples*/) noexcept override {}
    void OnGestureBegun(uint32_t /*parameter*/) noexcept override {}
    void OnParameterChanged(uint32_t /*parameter*/, float /*normalised*/) noexcept override {}
    void OnGestureEnded(uint32_t /*parameter*/) noexcept override {}
    void OnStateChanged() noexcept override {}
};

} // namespace Wrapper

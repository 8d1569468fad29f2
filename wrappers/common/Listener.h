// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

namespace Wrapper {

/// Whose view, or whose call: values and latency have one for audio and one for the UI. What comes
/// from the UI reaches the audio with the next block.
enum class Side : uint32_t { Process = 0, UI = 1 };

/// Notifications of an instance to its wrapper. Calls come from within a call of the instance, on
/// the same thread, or from the module's own timer thread; they neither wait for another thread nor
/// throw, nor end the instance. The first may come before Instance::Create() returns, the last
/// while the instance is destroyed.
class Listener {
public:
    /// The latency that `side` sees is `samples` now. May come during processing. [any]
    virtual void OnLatencyChanged(Side side, uint32_t samples) noexcept = 0;

    // What the user does in the editor. Gestures enclose changes. [any]
    virtual void OnGestureBegun(uint32_t parameter) noexcept = 0;
    virtual void OnParameterChanged(uint32_t parameter, float normalised) noexcept = 0;
    virtual void OnGestureEnded(uint32_t parameter) noexcept = 0;

    /// The user has changed what SaveState() gives. [any]
    virtual void OnStateChanged() noexcept = 0;

protected:
    ~Listener() = default;
};

} // namespace Wrapper

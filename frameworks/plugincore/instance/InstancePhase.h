// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>

/// What an instance is at. Set by the instance's own calls, read on any thread. [any]
struct InstancePhase {
    std::atomic<bool> reconfiguring{true}; ///< until construction is done, then during a new format
    std::atomic<bool> initialized{false};  ///< from Initialize() to Terminate(): its tick works
    /// The signal path rests while it is made anew or settles, or for good.
    std::atomic<bool> suspended{false};
    std::atomic<bool> switching{false}; ///< a new format is being taken, under both locks
    /// Changes and gestures are reported to the host.
    std::atomic<bool> automationEnabled{true};
    /// A change on the process side has left something to the tick, which exchanges the flag.
    std::atomic<bool> processDirty{false};
};

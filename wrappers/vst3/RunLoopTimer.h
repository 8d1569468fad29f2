// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/vst3/HostReference.h"
#include "wrappers/vst3/Object.h"

#include <travesty/view.h>

#include <cstdint>
#include <functional>

namespace Vst3 {

/// Has a function called on the host's UI thread again and again. An object of its own, so that a
/// host that keeps it longer than it should calls nobody. All calls come from the UI thread.
class RunLoopTimer final : public Object, public Interface {
public:
    explicit RunLoopTimer(std::function<void()> newOnTick);

    /// Runs unless the loop refuses.
    void Start(HostReference<v3_run_loop> newLoop, uint64_t milliseconds);
    void Stop();
    bool IsRunning() const { return static_cast<bool>(loop); }

private:
    ~RunLoopTimer() override = default;
    Interface* Find(const uint8_t* iid) noexcept override;
    void OnTimer() noexcept;

    static const v3_timer_handler_cpp Functions;

    std::function<void()> onTick;
    HostReference<v3_run_loop> loop;
};

} // namespace Vst3

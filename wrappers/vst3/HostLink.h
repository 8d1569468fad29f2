// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/vst3/HostReference.h"
#include "wrappers/vst3/RunLoopTimer.h"

#include <travesty/edit_controller.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>

namespace Vst3 {

/// What the host offers the plug-in, all of it to be called on its UI thread only, and a timer
/// there where the host has a run loop. All calls but IsUiThread() come from the UI thread.
///
/// Which thread that is shows from the calls that no host makes from elsewhere: it needn't be the
/// thread that the plug-in was made on.
class HostLink {
public:
    /// `onTick` is called some ten times a second on the UI thread, if the host lets it.
    explicit HostLink(std::function<void()> onTick);
    ~HostLink();
    HostLink(const HostLink&) = delete;
    HostLink& operator=(const HostLink&) = delete;
    HostLink(HostLink&&) = delete;
    HostLink& operator=(HostLink&&) = delete;

    /// Looks for a run loop in the host's context, which may be null.
    void SetContext(v3_funknown** context);
    /// Null takes it away; some hosts have their run loop here, and it goes with the handler.
    void SetHandler(v3_component_handler** newHandler);
    void Disconnect();

    void MarkUiThread() { uiThread = std::this_thread::get_id(); }
    bool IsUiThread() const { return uiThread.load() == std::this_thread::get_id(); } ///< [any]

    bool HasHandler() const { return static_cast<bool>(handler); }
    // Without a handler these do nothing.
    void BeginEdit(v3_param_id id) const;
    void PerformEdit(v3_param_id id, double normalised) const;
    void EndEdit(v3_param_id id) const;
    void Restart(int32_t flags) const;
    void SetDirty() const;

private:
    void StartTimer(HostReference<v3_run_loop> loop);

    struct Releaser {
        void operator()(RunLoopTimer* made) const;
    };

    std::atomic<std::thread::id> uiThread;
    HostReference<v3_component_handler> handler;
    HostReference<v3_component_handler2> handler2;
    std::unique_ptr<RunLoopTimer, Releaser> timer;
    bool isLoopOfHandler = false; // that the timer runs in
};

} // namespace Vst3

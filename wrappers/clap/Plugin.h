// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Gestures.h"
#include "wrappers/clap/Host.h"
#include "wrappers/clap/HostGestures.h"
#include "wrappers/clap/Layouts.h"
#include "wrappers/clap/Parameters.h"
#include "wrappers/common/HostBlock.h"
#include "wrappers/common/Instance.h"
#include "wrappers/common/Realtime.h"

#include <clap/plugin.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace Clap {

/// One plug-in in a host of this format. Threads are the format's: [main], and [process] for its
/// audio thread. Calls at a time that the rules forbid do nothing.
class Plugin final : private Wrapper::Listener {
public:
    /// `table` are the functions that the host calls it by; `newHost` outlives the plug-in. [any]
    Plugin(const clap_plugin_t& table,
           std::shared_ptr<const Wrapper::Module> newModule,
           const clap_host_t* newHost);

    /// What the host holds.
    const clap_plugin_t& GetFunctions() const noexcept { return functions; }

    /// False, after a line in the host's log, when the module makes no instance. Until it has been
    /// called only the end may follow. [main]
    bool Init();
    bool IsReady() const noexcept { return isReady; }

    /// Takes the rate, in Hz, and the selected layout. False when they can't be served. Ends an
    /// earlier activity that the host has forgotten. [main]
    bool Activate(double newRate);
    void Deactivate();                                  ///< [main]
    bool IsActive() const noexcept { return isActive; } ///< [any]
    /// Forgets the signal. [process]
    void Reset() noexcept WRAPPER_NONBLOCKING;
    /// Events cut the block. An error, and the outputs as they are, while not active. [process]
    clap_process_status Process(const clap_process_t& process) noexcept WRAPPER_NONBLOCKING;
    /// Does what other threads have asked for. [main]
    void OnMainThread();

    const Parameters& GetParameters() const noexcept { return *parameters; }
    /// Events as of a block without audio. [process] while active, else [main]
    void Flush(const clap_input_events_t* in, const clap_output_events_t* out) noexcept;

    /// Empty when there is none. [main]
    std::vector<uint8_t> Save();
    /// False, and nothing changed, when the bytes are no session. [main]
    bool Load(std::span<const uint8_t> session);

    /// Samples. While active it is that of the begin, as the format wants it: one that has changed
    /// since then comes with the restart that the host is asked for. [main; any while active]
    uint32_t GetLatency() const noexcept;
    /// How long sound comes out after the end of the input, in samples. The format counts it from
    /// the end of the input, whatever the latency: what a host cuts off earlier is sound that still
    /// was on its way. Repaired sound ends with it, too. [main; any while active]
    uint32_t GetTail() const noexcept { return GetLatency(); }

    const Layout& GetLayout() const noexcept { return *layout; }
    /// False while active, and for an id that isn't in the list. [main]
    bool SelectLayout(clap_id id);

private:
    // From the instance.
    void OnLatencyChanged(Wrapper::Side side, uint32_t samples) noexcept override;
    void OnGestureBegun(uint32_t parameter) noexcept override;
    void OnParameterChanged(uint32_t parameter, float normalised) noexcept override;
    void OnGestureEnded(uint32_t parameter) noexcept override;
    void OnStateChanged() noexcept override;

    void Tell(const Gesture& gesture) noexcept;
    void SendGestures(const clap_output_events_t* out) noexcept;
    void RunEvents(const clap_input_events_t* events,
                   Wrapper::Side side,
                   Wrapper::HostBlock& block) noexcept;
    void HearGesture(const clap_event_param_gesture_t& event, Wrapper::Side side) noexcept;

    clap_plugin_t functions;
    const std::shared_ptr<const Wrapper::Module> module;
    Host host;
    std::unique_ptr<Parameters> parameters;
    std::atomic<bool> isReady{false};
    std::atomic<bool> isActive{false};

    std::optional<Gestures> gestures; // from the begin of readiness on, as the next
    std::optional<HostGestures> hostGestures;
    std::atomic<uint32_t> toldLatency{0};
    std::atomic<bool> isTailNew{false};
    std::atomic<bool> isStateChanged{false};
    std::atomic<bool> areGesturesLost{false};

    // Of the main thread; the audio thread reads them while the plug-in is active.
    double rate = 48000;
    const Layout* layout = &Wrapper::Layouts::Stereo;
    uint32_t askedLatency = 0; // what the host is to restart for; the reported one when nothing

    std::unique_ptr<Wrapper::Instance> instance; // last: until its end it notifies of changes
};

} // namespace Clap

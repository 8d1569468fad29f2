// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/Abi.h"

#include <clap/entry.h>
#include <clap/ext/audio-ports.h>
#include <clap/ext/latency.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>
#include <clap/ext/thread-check.h>
#include <clap/plugin-factory.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <thread>
#include <vector>

/// A small host of the built plug-in that keeps the format's rules of threads and sees to it that
/// the plug-in keeps them too.
namespace ClapHost {

inline constexpr const char* pluginId = "example.puffguard.puffguard";

/// The built file's entry, loaded at the first call; null when it can't be.
const clap_plugin_entry_t* Entry();
/// Its init() with the file's path.
bool BeginUse();
/// Its factory, from there on.
const clap_plugin_factory_t* Factory();

/// Makes the thread the audio thread for the object's life.
class AudioScope {
public:
    AudioScope();
    ~AudioScope();
    AudioScope(const AudioScope&) = delete;
    AudioScope& operator=(const AudioScope&) = delete;
};

/// What a plug-in sees of its host.
class Host {
public:
    enum class Phase { Creating, Inactive, Activating, Active };

    Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    const clap_host_t* Get() const { return &host; }
    /// Makes the thread the main thread, until another one is made it.
    void BecomeMain() { mainThread = std::this_thread::get_id(); }
    /// Rules that the plug-in has broken so far.
    std::vector<std::string> GetFaults() const;

    bool offersExtensions = true;
    std::atomic<Phase> phase{Phase::Inactive};
    std::vector<std::string> logged;
    std::atomic<bool> isCallbackWanted{false};
    // How often each was called.
    std::atomic<uint32_t> restarts{0};
    std::atomic<uint32_t> flushes{0};
    std::atomic<uint32_t> latencyChanges{0};
    std::atomic<uint32_t> tailChanges{0};
    std::atomic<uint32_t> dirtyMarks{0};
    std::atomic<uint32_t> valueRescans{0};
    std::atomic<uint32_t> portRescans{0};

private:
    static Host& Of(const clap_host_t* host) { return *static_cast<Host*>(host->host_data); }
    const void* Find(const char* id);
    void Check(bool isAllowed, const char* call);
    bool IsMain() const;

    std::atomic<std::thread::id> mainThread{std::this_thread::get_id()};
    clap_host_t host;
    mutable std::mutex mutex;
    std::vector<std::string> faults; // guarded by the mutex
};

/// Events for the plug-in. Those that are added at one time keep their order.
class InputEvents {
public:
    InputEvents();
    InputEvents(const InputEvents&) = delete;
    InputEvents& operator=(const InputEvents&) = delete;

    void AddValue(uint32_t time,
                  clap_id id,
                  double value,
                  uint16_t space = CLAP_CORE_EVENT_SPACE_ID,
                  uint16_t type = CLAP_EVENT_PARAM_VALUE);
    void AddTransport(uint32_t time, std::optional<double> seconds);
    const clap_input_events_t* Get() const { return &list; }

    static clap_event_transport_t MakeTransport(uint32_t time, std::optional<double> seconds);

private:
    union Event {
        clap_event_header_t header;
        clap_event_param_value_t value;
        clap_event_transport_t transport;
    };
    std::vector<Event> events;
    clap_input_events_t list;
};

/// Events of the plug-in, as texts: "begin 1", "1 = 0.5", "end 1" by parameter id.
class OutputEvents {
public:
    OutputEvents();
    OutputEvents(const OutputEvents&) = delete;
    OutputEvents& operator=(const OutputEvents&) = delete;

    const clap_output_events_t* Get() const { return &list; }

    std::vector<std::string> texts;
    size_t capacity = SIZE_MAX; ///< further ones are refused

private:
    clap_output_events_t list;
};

/// One plug-in from create_plugin() to destroy(). Whichever thread calls is the main thread for it,
/// but in calls that belong to audio.
class Plugin {
public:
    /// Creates and initialises.
    explicit Plugin(Host& newHost);
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    explicit operator bool() const { return isInitialised; }
    const clap_plugin_t* Get() const { return plugin; }

    template <typename Extension>
    const Extension* Find(const char* id) const
    {
        return static_cast<const Extension*>(plugin->get_extension(plugin, id));
    }

    bool Activate(double rate);
    void Deactivate();
    /// Calls on_main_thread() when the plug-in wants it.
    void Idle();
    /// In 32 bits; null channels are passed on, null lists mean no port.
    clap_process_status Process(const float* const* inputs,
                                float* const* outputs,
                                uint32_t channels,
                                uint32_t frames,
                                const InputEvents* in = nullptr,
                                const OutputEvents* out = nullptr,
                                const clap_event_transport_t* transport = nullptr);
    void Reset();
    /// On the thread that the format wants for it.
    void Flush(const InputEvents* in, const OutputEvents* out);
    bool SelectConfig(clap_id id);

    uint32_t GetLatency() const;
    uint32_t CountParameters() const;
    clap_param_info_t Describe(uint32_t index) const;
    double GetValue(clap_id id) const;

    /// `piece` is the most that one call of a stream gives or takes. Empty when saving fails.
    std::vector<uint8_t> Save(uint64_t piece = UINT64_MAX) const;
    bool Load(std::span<const uint8_t> bytes, uint64_t piece = UINT64_MAX);

private:
    Host& host;
    const clap_plugin_t* const plugin;
    bool isInitialised = false;
};

/// A session of this plug-in that holds a state of the module.
std::vector<uint8_t> MakeSession(std::span<const uint8_t> state, bool isBypassed = false);

} // namespace ClapHost

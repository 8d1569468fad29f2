// SPDX-License-Identifier: ISC
#pragma once

#include "tests/contract/support/FormatHost.h"
#include "tests/contract/support/HostParts.h"
#include "wrappers/clap/Abi.h"

#include <clap/entry.h>
#include <clap/ext/audio-ports.h>
#include <clap/ext/latency.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>
#include <clap/ext/thread-check.h>
#include <clap/plugin-factory.h>

#include <atomic>
#include <mutex>
#include <random>
#include <string>
#include <thread>

/// A small host of the built plug-in that keeps the format's rules of threads and sees to it that
/// the plug-in keeps them too.
namespace ClapHost {

using Audio = std::vector<std::vector<float>>;

inline constexpr const char* PluginId = "example.puffguard.puffguard";

/// From the entry's init() to its deinit(), in a file that is loaded for it.
class Use {
public:
    Use();
    ~Use();
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    /// False when init() fails.
    explicit operator bool() const { return hasBegun; }
    const clap_plugin_entry_t* GetEntry() const { return entry; }
    /// Null without a factory.
    const clap_plugin_factory_t* GetFactory() const;

private:
    const Contract::Library library;
    const clap_plugin_entry_t* const entry;
    const bool hasBegun;
};

/// Makes the thread the audio thread for the object's life.
class AudioScope {
public:
    AudioScope();
    ~AudioScope();
    AudioScope(const AudioScope&) = delete;
    AudioScope& operator=(const AudioScope&) = delete;
};

/// What a plug-in sees of its host. Rules that it breaks fail the test.
class Host {
public:
    enum class Phase { Creating, Inactive, Activating, Active };

    Host();
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    const clap_host_t* Get() const { return &host; }
    /// Makes the thread the main thread, until another one is made it.
    void BecomeMain() { mainThread = std::this_thread::get_id(); }
    /// Keeps a rule that is broken unless `isAllowed`.
    void Check(bool isAllowed, const char* rule);

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
    bool IsMain() const;

    std::atomic<std::thread::id> mainThread{std::this_thread::get_id()};
    clap_host_t host;
    std::mutex mutex;
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

/// A transport that goes on, jumps and loops, stands still, is missing or holds rubbish.
class AnyTransport {
public:
    /// Of the next block; null where there is none. Some bring an event of it, too.
    const clap_event_transport_t* Next(uint32_t frames, InputEvents& events);

private:
    std::optional<double> AnyTime();

    std::mt19937 engine{1};
    clap_event_transport_t transport = InputEvents::MakeTransport(0, 0.0);
};

/// One plug-in from create_plugin() to destroy(). Whichever thread calls is the main thread for it,
/// but in calls that belong to audio. Values of SetParameter() are events of the next block, or go
/// in by themselves when it has no frames.
class Plugin final : public Contract::FormatHost {
public:
    /// Creates and initialises.
    explicit Plugin(std::shared_ptr<Host> newHost = std::make_shared<Host>(),
                    uint32_t newChannels = 2);
    ~Plugin() override;

    explicit operator bool() const { return isInitialised; }
    const clap_plugin_t* Get() const { return plugin; }

    template <typename Extension>
    const Extension* Find(const char* id) const
    {
        return static_cast<const Extension*>(plugin->get_extension(plugin, id));
    }

    /// In 32 bits; null channels are passed on, null lists mean no port.
    clap_process_status Send(const float* const* inputs,
                             float* const* outputs,
                             uint32_t frames,
                             const InputEvents* in = nullptr,
                             const OutputEvents* out = nullptr,
                             const clap_event_transport_t* transport = nullptr);
    /// All of it in one block.
    Audio Send(Audio audio, const InputEvents* in = nullptr);
    /// On the thread that the format wants for it.
    void Flush(const InputEvents* in, const OutputEvents* out);
    bool SelectConfig(clap_id id);

    clap_param_info_t Describe(uint32_t index) const;
    double GetValue(clap_id id) const;

    bool Activate(double rate, uint32_t longestBlock = 65536) override;
    void Deactivate() override;
    /// The transport is of no account in the audio.
    void Process(const float* const* inputs, float* const* outputs, uint32_t frames) override;
    void Reset() override;
    uint32_t GetLatency() override;
    std::optional<uint32_t> CountLatencyReports() override { return latencyReports; }
    /// Calls on_main_thread() when the plug-in wants it.
    void Idle() override;
    uint32_t CountParameters() override;
    void SetParameter(uint32_t index, float normalised) override;
    std::optional<float> GetParameter(uint32_t index) override;
    void LimitStreams(uint32_t bytes) override { streamLimit = bytes; }
    std::vector<uint8_t> Save() override;
    bool Load(std::span<const uint8_t> bytes) override;
    std::vector<uint8_t> MakeSession(std::span<const uint8_t> chunk) override
    {
        return Contract::MakeHeadedSession(chunk);
    }

private:
    const Use use;
    const std::shared_ptr<Host> host;
    const uint32_t channels;
    const clap_plugin_t* const plugin;
    bool isInitialised = false;
    AnyTransport transport; // of the audio thread
    Contract::WaitingValues waiting;
    uint32_t streamLimit = UINT32_MAX;
    uint32_t latencyReports = 0;
    bool isRestartDue = false;
};

} // namespace ClapHost

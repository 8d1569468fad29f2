// SPDX-License-Identifier: ISC
#include "tests/wrappers/clap/support/ClapHost.h"

#include <gtest/gtest.h>

#include <string_view>

namespace ClapHost {

namespace {

thread_local bool isAudioThread = false;

constexpr uint32_t ChannelFlags =
    CLAP_AUDIO_PORTS_RESCAN_CHANNEL_COUNT | CLAP_AUDIO_PORTS_RESCAN_PORT_TYPE;

} // namespace

Use::Use()
    : library(PUFFGUARD_CLAP)
    , entry(library.Find<const clap_plugin_entry_t*>("clap_entry"))
    , hasBegun(entry != nullptr && entry->init(PUFFGUARD_CLAP))
{
}

Use::~Use()
{
    if (hasBegun) {
        entry->deinit();
    }
}

const clap_plugin_factory_t* Use::GetFactory() const
{
    const void* const factory =
        entry != nullptr ? entry->get_factory(CLAP_PLUGIN_FACTORY_ID) : nullptr;
    return static_cast<const clap_plugin_factory_t*>(factory);
}

AudioScope::AudioScope()
{
    isAudioThread = true;
}

AudioScope::~AudioScope()
{
    isAudioThread = false;
}

Host::Host()
    : host{CLAP_VERSION,
           this,
           "test",
           "test",
           "",
           "1",
           [](const clap_host_t* self, const char* id) { return Of(self).Find(id); },
           [](const clap_host_t* self) {
               Of(self).Check(true, "request_restart");
               ++Of(self).restarts;
           },
           [](const clap_host_t* self) { Of(self).Check(true, "request_process"); },
           [](const clap_host_t* self) {
               Of(self).Check(true, "request_callback");
               Of(self).isCallbackWanted = true;
           }}
{
}

Host::~Host()
{
    for (const std::string& fault : faults) {
        ADD_FAILURE() << "the plug-in broke a rule: " << fault;
    }
}

bool Host::IsMain() const
{
    return std::this_thread::get_id() == mainThread && !isAudioThread;
}

void Host::Check(bool isAllowed, const char* rule)
{
    if (!isAllowed || phase == Phase::Creating) {
        const std::scoped_lock guard(mutex);
        faults.emplace_back(rule);
    }
}

const void* Host::Find(const char* id)
{
    static constexpr clap_host_latency_t Latency = {[](const clap_host_t* self) {
        Of(self).Check(Of(self).IsMain() && Of(self).phase == Phase::Activating, "latency changed");
        ++Of(self).latencyChanges;
    }};
    static constexpr Clap::Abi::HostTail Tail = {[](const clap_host_t* self) {
        Of(self).Check(isAudioThread && Of(self).phase == Phase::Active, "tail changed");
        ++Of(self).tailChanges;
    }};
    static constexpr clap_host_params_t Params = {
        [](const clap_host_t* self, clap_param_rescan_flags flags) {
            Of(self).Check(Of(self).IsMain() && flags == CLAP_PARAM_RESCAN_VALUES, "params rescan");
            ++Of(self).valueRescans;
        },
        [](const clap_host_t* self, clap_id, clap_param_clear_flags) {
            Of(self).Check(false, "params clear");
        },
        [](const clap_host_t* self) {
            Of(self).Check(!isAudioThread, "request_flush");
            ++Of(self).flushes;
        }};
    static constexpr clap_host_state_t State = {[](const clap_host_t* self) {
        Of(self).Check(Of(self).IsMain(), "mark_dirty");
        ++Of(self).dirtyMarks;
    }};
    static constexpr clap_host_audio_ports_t Ports = {
        [](const clap_host_t* self, uint32_t flag) {
            Of(self).Check(Of(self).IsMain(), "is_rescan_flag_supported");
            return (flag & ChannelFlags) != 0;
        },
        [](const clap_host_t* self, uint32_t flags) {
            Of(self).Check(Of(self).IsMain() && Of(self).phase == Phase::Inactive &&
                               (flags & ~ChannelFlags) == 0,
                           "ports rescan");
            ++Of(self).portRescans;
        }};
    static constexpr clap_host_thread_check_t Threads = {
        [](const clap_host_t* self) { return Of(self).IsMain(); },
        [](const clap_host_t*) { return isAudioThread; }};
    static constexpr Clap::Abi::HostLog Log = {
        [](const clap_host_t* self, int32_t, const char* text) {
            const std::scoped_lock guard(Of(self).mutex);
            Of(self).logged.emplace_back(text);
        }};
    const std::pair<std::string_view, const void*> tables[] = {{CLAP_EXT_AUDIO_PORTS, &Ports},
                                                               {CLAP_EXT_LATENCY, &Latency},
                                                               {CLAP_EXT_PARAMS, &Params},
                                                               {CLAP_EXT_STATE, &State},
                                                               {CLAP_EXT_THREAD_CHECK, &Threads},
                                                               {Clap::Abi::ExtLog, &Log},
                                                               {Clap::Abi::ExtTail, &Tail}};
    Check(true, "get_extension");
    for (const auto& [name, table] : tables) {
        if (offersExtensions && name == id) {
            return table;
        }
    }
    return nullptr;
}

InputEvents::InputEvents()
    : list{this,
           [](const clap_input_events_t* self) {
               return static_cast<uint32_t>(static_cast<InputEvents*>(self->ctx)->events.size());
           },
           [](const clap_input_events_t* self, uint32_t index) -> const clap_event_header_t* {
               return &static_cast<InputEvents*>(self->ctx)->events[index].header;
           }}
{
}

void InputEvents::AddValue(uint32_t time, clap_id id, double value, uint16_t space, uint16_t type)
{
    Event event{};
    event.value = {{sizeof event.value, time, space, type, 0}, id, nullptr, -1, -1, -1, -1, value};
    events.push_back(event);
}

void InputEvents::AddTransport(uint32_t time, std::optional<double> seconds)
{
    Event event{};
    event.transport = MakeTransport(time, seconds);
    events.push_back(event);
}

clap_event_transport_t InputEvents::MakeTransport(uint32_t time, std::optional<double> seconds)
{
    clap_event_transport_t transport{};
    transport.header = {sizeof transport, time, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_TRANSPORT, 0};
    transport.flags = CLAP_TRANSPORT_HAS_SECONDS_TIMELINE;
    if (seconds) {
        transport.flags |= CLAP_TRANSPORT_IS_PLAYING;
        transport.song_pos_seconds =
            static_cast<clap_sectime>(*seconds * static_cast<double>(CLAP_SECTIME_FACTOR));
    }
    return transport;
}

OutputEvents::OutputEvents()
    : list{this, [](const clap_output_events_t* self, const clap_event_header_t* event) {
               auto& out = *static_cast<OutputEvents*>(self->ctx);
               if (out.texts.size() >= out.capacity) {
                   return false;
               }
               const auto id = std::to_string(
                   reinterpret_cast<const clap_event_param_gesture_t*>(event)->param_id);
               switch (event->type) {
               case CLAP_EVENT_PARAM_GESTURE_BEGIN:
                   out.texts.push_back("begin " + id);
                   break;
               case CLAP_EVENT_PARAM_GESTURE_END:
                   out.texts.push_back("end " + id);
                   break;
               case CLAP_EVENT_PARAM_VALUE: {
                   const auto& value = *reinterpret_cast<const clap_event_param_value_t*>(event);
                   out.texts.push_back(std::to_string(value.param_id) + " = " +
                                       std::to_string(value.value));
                   break;
               }
               default:
                   out.texts.emplace_back("?");
               }
               return true;
           }}
{
}

} // namespace ClapHost

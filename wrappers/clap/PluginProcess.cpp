// SPDX-License-Identifier: ISC
// The way of a block, and of the events that come with it, through a plug-in.
#include "wrappers/clap/Plugin.h"

#include <algorithm>
#include <optional>
#include <span>

namespace Clap {

namespace {

// The first port's channels; none where there is none of single precision, the only one offered.
std::span<float* const> ChannelsOf(const clap_audio_buffer_t* ports, uint32_t portCount) noexcept
{
    if (ports == nullptr || portCount == 0 || ports->data32 == nullptr) {
        return {};
    }
    return {ports->data32, ports->channel_count};
}

// None while the transport stands still: then no sample has a place of its own in it.
std::optional<double> PositionIn(const clap_event_transport_t& transport, double rate) noexcept
{
    constexpr uint32_t Wanted = CLAP_TRANSPORT_HAS_SECONDS_TIMELINE | CLAP_TRANSPORT_IS_PLAYING;
    if ((transport.flags & Wanted) != Wanted) {
        return std::nullopt;
    }
    return static_cast<double>(transport.song_pos_seconds) /
           static_cast<double>(CLAP_SECTIME_FACTOR) * rate;
}

// Whether it is one of the user's touches in a view of the host's own, which changes no sound.
bool IsGesture(const clap_event_header_t& event) noexcept
{
    return event.space_id == CLAP_CORE_EVENT_SPACE_ID &&
           (event.type == CLAP_EVENT_PARAM_GESTURE_BEGIN ||
            event.type == CLAP_EVENT_PARAM_GESTURE_END);
}

// Whether it is an event that acts on the audio. Those of other spaces look alike and mean
// something else.
bool IsOurs(const clap_event_header_t& event) noexcept
{
    return event.space_id == CLAP_CORE_EVENT_SPACE_ID &&
           (event.type == CLAP_EVENT_PARAM_VALUE || event.type == CLAP_EVENT_TRANSPORT);
}

clap_event_header_t Header(uint32_t size, uint16_t type) noexcept
{
    return {size, 0, CLAP_CORE_EVENT_SPACE_ID, type, 0};
}

bool Push(const clap_output_events_t& out,
          const Gesture& gesture,
          const Parameters& parameters) noexcept
{
    const clap_id id = parameters.GetId(gesture.parameter);
    if (gesture.kind == Gesture::Kind::Change) {
        clap_event_param_value_t event = {};
        event.header = Header(sizeof event, CLAP_EVENT_PARAM_VALUE);
        event.param_id = id;
        event.note_id = -1;
        event.port_index = -1;
        event.channel = -1;
        event.key = -1;
        event.value = parameters.GetValue(gesture.parameter);
        return out.try_push(&out, &event.header);
    }
    const bool isBegin = gesture.kind == Gesture::Kind::Begin;
    clap_event_param_gesture_t event = {};
    event.header = Header(sizeof event,
                          isBegin ? CLAP_EVENT_PARAM_GESTURE_BEGIN : CLAP_EVENT_PARAM_GESTURE_END);
    event.param_id = id;
    return out.try_push(&out, &event.header);
}

} // namespace

clap_process_status Plugin::Process(const clap_process_t& process) noexcept WRAPPER_NONBLOCKING
{
    if (!isActive) {
        return CLAP_PROCESS_ERROR;
    }
    if (isTailNew.exchange(false)) {
        host.TailChanged();
    }
    SendGestures(process.out_events);
    Wrapper::HostBlock block(*instance,
                             ChannelsOf(process.audio_inputs, process.audio_inputs_count),
                             ChannelsOf(process.audio_outputs, process.audio_outputs_count),
                             process.frames_count);
    if (process.transport != nullptr) {
        block.SetPosition(PositionIn(*process.transport, rate));
    }
    parameters->BeginBlock(block);
    RunEvents(process.in_events, Wrapper::Side::Process, block);
    block.RunUntil(block.GetFrames());
    if (process.audio_outputs != nullptr && process.audio_outputs_count > 0) {
        process.audio_outputs->constant_mask = 0; // the host's memory may still hold something else
    }
    return block.IsRefused() ? CLAP_PROCESS_ERROR : CLAP_PROCESS_TAIL;
}

void Plugin::Flush(const clap_input_events_t* in, const clap_output_events_t* out) noexcept
{
    SendGestures(out);
    Wrapper::HostBlock block(*instance, {}, {}, 0);
    RunEvents(in, isActive ? Wrapper::Side::Process : Wrapper::Side::UI, block);
}

void Plugin::RunEvents(const clap_input_events_t* events,
                       Wrapper::Side side,
                       Wrapper::HostBlock& block) noexcept
{
    const uint32_t count = events != nullptr ? events->size(events) : 0;
    for (uint32_t i = 0; i < count; ++i) {
        const clap_event_header_t* const event = events->get(events, i);
        if (event != nullptr && IsGesture(*event)) {
            HearGesture(*reinterpret_cast<const clap_event_param_gesture_t*>(event), side);
        }
        if (event == nullptr || !IsOurs(*event)) {
            continue;
        }
        const uint32_t time = std::min(event->time, block.GetFrames());
        block.RunUntil(time);
        if (event->type == CLAP_EVENT_TRANSPORT) {
            const auto& transport = *reinterpret_cast<const clap_event_transport_t*>(event);
            std::optional<double> position = PositionIn(transport, rate);
            if (position) {
                // Of the event's own place: a UI change may have led the block beyond it.
                *position -= time;
            }
            block.SetPosition(position);
            continue;
        }
        const auto& change = *reinterpret_cast<const clap_event_param_value_t*>(event);
        if (const std::optional<uint32_t> index = parameters->Find(change.param_id)) {
            parameters->Set(side, *index, change.value);
        }
    }
}

void Plugin::HearGesture(const clap_event_param_gesture_t& event, Wrapper::Side side) noexcept
{
    const std::optional<uint32_t> index = parameters->Find(event.param_id);
    if (!index) {
        return;
    }
    if (event.header.type == CLAP_EVENT_PARAM_GESTURE_BEGIN) {
        hostGestures->Begin(*index, instance->GetParameter(side, *index));
    } else if (hostGestures->End(*index)) {
        host.RequestCallback();
    }
}

void Plugin::SendGestures(const clap_output_events_t* out) noexcept
{
    if (out != nullptr) {
        gestures->Send([&](const Gesture& gesture) { return Push(*out, gesture, *parameters); });
    }
}

} // namespace Clap

// SPDX-License-Identifier: ISC
// The way of a block, and of the events that come with it, through a plug-in.
#include "wrappers/clap/Plugin.h"

#include <algorithm>
#include <array>

namespace Clap {

namespace {

using InputChannels = std::array<const float*, Wrapper::BlockBuffers::MaxChannels>;
using OutputChannels = std::array<float*, Wrapper::BlockBuffers::MaxChannels>;

// The first port's channels; null where there is none of single precision, the only one offered.
template <typename Channels>
Channels
ChannelsOf(const clap_audio_buffer_t* ports, uint32_t portCount, uint32_t channels) noexcept
{
    Channels result{};
    if (ports != nullptr && portCount > 0 && ports->data32 != nullptr) {
        std::copy_n(ports->data32, std::min(ports->channel_count, channels), result.begin());
    }
    return result;
}

// None while the transport stands still: then no sample has a place of its own in it.
std::optional<double> PositionIn(const clap_event_transport_t& transport, double rate) noexcept
{
    constexpr uint32_t wanted = CLAP_TRANSPORT_HAS_SECONDS_TIMELINE | CLAP_TRANSPORT_IS_PLAYING;
    if ((transport.flags & wanted) != wanted) {
        return std::nullopt;
    }
    return static_cast<double>(transport.song_pos_seconds) /
           static_cast<double>(CLAP_SECTIME_FACTOR) * rate;
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

/// What is left to do of a block.
struct Plugin::Block {
    InputChannels inputs{};
    OutputChannels outputs{};
    uint32_t frames = 0;
    uint32_t done = 0;
    std::optional<double> origin; ///< position of the block's first frame
    Wrapper::Side side = Wrapper::Side::Process;
    bool isRefused = false;
};

clap_process_status Plugin::Process(const clap_process_t& process) noexcept WRAPPER_NONBLOCKING
{
    if (!isActive) {
        return CLAP_PROCESS_ERROR;
    }
    if (isTailNew.exchange(false)) {
        host.TailChanged();
    }
    SendGestures(process.out_events);
    const uint32_t channels = instance->GetChannels();
    Block block;
    block.inputs =
        ChannelsOf<InputChannels>(process.audio_inputs, process.audio_inputs_count, channels);
    block.outputs =
        ChannelsOf<OutputChannels>(process.audio_outputs, process.audio_outputs_count, channels);
    block.frames = process.frames_count;
    if (process.transport != nullptr) {
        block.origin = PositionIn(*process.transport, rate);
    }
    if (block.frames > 0 && parameters->MustBeginBlock()) {
        RunUntil(1, block);
        parameters->Restate();
    }
    RunEvents(process.in_events, block);
    RunUntil(block.frames, block);
    if (process.audio_outputs != nullptr && process.audio_outputs_count > 0) {
        process.audio_outputs->constant_mask = 0; // the host's memory may still say something else
    }
    return block.isRefused ? CLAP_PROCESS_ERROR : CLAP_PROCESS_TAIL;
}

void Plugin::Flush(const clap_input_events_t* in, const clap_output_events_t* out) noexcept
{
    SendGestures(out);
    Block block;
    block.side = isActive ? Wrapper::Side::Process : Wrapper::Side::UI;
    RunEvents(in, block);
}

void Plugin::RunEvents(const clap_input_events_t* events, Block& block) noexcept
{
    const uint32_t count = events != nullptr ? events->size(events) : 0;
    for (uint32_t i = 0; i < count; ++i) {
        const clap_event_header_t* const event = events->get(events, i);
        if (event == nullptr || !IsOurs(*event)) {
            continue;
        }
        RunUntil(std::min(event->time, block.frames), block);
        if (event->type == CLAP_EVENT_TRANSPORT) {
            const auto& transport = *reinterpret_cast<const clap_event_transport_t*>(event);
            block.origin = PositionIn(transport, rate);
            if (block.origin) {
                // Of the event's own place: a UI change may have led the block beyond it.
                *block.origin -= std::min(event->time, block.frames);
            }
            continue;
        }
        const auto& change = *reinterpret_cast<const clap_event_param_value_t*>(event);
        if (const std::optional<uint32_t> index = parameters->Find(change.param_id)) {
            parameters->Set(block.side, *index, change.value);
        }
    }
}

void Plugin::RunUntil(uint32_t time, Block& block) noexcept
{
    if (time <= block.done) {
        return; // events at one time, or out of order
    }
    InputChannels inputs{};
    OutputChannels outputs{};
    for (uint32_t i = 0; i < instance->GetChannels(); ++i) {
        inputs[i] = block.inputs[i] != nullptr ? block.inputs[i] + block.done : nullptr;
        outputs[i] = block.outputs[i] != nullptr ? block.outputs[i] + block.done : nullptr;
    }
    const std::optional<double> position =
        block.origin ? std::optional(*block.origin + block.done) : std::nullopt;
    const uint32_t frames = time - block.done;
    if (!instance->Process({inputs.data(), outputs.data(), frames}, position)) {
        block.isRefused = true;
    }
    block.done = time;
}

void Plugin::SendGestures(const clap_output_events_t* out) noexcept
{
    if (out != nullptr) {
        gestures->Send([&](const Gesture& gesture) { return Push(*out, gesture, *parameters); });
    }
}

} // namespace Clap

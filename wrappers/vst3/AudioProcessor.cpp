// SPDX-License-Identifier: ISC
#include "wrappers/vst3/AudioProcessor.h"

#include "wrappers/common/HostBlock.h"
#include "wrappers/vst3/AudioBuses.h"

#include <travesty/component.h>

#include <algorithm>
#include <cmath>

namespace Vst3 {

const v3_audio_processor_cpp AudioProcessor::Functions = {
    UnknownTable,
    {Slot<&AudioProcessor::SetBusArrangements>,
     Slot<&AudioProcessor::GetBusArrangement>,
     Slot<&AudioProcessor::CanProcessSampleSize>,
     Slot<&AudioProcessor::GetLatencySamples>,
     Slot<&AudioProcessor::SetupProcessing>,
     Slot<&AudioProcessor::SetProcessing>,
     Slot<&AudioProcessor::Process>,
     Slot<&AudioProcessor::GetTailSamples>},
};

AudioProcessor::AudioProcessor(Object& newOwner, Effect& newEffect)
    : Interface{&Functions, &newOwner}
    , effect(newEffect)
{
}

// A host that asks for what isn't served looks next at what there is instead: the arrangement of
// the input on both sides, if that one is served.
v3_result AudioProcessor::SetBusArrangements(v3_speaker_arrangement* wantedInputs,
                                             int32_t inputCount,
                                             v3_speaker_arrangement* wantedOutputs,
                                             int32_t outputCount)
{
    if (inputCount < 0 || outputCount < 0 || (inputCount > 0 && wantedInputs == nullptr) ||
        (outputCount > 0 && wantedOutputs == nullptr)) {
        return V3_INVALID_ARG;
    }
    const Arrangement* const wanted = inputCount > 0 ? FindArrangement(wantedInputs[0]) : nullptr;
    if (wanted == nullptr || !effect.SetArrangement(*wanted)) {
        return V3_FALSE;
    }
    const bool isServed =
        inputCount == 1 && outputCount == 1 && wantedOutputs[0] == wantedInputs[0];
    return isServed ? V3_OK : V3_FALSE;
}

v3_result AudioProcessor::GetBusArrangement(int32_t direction,
                                            int32_t index,
                                            v3_speaker_arrangement* arrangement) noexcept
{
    const bool isBus = (direction == V3_INPUT || direction == V3_OUTPUT) && index == 0;
    if (!isBus || arrangement == nullptr) {
        return V3_INVALID_ARG;
    }
    *arrangement = effect.GetArrangement().mask;
    return V3_OK;
}

v3_result AudioProcessor::CanProcessSampleSize(int32_t size) noexcept
{
    return size == V3_SAMPLE_32 ? V3_OK : V3_FALSE;
}

uint32_t AudioProcessor::GetLatencySamples() noexcept
{
    return effect.GetLatency();
}

// Blocks may be of any length and come in any mode, so only the rate counts.
v3_result AudioProcessor::SetupProcessing(v3_process_setup* setup)
{
    if (setup == nullptr) {
        return V3_INVALID_ARG;
    }
    const bool isServed =
        setup->symbolic_sample_size == V3_SAMPLE_32 && effect.SetRate(setup->sample_rate);
    return isServed ? V3_OK : V3_FALSE;
}

// Hosts switch processing off and on again where the audio before shall not sound any more.
v3_result AudioProcessor::SetProcessing(v3_bool state) noexcept
{
    Wrapper::Instance* const instance = effect.GetInstance();
    if (instance == nullptr) {
        return V3_NOT_INITIALIZED;
    }
    if (state != 0) {
        instance->Reset();
    }
    return V3_OK;
}

v3_result AudioProcessor::Process(v3_process_data* data) noexcept WRAPPER_NONBLOCKING
{
    if (effect.GetInstance() == nullptr) {
        return V3_NOT_INITIALIZED;
    }
    if (data == nullptr || data->nframes < 0 || data->symbolic_sample_size != V3_SAMPLE_32) {
        return V3_INVALID_ARG;
    }
    RunBlock(*data);
    ReportParameters(data->output_params);
    return V3_OK;
}

void AudioProcessor::RunBlock(const v3_process_data& data) noexcept
{
    const auto frames = static_cast<uint32_t>(data.nframes);
    Wrapper::HostBlock block(*effect.GetInstance(),
                             FirstBus(data.inputs, data.num_input_buses),
                             FirstBus(data.outputs, data.num_output_buses),
                             frames);
    if (data.ctx != nullptr) {
        block.SetPosition(static_cast<double>(data.ctx->project_time_in_samples));
    }
    queues.Begin(effect.GetIds(), data.input_params);
    effect.BeginBlock(block,
                      data.ctx == nullptr || (data.ctx->state & V3_PROCESS_CTX_PLAYING) != 0);
    while (block.GetDone() < frames) {
        HearUntil(block.GetDone());
        block.RunUntil(std::min(queues.NextOffset(), frames));
    }
    // What a host puts behind the end, and all that it gives with a block of no frames.
    HearUntil(ParameterQueues::LastFrame);
    FinishOutputs(
        data.outputs, data.num_output_buses, effect.GetArrangement().ChannelCount(), frames);
}

void AudioProcessor::HearUntil(uint32_t frame) noexcept
{
    queues.TakeUntil(frame, [this](uint32_t index, double value) {
        if (!std::isnan(value)) {
            effect.HearValue(index, std::clamp(value, 0.0, 1.0));
        }
    });
}

void AudioProcessor::ReportParameters(v3_param_changes** changes) noexcept
{
    if (changes == nullptr) {
        return;
    }
    const uint32_t untold = effect.TakeUntold();
    for (uint32_t index = 0; index < effect.CountParameters(); ++index) {
        if ((untold >> index & 1U) == 0) {
            continue;
        }
        v3_param_id id = effect.GetId(index);
        int32_t place = 0;
        v3_param_value_queue** const queue =
            v3_cpp_obj(changes)->add_param_data(changes, &id, &place);
        if (queue == nullptr ||
            v3_cpp_obj(queue)->add_point(queue, 0, effect.GetShown(index), &place) != V3_OK) {
            effect.LeaveUntold(index); // the host may have room another time
        }
    }
}

// Nothing sounds on of itself. But what came in last comes out later by the latency, and hosts that
// put a plug-in to sleep on silence count on the tail only.
uint32_t AudioProcessor::GetTailSamples() noexcept
{
    return effect.GetLatency();
}

const v3_process_context_requirements_cpp ContextRequirements::Functions = {
    UnknownTable, {Slot<&ContextRequirements::Get>}};

ContextRequirements::ContextRequirements(Object& newOwner)
    : Interface{&Functions, &newOwner}
{
}

// The position in samples is always there.
uint32_t ContextRequirements::Get() noexcept
{
    return V3_PROCESS_CTX_NEED_TRANSPORT_STATE;
}

} // namespace Vst3

// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Realtime.h"
#include "wrappers/vst3/Effect.h"
#include "wrappers/vst3/Object.h"
#include "wrappers/vst3/ParameterQueues.h"

#include <travesty/audio_processor.h>

#include <cstdint>

namespace Vst3 {

/// The audio side of a plug-in: arrangements, rate, blocks.
class AudioProcessor final : public Interface {
public:
    AudioProcessor(Object& newOwner, Effect& newEffect);

private:
    v3_result SetBusArrangements(v3_speaker_arrangement* inputs,
                                 int32_t inputCount,
                                 v3_speaker_arrangement* outputs,
                                 int32_t outputCount);
    v3_result GetBusArrangement(int32_t direction,
                                int32_t index,
                                v3_speaker_arrangement* arrangement) noexcept;
    v3_result CanProcessSampleSize(int32_t size) noexcept;
    uint32_t GetLatencySamples() noexcept;
    v3_result SetupProcessing(v3_process_setup* setup);
    v3_result SetProcessing(v3_bool state) noexcept;
    v3_result Process(v3_process_data* data) noexcept WRAPPER_NONBLOCKING;
    uint32_t GetTailSamples() noexcept;

    void RunBlock(const v3_process_data& data) noexcept;
    void HearUntil(uint32_t frame) noexcept;
    void ReportParameters(v3_param_changes** changes) noexcept;

    static const v3_audio_processor_cpp Functions;

    Effect& effect;
    ParameterQueues queues;
};

/// What of the host's clock and transport a block is to hold.
class ContextRequirements final : public Interface {
public:
    explicit ContextRequirements(Object& newOwner);

private:
    uint32_t Get() noexcept;

    static const v3_process_context_requirements_cpp Functions;
};

} // namespace Vst3

// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Instance.h"
#include "wrappers/common/Realtime.h"
#include "wrappers/lv2/HostFeatures.h"
#include "wrappers/lv2/Ports.h"
#include "wrappers/lv2/Variants.h"

#include <lv2/state/state.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

namespace Lv2 {

/// One plug-in in a host of this format. Threads follow the format's classes: Run() and
/// ConnectPort() belong to audio, the states to any other one thread, even while audio runs.
class Plugin final : private Wrapper::Listener {
public:
    /// Null, after a line in the host's log, when the module can't be had.
    static std::unique_ptr<Plugin>
    Create(const Variant& variant, double sampleRate, const HostFeatures& host);

    /// `data` may be null for every port; the memory is the host's. An index out of range does
    /// nothing. [process]
    void ConnectPort(uint32_t index, void* data) noexcept;
    void Activate();
    /// Any number of frames. [process]
    void Run(uint32_t frames) noexcept WRAPPER_NONBLOCKING;
    void Deactivate();

    LV2_State_Status Save(LV2_State_Store_Function store, LV2_State_Handle handle);
    LV2_State_Status Restore(LV2_State_Retrieve_Function retrieve, LV2_State_Handle handle);

private:
    Plugin(const Variant& variant, const HostFeatures& host);

    // Values come by ports, there is no editor, and Run() reports the latency with every block: so
    // there is nothing to report to the host.
    void OnLatencyChanged(Wrapper::Side, uint32_t) noexcept override {}
    void OnGestureBegun(uint32_t) noexcept override {}
    void OnParameterChanged(uint32_t, float) noexcept override {}
    void OnGestureEnded(uint32_t) noexcept override {}
    void OnStateChanged() noexcept override {}

    void SizePorts();
    void ReadControls(uint32_t frames) noexcept;
    void ReadControl(uint32_t index, bool isForced) noexcept;
    void WriteLatency() noexcept;

    const uint32_t channels;
    const LV2_URID stateKey;  // 0: the host maps none
    const LV2_URID chunkType; // 0: the host maps none
    Ports ports{};
    std::vector<const float*> controls; // by parameter
    std::vector<float> heardControls;   // what ReadControl() last found; NaN at first
    float* latency = nullptr;
    std::vector<const float*> inputs;
    std::vector<float*> outputs;
    std::atomic<uint32_t> blocksToForce{0};      // in which ports are set even if unchanged
    std::unique_ptr<Wrapper::Instance> instance; // last: it calls this object
};

} // namespace Lv2

// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementHost.h"
#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "frameworks/plugincore/dsp/signal/MemoryPool.h"
#include "frameworks/qobase/util/TaskQueue.h"

#include <functional>
#include <string>
#include <vector>

namespace Support {

/// Host for elements under test: positionless, not processing unless told, and it notes what the
/// elements tell it.
class TestElementHost : public DSP::ElementHost {
public:
    bool processing = false;
    bool positionless = true;
    uint32_t maxBlockFrames = 8192;
    uint32_t blockOffset = 0;
    int latencyChanges = 0;
    int commandsUnderWay = 0;
    /// Unset: elements have no controllers.
    std::function<std::shared_ptr<Controller::ControllerSet>(DSP::ElementDispatcher&)>
        makeControllerSet;
    std::vector<std::string> gestures; ///< "grab NAME", "release NAME", "change NAME"

    void ReserveProcessingMemory(std::size_t bytes) override { memory.Reserve(bytes); }
    void* AllocProcessingMemory(std::size_t bytes) override { return memory.Allocate(bytes); }
    void FreeProcessingMemory(void* block, std::size_t bytes) override
    {
        memory.Free(block, bytes);
    }
    std::size_t GetProcessingMemoryMark() override { return memory.GetMark(); }
    void SetProcessingMemoryMark(std::size_t mark) override { memory.SetMark(mark); }
    void PrepareFFT(uint32_t order) override { transforms.PrepareFFT(order); }
    DSP::FFTImpl<float>* GetFFT(uint32_t order) override { return transforms.GetFFT(order); }

    bool IsProcessing() const override { return processing; }
    Util::CriticalSection& GetProcessLock() override { return lock; }
    bool IsPositionless() const override { return positionless; }
    bool GetRenderFlagA() const override { return false; }
    uint32_t GetMaxBlockFrames() const override { return maxBlockFrames; }
    void SetProcessBlockOffset(uint32_t frames) override { blockOffset = frames; }
    uint32_t GetProcessBlockOffset() const override { return blockOffset; }
    uint64_t GetProcessPosition() const override { return 0; }
    std::optional<int64_t> GetTransportPosition() const override { return {}; }
    const TransportRecord* GetTransportState() const override { return nullptr; }
    bool HasNativeWindow() const override { return false; }
    void LatencyChanged(DSP::Context /*context*/) override { ++latencyChanges; }
    uint32_t GetProcessingSystemDelaySamples() const override { return 0; }
    bool IsUIThread() const override { return true; }
    bool MayChangeDSP() const override { return true; }
    bool IsReconfiguring() const override { return false; }
    bool IsSuspended() const override { return false; }
    void MarkProcessDirty() override {}
    Util::TaskQueue& GetTaskQueue() override { return tasks; }
    void CommandPosted(DSP::Element& /*element*/, DSP::DSPCommand& /*command*/) override
    {
        ++commandsUnderWay;
    }
    void CommandFinished(DSP::Element& /*element*/, DSP::DSPCommand& /*command*/) override
    {
        --commandsUnderWay;
    }
    void ParamGrabbed(DSP::Element& /*element*/, const String& name) override
    {
        Note("grab ", name);
    }
    void ParamReleased(DSP::Element& /*element*/, const String& name) override
    {
        Note("release ", name);
    }
    void ParamChanged(DSP::Element& /*element*/, const String& name) override
    {
        Note("change ", name);
    }
    std::shared_ptr<Controller::ControllerSet>
    CreateControllerSet(DSP::ElementDispatcher& element) override
    {
        return makeControllerSet ? makeControllerSet(element) : nullptr;
    }

private:
    void Note(const char* what, const String& name)
    {
        gestures.push_back(std::string(what) + name.c_str());
    }

    Util::CriticalSection lock{"Process"};
    DSP::MemoryPool memory{"Test Memory"};
    DSP::FFTPool transforms{"Test Transforms"};
    Util::TaskQueue tasks{"Test Tasks", 0};
};

} // namespace Support

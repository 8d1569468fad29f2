// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementHost.h"
#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "frameworks/plugincore/dsp/signal/MemoryPool.h"
#include "frameworks/plugincore/instance/BlockRunner.h"
#include "frameworks/plugincore/instance/InstancePhase.h"
#include "frameworks/qobase/util/TaskQueue.h"

#include <vector>

/// The part of an instance that its elements ask, as far as the answer needs no element: memory and
/// transforms, a worker, the commands under way, controller sets, and where the processing is.
///
/// Threads: the pools keep their own locks, as ProcessingPools says; the list of commands belongs
/// to the UI side, under the UI lock; the phase is atomic; for blocks see BlockRunner. The class
/// outlives the elements, and can be asked while they are made and destroyed.
class PluginElementHost : public DSP::ElementHost {
public:
    struct Setup {
        Util::CriticalSection& processLock;
        uint32_t maxBlockFrames; ///< largest chunk that elements see
        bool mayAlwaysChangeDSP; ///< the plug-in format keeps the sides apart by itself
    };
    explicit PluginElementHost(const Setup& setup);
    PluginElementHost(const PluginElementHost&) = delete;
    PluginElementHost& operator=(const PluginElementHost&) = delete;
    /// Commands that the elements didn't give back were lost to a full ring, and are deleted.
    ~PluginElementHost() override;

    void ReserveProcessingMemory(std::size_t bytes) override { memoryPool.Reserve(bytes); }
    void* AllocProcessingMemory(std::size_t bytes) override { return memoryPool.Allocate(bytes); }
    void FreeProcessingMemory(void* block, std::size_t bytes) override
    {
        memoryPool.Free(block, bytes);
    }
    std::size_t GetProcessingMemoryMark() override { return memoryPool.GetMark(); }
    void SetProcessingMemoryMark(std::size_t mark) override { memoryPool.SetMark(mark); }
    void PrepareFFT(uint32_t order) override { fftPool.PrepareFFT(order); }
    DSP::FFTImpl<float>* GetFFT(uint32_t order) override { return fftPool.GetFFT(order); }

    bool IsProcessing() const override { return blocks.IsProcessing(); }
    /// IsProcessing() without the present call: a block came in the last 2500 ms. [any]
    bool RecentlyProcessed() const { return blocks.RecentlyProcessed(); }
    Util::CriticalSection& GetProcessLock() override { return processLock; }
    bool IsPositionless() const override { return blocks.GetRenderFlagB(); }
    bool GetRenderFlagA() const override { return blocks.GetRenderFlagA(); }
    uint32_t GetMaxBlockFrames() const override { return blocks.GetMaxFrames(); }
    void SetProcessBlockOffset(uint32_t frames) override { blocks.SetBlockOffset(frames); }
    uint32_t GetProcessBlockOffset() const override { return blocks.GetBlockOffset(); }
    std::optional<int64_t> GetTransportPosition() const override
    {
        return blocks.GetTransportPosition();
    }
    const TransportRecord* GetTransportState() const override { return blocks.GetTransportState(); }
    bool IsUIThread() const override { return !blocks.IsCallerInside(); }
    bool MayChangeDSP() const override;
    bool IsReconfiguring() const override { return phase.reconfiguring; }
    bool IsSuspended() const override { return phase.suspended; }
    void MarkProcessDirty() override { phase.processDirty = true; }

    Util::TaskQueue& GetTaskQueue() override { return taskQueue; }
    void CommandPosted(DSP::Element& element, DSP::DSPCommand& command) override;
    void CommandFinished(DSP::Element& element, DSP::DSPCommand& command) override;
    std::shared_ptr<Controller::ControllerSet>
    CreateControllerSet(DSP::ElementDispatcher& element) override;

protected:
    BlockRunner& GetBlocks() { return blocks; }
    const BlockRunner& GetBlocks() const { return blocks; }
    InstancePhase& GetPhase() { return phase; }
    const InstancePhase& GetPhase() const { return phase; }

private:
    Util::CriticalSection& processLock;
    const bool mayAlwaysChangeDSP;
    DSP::MemoryPool memoryPool;
    DSP::FFTPool fftPool;
    Util::TaskQueue taskQueue;
    std::vector<DSP::DSPCommand*> liveCommands;
    BlockRunner blocks;
    InstancePhase phase;
};

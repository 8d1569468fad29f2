// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementHost.h"
#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "frameworks/plugincore/dsp/signal/MemoryPool.h"
#include "frameworks/qobase/util/TaskQueue.h"

#include <vector>

/// The part of an instance that serves its elements without knowing anything of it: memory and
/// transforms, a worker, the commands under way, controller sets.
///
/// Threads: the pools keep their own locks, as ProcessingPools says; the list of commands belongs
/// to the UI side, under the UI lock.
class ElementServices : public DSP::ElementHost {
public:
    ElementServices();
    ElementServices(const ElementServices&) = delete;
    ElementServices& operator=(const ElementServices&) = delete;
    /// The elements are gone by now. Commands that they didn't give back were lost to a full ring,
    /// and are deleted.
    ~ElementServices() override;

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

    Util::TaskQueue& GetTaskQueue() override { return taskQueue; }
    void CommandPosted(DSP::Element& element, DSP::DSPCommand& command) override;
    void CommandFinished(DSP::Element& element, DSP::DSPCommand& command) override;
    std::shared_ptr<Controller::ControllerSet>
    CreateControllerSet(DSP::ElementDispatcher& element) override;

private:
    DSP::MemoryPool memoryPool;
    DSP::FFTPool fftPool;
    Util::TaskQueue taskQueue;
    std::vector<DSP::DSPCommand*> liveCommands;
};

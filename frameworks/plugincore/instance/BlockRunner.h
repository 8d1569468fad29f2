// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/TransformBase.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/instance/ThreadMark.h"
#include "frameworks/qobase/util/Realtime.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <thread>

/// The way of a host's blocks through the signal path of an instance, and what of a block can be
/// asked while it is under way.
///
/// Threads: blocks come from the process side, under the processing lock. What shows whether and
/// where it is at work is atomic.
class BlockRunner {
public:
    /// `newMaxFrames` is the largest chunk that elements see, in frames.
    /// The lock outlives the runner.
    BlockRunner(const Util::CriticalSection& newProcessLock, uint32_t newMaxFrames)
        : processLock(newProcessLock)
        , maxFrames(newMaxFrames)
    {
    }

    /// From here to the end of the scope this thread is inside the process side, with its
    /// arithmetic free of denormal numbers. Under the processing lock. [process]
    class Inside {
    public:
        explicit Inside(BlockRunner& runner) noexcept
            : mark(runner.processThread, runner.processLock)
        {
        }

    private:
        const Util::ScopedDenormalGuard denormalGuard;
        const ThreadMark mark;
    };

    /// Takes in the commands of every element, replaces unusable samples by 0, and sends the block
    /// through `transform` in chunks, in place. From inside. [process]
    void Run(DSP::TransformBase& transform, const ProcessRecord& record);
    void RunSidePass(DSP::TransformBase& transform, const SidePassRecord& record);
    /// Takes in the commands alone. From inside. [process]
    static void RunCommands(const DSP::TransformBase& transform);

    /// A block is under way, or came in the last 2500 ms. [any]
    bool IsProcessing() const noexcept { return processing || RecentlyProcessed(); }
    /// The same without the present block. [any]
    bool RecentlyProcessed() const noexcept;
    /// From now until the next block, no block has come. [any]
    void ForgetBlocks() noexcept;

    /// Whether the calling thread is inside the process side. [any]
    bool IsCallerInside() const noexcept { return IsCaller(processThread); }
    /// Whether it was the last to run a block. [any]
    bool IsAudioThread() const noexcept { return IsCaller(audioThread); }

    uint32_t GetMaxFrames() const noexcept { return maxFrames; } ///< [any]

    // The present block; see ElementHost. [process]
    bool GetRenderFlagA() const noexcept { return renderFlagA; }
    bool GetRenderFlagB() const noexcept { return renderFlagB; }
    std::optional<int64_t> GetTransportPosition() const;
    const TransportRecord* GetTransportState() const noexcept
    {
        return transportValid ? &transport : nullptr;
    }
    void SetBlockOffset(uint32_t frames) noexcept { blockOffset = frames; }
    uint32_t GetBlockOffset() const noexcept { return blockOffset; }

private:
    class Block;

    static bool IsCaller(const std::atomic<std::thread::id>& mark) noexcept
    {
        return mark.load() == std::this_thread::get_id();
    }
    void RunChunks(DSP::TransformBase& transform, const ProcessRecord& record);

    const Util::CriticalSection& processLock;
    const uint32_t maxFrames;
    std::atomic<bool> processing{false};
    std::atomic<uint32_t> lastProcessTick{0};     // ms; 0 means never
    std::atomic<std::thread::id> processThread{}; // inside the process side now; default: none
    std::atomic<std::thread::id> audioThread{};   // last to run a block
    bool renderFlagA = false;
    bool renderFlagB = false;
    uint32_t blockOffset = 0;    // frames of the chunk that an element has seen
    TransportRecord transport{}; // advanced chunk by chunk
    bool transportValid = false;
};

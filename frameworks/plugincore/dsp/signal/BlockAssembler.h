// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace DSP {

/// Turns blocks of any length into frames of one fixed size and back.
///
/// The output is always `frameSize - 1` samples behind the input; that many samples of silence are
/// queued by Reset(). A frame size of 0 passes blocks through as they are, without latency.
///
/// A block is bracketed by Begin() and End(); between them Next() hands out each frame that is
/// complete. Channels that the caller gives as null count as silent and are not written.
///
/// Threads: [setup] calls allocate and exclude every other call; the rest come from the process
/// side and don't allocate while blocks stay within the size given to Resize().
class BlockAssembler {
public:
    /// Channel pointers of one block or frame, with what the caller wants to follow in it.
    struct Frame {
        uint32_t frames = 0;
        float* const* inputs = nullptr;
        float* const* outputs = nullptr;     ///< null: write over the inputs
        float* const* sideOutputs = nullptr; ///< null: not wanted
        std::optional<uint32_t> inputPosition;
        std::optional<uint32_t> outputPosition;
    };

    /// Whether End() delivers samples to the caller or only keeps the books.
    enum class CopyOut { No, Yes };

    BlockAssembler(uint32_t inputChannels, uint32_t outputChannels, uint32_t sideChannels);

    /// Makes room for blocks of `maxBlock` samples and frames of `frame`; only grows, and does
    /// nothing while either is 0. [setup]
    void Resize(uint32_t maxBlock, uint32_t frame);

    /// Changes the frame length, in samples, and resets; nothing happens when it is the present
    /// one. Within the sizes reserved so far it takes no memory. [setup]
    void SetFrameSize(uint32_t frame);

    uint32_t GetFrameSize() const noexcept { return frameSize; }
    uint32_t GetMaxBlockFrames() const noexcept { return maxBlockFrames; }

    /// Samples by which the output is late.
    uint32_t GetLatency() const noexcept { return frameSize == 0 ? 0 : frameSize - 1; }

    /// Takes in a block. The pointers stay borrowed until End(). [process]
    void Begin(const Frame& newBlock) noexcept;

    /// Hands out the next complete frame; false, with everything null, when there is none.
    /// In pass-through the whole block is the one frame. [process]
    bool Next(Frame& frame) noexcept;

    /// Delivers exactly the block's number of samples and closes it. [process]
    void End(CopyOut copyOut) noexcept;

    /// Between blocks: what has come of the next frame so far, as `frames` samples of `inputs` to
    /// read; none in pass-through. [process]
    Frame GetUnfinished() noexcept;

    /// Forgets the signal. Inside a block only what waits for delivery is silenced. [process]
    void Reset() noexcept;

private:
    using Channels = std::vector<std::vector<float>>;

    bool NextPassThrough(Frame& frame) noexcept;
    std::optional<uint32_t> FrameInputPosition() const noexcept;
    std::optional<uint32_t> FrameOutputPosition() const noexcept;
    float* const* ExtendMade(Channels& made, std::vector<float*>& pointers) noexcept;
    uint32_t DeliverPending(CopyOut copyOut) noexcept;
    void DeliverMade(CopyOut copyOut, uint32_t done) noexcept;
    void KeepUnconsumedInput() noexcept;
    float* const* Destinations() const noexcept;
    uint32_t PendingLength() const noexcept;

    uint32_t frameSize = 0;
    uint32_t maxBlockFrames = 0;
    uint32_t capacityFrame = 0;
    bool clean = true;
    Channels inputAccum;    // [channel], samples waiting to be framed
    Channels outputPending; // [channel], finished samples waiting to be delivered
    Channels outputMade;    // [channel], frames written in the present block
    Channels sidePending;
    Channels sideMade;
    std::vector<float*> inputPointers; // handed out by Next()
    std::vector<float*> outputPointers;
    std::vector<float*> sidePointers;
    uint32_t pendingRead = 0; // read index into the pending vectors
    bool inBlock = false;
    Frame block;
    uint32_t consumed = 0; // samples of inputAccum handed out in this block
};

} // namespace DSP

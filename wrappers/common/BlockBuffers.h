// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace Wrapper {

/// A block as the host gives it. Channels may be null, and any two of them may share memory, as
/// long as they begin at the same place.
struct Block {
    const float* const* inputs = nullptr; ///< one a channel; a null one is silence
    float* const* outputs = nullptr;      ///< one a channel; what is due at a null one is dropped
    uint32_t frames = 0;
};

/// Leads blocks through code that works in place and has no null channels.
class BlockBuffers {
public:
    static constexpr uint32_t PieceFrames = 1024;
    static constexpr uint32_t MaxChannels = 24;

    /// 1 to MaxChannels. [setup]
    void SetChannels(uint32_t newChannels);
    uint32_t GetChannels() const noexcept { return channels; }

    /// Calls `process(float** channels, uint32_t offset, uint32_t frames)`: once, on the outputs,
    /// where each channel has memory of its own, else for pieces of up to PieceFrames; for
    /// 0 frames not at all. [process]
    template <typename Function>
    void Run(const Block& block, Function&& process) noexcept
    {
        if (block.frames == 0) {
            return;
        }
        if (IsDirect(block)) {
            CopyToOutputs(block);
            process(pointers.data(), 0U, block.frames);
            return;
        }
        for (uint32_t done = 0; done < block.frames;) {
            const uint32_t frames = NextPiece(block, done);
            process(pointers.data(), done, frames);
            WritePiece(block, done, frames);
            done += frames;
        }
    }

private:
    bool IsDirect(const Block& block) const noexcept;
    void CopyToOutputs(const Block& block) noexcept;
    uint32_t NextPiece(const Block& block, uint32_t begin) noexcept;
    void WritePiece(const Block& block, uint32_t begin, uint32_t frames) const noexcept;

    uint32_t channels = 0;
    std::vector<float> memory; // [channel][PieceFrames]
    std::array<float*, MaxChannels> pointers{};
};

} // namespace Wrapper

// SPDX-License-Identifier: ISC
#include "wrappers/common/BlockBuffers.h"

#include <algorithm>
#include <cstring>

namespace Wrapper {

namespace {

bool Overlap(const float* first, const float* second, uint32_t frames)
{
    const auto begin = reinterpret_cast<uintptr_t>(first);
    const auto other = reinterpret_cast<uintptr_t>(second);
    const uintptr_t bytes = frames * sizeof(float);
    return begin < other + bytes && other < begin + bytes;
}

} // namespace

void BlockBuffers::SetChannels(uint32_t newChannels)
{
    channels = std::min(newChannels, MaxChannels);
    memory.assign(size_t{channels} * PieceFrames, 0.0F);
    pointers.fill(nullptr); // what the module might still look at has no samples
}

// Whether writing one channel spoils no other.
bool BlockBuffers::IsDirect(const Block& block) const noexcept
{
    for (uint32_t i = 0; i < channels; ++i) {
        if (block.inputs[i] == nullptr || block.outputs[i] == nullptr) {
            return false;
        }
        for (uint32_t other = 0; other < channels; ++other) {
            if (other != i && (Overlap(block.outputs[i], block.inputs[other], block.frames) ||
                               Overlap(block.outputs[i], block.outputs[other], block.frames))) {
                return false;
            }
        }
    }
    return true;
}

void BlockBuffers::CopyToOutputs(const Block& block) noexcept
{
    for (uint32_t i = 0; i < channels; ++i) {
        pointers[i] = block.outputs[i];
        if (block.inputs[i] != block.outputs[i]) {
            std::memmove(block.outputs[i], block.inputs[i], block.frames * sizeof(float));
        }
    }
}

uint32_t BlockBuffers::NextPiece(const Block& block, uint32_t begin) noexcept
{
    const uint32_t frames = std::min(block.frames - begin, PieceFrames);
    for (uint32_t i = 0; i < channels; ++i) {
        pointers[i] = memory.data() + size_t{i} * PieceFrames;
        if (block.inputs[i] != nullptr) {
            std::copy_n(block.inputs[i] + begin, frames, pointers[i]);
        } else {
            std::fill_n(pointers[i], frames, 0.0F);
        }
    }
    return frames;
}

void BlockBuffers::WritePiece(const Block& block, uint32_t begin, uint32_t frames) const noexcept
{
    for (uint32_t i = 0; i < channels; ++i) {
        if (block.outputs[i] != nullptr) {
            std::copy_n(pointers[i], frames, block.outputs[i] + begin);
        }
    }
}

} // namespace Wrapper

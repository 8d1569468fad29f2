// SPDX-License-Identifier: ISC
#include "wrappers/common/HostBlock.h"

#include "wrappers/common/Instance.h"

#include <algorithm>

namespace Wrapper {

namespace {

template <typename Channels>
Channels AdvancedBy(uint32_t frames, const Channels& channels) noexcept
{
    Channels advanced{};
    std::transform(channels.begin(), channels.end(), advanced.begin(), [frames](auto* channel) {
        return channel != nullptr ? channel + frames : nullptr;
    });
    return advanced;
}

} // namespace

HostBlock::HostBlock(Instance& newInstance,
                     std::span<float* const> newInputs,
                     std::span<float* const> newOutputs,
                     uint32_t newFrames) noexcept
    : instance(newInstance)
    , frames(newFrames)
{
    std::copy_n(newInputs.begin(), std::min(newInputs.size(), inputs.size()), inputs.begin());
    std::copy_n(newOutputs.begin(), std::min(newOutputs.size(), outputs.size()), outputs.begin());
}

void HostBlock::RunUntil(uint32_t end) noexcept
{
    if (end <= done) {
        return; // changes at one time, or out of order
    }
    const auto from = AdvancedBy(done, inputs);
    const auto to = AdvancedBy(done, outputs);
    const auto place = position ? std::optional(*position + done) : std::nullopt;
    if (!instance.Process({from.data(), to.data(), end - done}, place)) {
        isRefused = true;
    }
    done = end;
}

} // namespace Wrapper

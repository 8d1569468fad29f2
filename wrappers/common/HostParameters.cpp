// SPDX-License-Identifier: ISC
#include "wrappers/common/HostParameters.h"

#include "wrappers/common/HostBlock.h"
#include "wrappers/common/SessionBytes.h"

#include <algorithm>

namespace Wrapper {

HostParameters::HostParameters(Instance& newInstance)
    : instance(newInstance)
    , words(static_cast<uint32_t>(instance.GetParameters().size()))
{
    for (const Parameter& parameter : instance.GetParameters()) {
        ids.push_back(MakeParameterId(parameter.identifier));
    }
}

std::optional<uint32_t> HostParameters::Find(uint32_t id) const noexcept
{
    const auto found = std::find(ids.begin(), ids.end(), id);
    return found != ids.end() ? std::optional(static_cast<uint32_t>(found - ids.begin()))
                              : std::nullopt;
}

const Parameter& HostParameters::At(uint32_t index) const noexcept
{
    return instance.GetParameters()[index];
}

bool HostParameters::IsBypass(uint32_t index) const noexcept
{
    return instance.GetBypassIndex() == index;
}

void HostParameters::ReadAll(const TakeOver& takeOver)
{
    for (uint32_t index = 0; index < Count(); ++index) {
        HandOver(index, takeOver);
    }
}

void HostParameters::Set(Side side, uint32_t index, float normalised) noexcept
{
    if (side == Side::Process) {
        words.Keep(index, normalised);
        Apply(side, index, normalised);
    } else {
        words.Drop(index);
        Apply(side, index, normalised);
        words.MarkUIAhead();
    }
}

void HostParameters::SetForSession(uint32_t index, float normalised) noexcept
{
    Apply(Side::UI, index, normalised);
    words.MarkUIAhead();
}

void HostParameters::NoteChange(uint32_t index, float normalised) noexcept
{
    NoteBypass(index, normalised);
    words.Drop(index);
    words.MarkUIAhead();
}

void HostParameters::BeginBlock(HostBlock& block) noexcept
{
    if (block.GetFrames() > 0 && words.MustBeginBlock()) {
        block.RunUntil(1);
        words.Restate([this](uint32_t index, float word) { Apply(Side::Process, index, word); });
    }
}

std::vector<uint8_t> HostParameters::Save()
{
    return EncodeSession(isBypassed, instance.SaveState());
}

bool HostParameters::Load(std::span<const uint8_t> session, const TakeOver& takeOver)
{
    return words.Load([&] { return LoadSession(instance, session); },
                      [&](uint32_t index) { HandOver(index, takeOver); });
}

void HostParameters::NoteBypass(uint32_t index, float normalised) noexcept
{
    if (IsBypass(index)) {
        isBypassed = normalised >= 0.5F;
    }
}

void HostParameters::Apply(Side side, uint32_t index, float normalised) noexcept
{
    instance.SetParameter(side, index, normalised);
    NoteBypass(index, normalised);
}

void HostParameters::HandOver(uint32_t index, const TakeOver& takeOver)
{
    const float normalised = instance.GetParameter(Side::UI, index);
    NoteBypass(index, normalised);
    takeOver(index, normalised);
}

} // namespace Wrapper

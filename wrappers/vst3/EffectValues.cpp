// SPDX-License-Identifier: ISC
// The values of an effect, and the sessions that keep them.
#include "wrappers/vst3/Effect.h"

#include "wrappers/common/SessionBytes.h"

#include <algorithm>
#include <cmath>

namespace Vst3 {

std::optional<uint32_t> Effect::IndexOf(v3_param_id id) const noexcept
{
    const auto found = std::find(ids.begin(), ids.end(), id);
    return found != ids.end() ? std::optional(static_cast<uint32_t>(found - ids.begin()))
                              : std::nullopt;
}

const Wrapper::Parameter* Effect::FindParameter(v3_param_id id) const noexcept
{
    const std::optional<uint32_t> index = IndexOf(id);
    return index ? &instance->GetParameters()[*index] : nullptr;
}

double Effect::GetValue(v3_param_id id) noexcept
{
    TellHost();
    const std::optional<uint32_t> index = IndexOf(id);
    return index ? GetShown(*index) : 0.0;
}

bool Effect::SetValue(v3_param_id id, double normalised) noexcept
{
    const std::optional<uint32_t> index = IndexOf(id);
    if (!index || std::isnan(normalised)) {
        return false;
    }
    const double value = std::clamp(normalised, 0.0, 1.0);
    values[*index].shown = value;
    if (isActive && isPlaying) {
        values[*index].isWaiting = true;
        hasBlockBegun = false;
    } else {
        ActOn(*index, value);
    }
    TellHost();
    return true;
}

void Effect::BeginBlock(bool newPlaying) noexcept
{
    isPlaying = newPlaying;
    hasBlockBegun = true;
}

void Effect::HearValue(uint32_t index, double normalised) noexcept
{
    words->Keep(index, static_cast<float>(normalised));
    values[index].isWaiting = false;
    Apply(Wrapper::Side::Process, index, normalised);
}

void Effect::Restate() noexcept
{
    words->Restate([this](uint32_t index, float word) {
        Apply(Wrapper::Side::Process, index, static_cast<double>(word));
    });
}

void Effect::ActOn(uint32_t index, double value) noexcept
{
    Forget(index);
    Apply(Wrapper::Side::UI, index, value);
    words->MarkUIAhead();
}

// No block comes any more that could bring them.
void Effect::ActOnWaiting() noexcept
{
    for (uint32_t index = 0; index < values.size(); ++index) {
        if (values[index].isWaiting) {
            ActOn(index, values[index].shown);
        }
    }
}

void Effect::Forget(uint32_t index) noexcept
{
    words->Drop(index);
    values[index].isWaiting = false;
}

void Effect::Show(uint32_t index, double value) noexcept
{
    values[index].shown = value;
    NoteBypass(index, value);
}

void Effect::Apply(Wrapper::Side side, uint32_t index, double value) noexcept
{
    instance->SetParameter(side, index, static_cast<float>(value));
    NoteBypass(index, value);
}

void Effect::NoteBypass(uint32_t index, double value) noexcept
{
    if (bypassIndex == index) {
        isBypassed = value >= 0.5;
    }
}

std::vector<uint8_t> Effect::Save()
{
    host.MarkUiThread();
    if (instance == nullptr) {
        return {};
    }
    // For the session's sake only: the audio goes on with the last word, if there is one.
    for (uint32_t index = 0; index < values.size(); ++index) {
        if (values[index].isWaiting && !hasBlockBegun) {
            Apply(Wrapper::Side::UI, index, values[index].shown);
            words->MarkUIAhead();
        }
    }
    return Wrapper::EncodeSession(isBypassed, instance->SaveState());
}

bool Effect::Load(std::span<const uint8_t> session)
{
    host.MarkUiThread();
    if (instance == nullptr) {
        return false;
    }
    const bool isLoaded = words->Load(
        [&] { return Wrapper::LoadSession(*instance, session); },
        [this](uint32_t index) {
            values[index].isWaiting = false;
            Show(index, static_cast<double>(instance->GetParameter(Wrapper::Side::UI, index)));
        });
    TellHost();
    return isLoaded;
}

} // namespace Vst3

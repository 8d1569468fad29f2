// SPDX-License-Identifier: ISC
// The values of an effect, and the sessions that keep them.
#include "wrappers/vst3/Effect.h"

#include "wrappers/common/SessionBytes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vst3 {

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN();

} // namespace

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
    values[index].lastWord = normalised;
    values[index].isWaiting = false;
    Apply(Wrapper::Side::Process, index, normalised);
}

void Effect::Restate() noexcept
{
    for (uint32_t index = 0; index < values.size(); ++index) {
        const double word = values[index].lastWord;
        if (!std::isnan(word)) {
            Apply(Wrapper::Side::Process, index, word);
        }
    }
}

// The mark comes last: a block that takes it knows that the value is there.
void Effect::ActOn(uint32_t index, double value) noexcept
{
    Forget(index);
    Apply(Wrapper::Side::UI, index, value);
    isUiAhead = true;
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
    values[index].lastWord = none;
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
            isUiAhead = true;
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
    // Blocks may run meanwhile. What the host sets in them is newer than the session and stays;
    // what it has set before must not come back over what is loaded.
    std::vector<double> former;
    former.reserve(values.size());
    for (Value& value : values) {
        former.push_back(value.lastWord.exchange(none));
    }
    const bool isLoaded = Wrapper::LoadSession(*instance, session);
    for (uint32_t index = 0; index < values.size(); ++index) {
        Value& value = values[index];
        if (!isLoaded) {
            double word = none;
            value.lastWord.compare_exchange_strong(word, former[index]);
        } else if (std::isnan(value.lastWord)) {
            value.isWaiting = false;
            Show(index, static_cast<double>(instance->GetParameter(Wrapper::Side::UI, index)));
        }
    }
    isUiAhead = true;
    TellHost();
    return isLoaded;
}

} // namespace Vst3

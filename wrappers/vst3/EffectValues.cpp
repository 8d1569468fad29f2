// SPDX-License-Identifier: ISC
// The values of an effect, and the sessions that keep them.
#include "wrappers/vst3/Effect.h"

#include <algorithm>
#include <cmath>

namespace Vst3 {

std::optional<uint32_t> Effect::IndexOf(v3_param_id id) const noexcept
{
    return parameters ? parameters->Find(id) : std::nullopt;
}

const Wrapper::Parameter* Effect::FindParameter(v3_param_id id) const noexcept
{
    const std::optional<uint32_t> index = IndexOf(id);
    return index ? &parameters->At(*index) : nullptr;
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

bool Effect::BeginEdit(v3_param_id id)
{
    const std::optional<uint32_t> index = IndexOf(id);
    if (index) {
        instance->BeginGesture(*index, instance->GetParameter(Wrapper::Side::UI, *index));
    }
    return index.has_value();
}

bool Effect::EndEdit(v3_param_id id)
{
    const std::optional<uint32_t> index = IndexOf(id);
    if (index) {
        instance->EndGesture(*index);
    }
    return index.has_value();
}

void Effect::BeginBlock(Wrapper::HostBlock& block, bool newPlaying) noexcept
{
    isPlaying = newPlaying;
    hasBlockBegun = true;
    parameters->BeginBlock(block);
}

void Effect::HearValue(uint32_t index, double normalised) noexcept
{
    values[index].isWaiting = false;
    parameters->Set(Wrapper::Side::Process, index, static_cast<float>(normalised));
}

void Effect::ActOn(uint32_t index, double value) noexcept
{
    values[index].isWaiting = false;
    parameters->Set(Wrapper::Side::UI, index, static_cast<float>(value));
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

std::vector<uint8_t> Effect::Save()
{
    host.MarkUiThread();
    if (instance == nullptr) {
        return {};
    }
    for (uint32_t index = 0; index < values.size(); ++index) {
        if (values[index].isWaiting && !hasBlockBegun) {
            parameters->SetForSession(index, static_cast<float>(values[index].shown));
        }
    }
    return parameters->Save();
}

bool Effect::Load(std::span<const uint8_t> session)
{
    host.MarkUiThread();
    if (instance == nullptr) {
        return false;
    }
    const bool isLoaded = parameters->Load(session, [this](uint32_t index, float value) {
        values[index].isWaiting = false;
        values[index].shown = static_cast<double>(value);
    });
    TellHost();
    return isLoaded;
}

} // namespace Vst3

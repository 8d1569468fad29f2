// SPDX-License-Identifier: ISC
#include "wrappers/common/SoftBypass.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "wrappers/common/Instance.h"

#include <algorithm>
#include <cmath>

namespace Wrapper {

namespace {

constexpr double FadeSeconds = 0.01;

} // namespace

void SoftBypass::SetFormat(double sampleRate, uint32_t channels)
{
    uint32_t longest = TransformQueryLongestDelay;
    instance.Call({}, SelectorTransformQuery, Side::UI, &longest);
    const bool isAnswered = longest != TransformQueryLongestDelay;
    input.SetFormat(channels, isAnswered ? longest : 0, PieceFrames);
    fadeFrames = std::max(1U, static_cast<uint32_t>(std::lround(sampleRate * FadeSeconds)));
    Reset();
}

void SoftBypass::Reset() noexcept
{
    input.Clear();
    isFresh = true;
}

void SoftBypass::FollowModule() noexcept
{
    uint32_t answer = TransformQueryBypass;
    instance.Call({}, SelectorTransformQuery, Side::Process, &answer);
    if (answer == TransformQueryBypass) {
        return; // it has no answer to that
    }
    const uint32_t delay = answer & ~PLUGIN_CORE_BYPASS_IS_ON;
    if (delay != input.GetDelay()) {
        input.SetDelay(delay);
        isFresh = true; // both ways begin anew
    }
    Switch((answer & PLUGIN_CORE_BYPASS_IS_ON) != 0);
}

void SoftBypass::Switch(bool newOn) noexcept
{
    const bool wasOn = isOn;
    isOn = newOn;
    if (isFresh) {
        position = isOn ? fadeFrames : 0;
        isWaiting = false;
        isFresh = false;
    } else if (isOn) {
        isWaiting = false;
    } else if (wasOn && position == fadeFrames) {
        // The module does so by itself where it has passed the repair by; here it must not depend
        // on whether a block has come since the end of the fade.
        instance.Call({}, SelectorTransformReset, Side::Process, nullptr);
        isWaiting = true;
        silentFrames = input.GetDelay();
    }
}

uint32_t SoftBypass::BeginPiece(float* const* channels, uint32_t offset, uint32_t rest) noexcept
{
    for (uint32_t channel = 0; channel < input.GetChannels(); ++channel) {
        pointers[channel] = channels[channel] + offset;
    }
    const bool isPassedBy = isOn && position == fadeFrames;
    ChooseWay(isPassedBy ? TransformNoticePassBy : TransformNoticeRepair);
    const uint32_t frames = IsOnTheWay() ? std::min(rest, PieceFrames) : rest;
    input.Write(pointers.data(), frames);
    return frames;
}

void SoftBypass::EndPiece(uint32_t frames) noexcept
{
    if (!IsOnTheWay()) {
        return;
    }
    const uint32_t waiting = isWaiting ? CountWaiting(frames) : 0;
    uint32_t reached = position;
    for (uint32_t channel = 0; channel < input.GetChannels(); ++channel) {
        input.Read(channel, late.data(), frames);
        std::copy_n(late.begin(), waiting, pointers[channel]);
        reached = Fade(channel, waiting, frames);
    }
    position = reached;
}

uint32_t SoftBypass::CountWaiting(uint32_t frames) noexcept
{
    const uint32_t silent = std::min(frames, silentFrames);
    silentFrames -= silent;
    const uint32_t sound = FirstSound(silent, frames);
    isWaiting = sound == frames;
    return sound;
}

// Where the delay isn't compensated, the repair is silent for longer than the input is late.
uint32_t SoftBypass::FirstSound(uint32_t begin, uint32_t frames) const noexcept
{
    uint32_t first = frames;
    for (uint32_t channel = 0; channel < input.GetChannels(); ++channel) {
        const float* const samples = pointers[channel];
        const float* const found = std::find_if(
            samples + begin, samples + first, [](float sample) { return sample != 0.0F; });
        first = static_cast<uint32_t>(found - samples);
    }
    return first;
}

uint32_t SoftBypass::Fade(uint32_t channel, uint32_t begin, uint32_t frames) const noexcept
{
    uint32_t reached = position;
    for (uint32_t i = begin; i < frames; ++i) {
        if (isOn) {
            reached = std::min(reached + 1, fadeFrames);
        } else {
            reached = std::max(reached, 1U) - 1;
        }
        pointers[channel][i] = Mix(pointers[channel][i], late[i], reached);
    }
    return reached;
}

// At either end it is that signal to the last bit.
float SoftBypass::Mix(float repaired, float delayed, uint32_t reached) const noexcept
{
    if (reached == fadeFrames) {
        return delayed;
    }
    const float part = static_cast<float>(reached) / static_cast<float>(fadeFrames);
    return repaired + (delayed - repaired) * part;
}

void SoftBypass::ChooseWay(uint32_t notice) noexcept
{
    if (way != notice) {
        way = notice;
        instance.Call({}, SelectorTransformNotify, Side::Process, &notice);
    }
}

} // namespace Wrapper

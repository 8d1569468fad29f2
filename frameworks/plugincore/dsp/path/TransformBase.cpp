// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/path/TransformBase.h"

#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"
#include "frameworks/qobase/util/DebugTrace.h"

#include <algorithm>
#include <iterator>

namespace DSP {

TransformBase::TransformBase(ElementHost& newHost,
                             std::unique_ptr<DSPSet> newSet,
                             std::string_view newAutomatableRows)
    : host(newHost)
    , set(std::move(newSet))
    , automatableRows(newAutomatableRows)
{
}

void TransformBase::SetFormat(float sampleRate, uint32_t channelConfig)
{
    set->BuildElements(sampleRate, channelConfig);
    channelCount = DSP::GetChannelCount(channelConfig);
    // The former list leads to elements that may be gone.
    paramSet = std::make_unique<const ParamSetImpl>(*set, automatableRows);
}

void TransformBase::PlanDryDelay()
{
    uint32_t longest = 0;
    for (const auto& [name, element] : set->GetElements()) {
        longest += element->GetMaxLatency();
    }
    const uint32_t wanted = host.GetProcessingSystemDelaySamples();
    if (wanted > longest) {
        Util::DebugTrace("Plugin::GetProcessingSystemDelaySamples() is more than "
                         "DSPSet::GetMaxSystemDelay()");
        longest = wanted;
    }
    SizeDryLines(longest);
    for (DelayLine& line : dryLines) {
        line.SetLength(wanted);
        line.Clear();
    }
}

// Lines and buffers go together: the audio thread takes a line for each buffer. Those that fit
// stay, so that the way back from a format that found no memory needs none.
void TransformBase::SizeDryLines(uint32_t maxLength)
{
    const std::size_t lineCount = maxLength != 0 ? channelCount : 0;
    const bool linesFit = dryLines.size() == lineCount &&
                          (dryLines.empty() || dryLines.front().GetMaxLength() == maxLength);
    if (linesFit && dryBuffers.size() == channelCount) {
        return;
    }
    std::vector<std::vector<float>> newBuffers(channelCount,
                                               std::vector<float>(host.GetMaxBlockFrames()));
    std::vector<DelayLine> newLines(lineCount, DelayLine(std::max(maxLength, 1U)));
    dryBuffers.swap(newBuffers);
    dryLines.swap(newLines);
}

void TransformBase::ProcessChunk(uint32_t frames, float* const* channels)
{
    set->GetGlobalElement()->ProcessRegion(0, 0, nullptr);
    const bool bypassed = IsPassedBy();
    FollowDelay();
    RunDryPath(frames, channels);
    if (bypassed) {
        CopyDry(frames, channels);
        wasBypassed = true;
    } else {
        if (wasBypassed) {
            wasBypassed = false;
            Reset();
        }
        set->GetMainElement()->ProcessRegion(0, frames, channels);
    }
    samplesProcessed += frames;
    host.SetProcessBlockOffset(0);
}

void TransformBase::Query(uint32_t& value)
{
    if (value == TransformQueryBypass) {
        const bool isOn = set->GetBypassParam().GetValue(Context::Process);
        value = GetDryDelay() | (isOn ? PLUGIN_CORE_BYPASS_IS_ON : 0);
    } else if (value == TransformQueryLongestDelay) {
        value = dryLines.empty() ? 0 : dryLines.front().GetMaxLength();
    }
}

void TransformBase::Notify(uint32_t value)
{
    if (value == TransformNoticeFollowBypass || value == TransformNoticeRepair ||
        value == TransformNoticePassBy) {
        way = value;
    }
}

bool TransformBase::IsPassedBy() const
{
    const uint32_t chosen = way;
    return chosen == TransformNoticeFollowBypass ? set->GetBypassParam().GetValue(Context::Process)
                                                 : chosen == TransformNoticePassBy;
}

uint32_t TransformBase::GetDryDelay() const
{
    const uint32_t wanted = host.GetProcessingSystemDelaySamples();
    return dryLines.empty() ? 0 : std::min(wanted, dryLines.front().GetMaxLength());
}

void TransformBase::FollowDelay()
{
    const uint32_t length = GetDryDelay();
    for (DelayLine& line : dryLines) {
        if (line.GetLength() != length) {
            line.SetLength(length);
            line.Clear();
        }
    }
}

// Runs whether bypassed or not, so that the dry signal is there at once when it is wanted.
void TransformBase::RunDryPath(uint32_t frames, float* const* channels)
{
    for (std::size_t channel = 0; channel < dryBuffers.size(); ++channel) {
        float* dry = dryBuffers[channel].data();
        const float* input = channels[channel];
        if (!dryLines.empty()) {
            dryLines[channel].Process(input, dry, frames);
        } else if (input != nullptr) {
            std::copy_n(input, frames, dry);
        }
    }
}

void TransformBase::CopyDry(uint32_t frames, float* const* channels) const
{
    for (std::size_t channel = 0; channel < dryBuffers.size(); ++channel) {
        if (channels[channel] != nullptr) {
            std::copy_n(dryBuffers[channel].data(), frames, channels[channel]);
        }
    }
}

void TransformBase::SetElementObserver(ElementObserver observer)
{
    const Util::CriticalSectionGuard guard(observersLock);
    const auto isSame = [&](const auto& former) {
        return former->function == observer.function && former->context == observer.context;
    };
    auto chosen = std::find_if(observers.begin(), observers.end(), isSame);
    if (chosen == observers.end()) {
        observers.push_back(std::make_unique<const ElementObserver>(observer));
        chosen = std::prev(observers.end());
    }
    // Pairs with the load in Settle(): what the pointer leads to is complete.
    elementObserver.store(chosen->get(), std::memory_order_release);
}

void TransformBase::Settle()
{
    const ElementObserver* observer = elementObserver.load(std::memory_order_acquire);
    const auto tell = [observer](Element& element, uint32_t begins) {
        if (observer != nullptr && observer->function != nullptr) {
            observer->function(observer->context, &element, begins);
        }
    };
    for (const auto& [name, element] : set->GetElements()) {
        tell(*element, 1);
        element->Reset();
        tell(*element, 0);
    }
    for (DelayLine& line : dryLines) {
        line.Clear();
    }
    Reset();
    samplesProcessed = 0;
}

void TransformBase::Reset()
{
    for (const auto& [name, element] : set->GetElements()) {
        element->Reset();
    }
}

} // namespace DSP

// SPDX-License-Identifier: ISC
#include "wrappers/cli/page/ClipRecorder.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/plot/LowPass.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>

namespace Cli {

namespace {

constexpr double GreatestClipRate = 48000; // Hz
constexpr double ContextSeconds = 0.45;    // heard before and after an event
constexpr double GreatestSeconds = 1.4;    // of a clip
constexpr double FullScale = 32768;
// Narrow enough an edge that speech keeps what it has up to 0.4 of the reduced rate.
constexpr size_t FilterReach = 16;
constexpr double BytesOfSample = 2;

int16_t ToInteger(float sample)
{
    const double scaled =
        std::clamp(static_cast<double>(sample) * FullScale, -FullScale, FullScale - 1);
    return static_cast<int16_t>(std::lround(scaled));
}

// Every `factor`-th sample behind a low-pass; what lies outside is taken for silence.
std::vector<float> Reduce(std::vector<float> samples, size_t factor)
{
    if (factor == 1) {
        return samples;
    }
    const std::vector<float> taps = MakeLowPass(factor, FilterReach);
    const size_t half = taps.size() / 2;
    std::vector<float> reduced((samples.size() + factor - 1) / factor);
    for (size_t i = 0; i < reduced.size(); ++i) {
        const size_t middle = i * factor;
        const size_t first = middle > half ? middle - half : 0;
        const size_t last = std::min(middle + half + 1, samples.size());
        float sum = 0;
        for (size_t k = first; k < last; ++k) {
            sum += samples[k] * taps[k + half - middle];
        }
        reduced[i] = sum;
    }
    return reduced;
}

// The mean of channels [first, last) of interleaved integers; full scale 1.0.
std::vector<float>
TakeChannels(std::span<const int16_t> samples, size_t channels, size_t first, size_t last)
{
    const float scale = 1.0F / (static_cast<float>(FullScale) * static_cast<float>(last - first));
    std::vector<float> taken;
    for (size_t i = 0; i + channels <= samples.size(); i += channels) {
        float sum = 0;
        for (size_t k = first; k < last; ++k) {
            sum += static_cast<float>(samples[i + k]);
        }
        taken.push_back(sum * scale);
    }
    return taken;
}

std::vector<int16_t>
ChangeQuality(std::span<const int16_t> samples, size_t channels, const ClipQuality& quality)
{
    const size_t kept = quality.isMono ? 1 : channels;
    std::vector<int16_t> changed;
    for (size_t channel = 0; channel < kept; ++channel) {
        const size_t last = quality.isMono ? channels : channel + 1;
        const auto reduced = Reduce(TakeChannels(samples, channels, channel, last), quality.step);
        changed.resize(reduced.size() * kept);
        for (size_t i = 0; i < reduced.size(); ++i) {
            changed[i * kept + channel] = ToInteger(reduced[i]);
        }
    }
    return changed;
}

} // namespace

ClipRecorder::ClipRecorder(int newSampleRate, int newChannels)
    : sampleRate(newSampleRate)
    , channels(static_cast<size_t>(newChannels))
    , clipChannels(channels == 2 ? 2 : 1)
    , factor(static_cast<size_t>(std::ceil(sampleRate / GreatestClipRate)))
    , tracks(2 * clipChannels)
    , historyFrames(static_cast<size_t>(std::ceil(GreatestSeconds * sampleRate)))
    , history(historyFrames * tracks)
    , file(OpenAnonymousFile())
{
}

ClipRecorder::Slot ClipRecorder::MakeSlot(const ClipRequest& request) const
{
    const double middle = (request.start + request.end) / 2;
    const double reach =
        std::min((request.end - request.start) / 2 + ContextSeconds, GreatestSeconds / 2);
    Slot slot;
    slot.request = request;
    slot.begin = std::max<int64_t>(0, std::llround((middle - reach) * sampleRate));
    slot.end = std::min<int64_t>(std::llround((middle + reach) * sampleRate),
                                 slot.begin + static_cast<int64_t>(historyFrames));
    return slot;
}

void ClipRecorder::Want(const ClipRequest& request)
{
    const Slot slot = MakeSlot(request);
    if (slots.size() < GreatestCount) {
        slots.push_back(slot);
    } else {
        const auto weakest =
            std::min_element(slots.begin(), slots.end(), [](const Slot& a, const Slot& b) {
                return a.request.strength < b.request.strength;
            });
        if (request.strength <= weakest->request.strength) {
            return;
        }
        *weakest = slot;
    }
    nextEnd = NextEnd();
}

int64_t ClipRecorder::NextEnd() const
{
    int64_t next = Never;
    for (const Slot& slot : slots) {
        next = slot.isWaiting ? std::min(next, slot.end) : next;
    }
    return next;
}

void ClipRecorder::TakeFrame(const double* before, const double* after)
{
    float* const frame = &history[static_cast<size_t>(framesDone) % historyFrames * tracks];
    if (channels == clipChannels) {
        for (size_t i = 0; i < channels; ++i) {
            frame[i] = static_cast<float>(before[i]);
            frame[channels + i] = static_cast<float>(after[i]);
        }
    } else {
        double sumBefore = 0;
        double sumAfter = 0;
        for (size_t i = 0; i < channels; ++i) {
            sumBefore += before[i];
            sumAfter += after[i];
        }
        frame[0] = static_cast<float>(sumBefore / static_cast<double>(channels));
        frame[1] = static_cast<float>(sumAfter / static_cast<double>(channels));
    }
    ++framesDone;
}

void ClipRecorder::Add(std::span<const double> before, std::span<const double> after)
{
    for (size_t i = 0; i + channels <= before.size(); i += channels) {
        TakeFrame(&before[i], &after[i]);
        if (framesDone >= nextEnd) {
            CutClips();
        }
    }
}

void ClipRecorder::Finish()
{
    for (Slot& slot : slots) {
        slot.end = std::min(slot.end, framesDone);
    }
    CutClips();
}

void ClipRecorder::CutClips()
{
    for (Slot& slot : slots) {
        if (slot.isWaiting && slot.end <= framesDone) {
            Cut(slot);
        }
    }
    nextEnd = NextEnd();
}

std::vector<float> ClipRecorder::Unroll(size_t track, int64_t begin, int64_t end) const
{
    std::vector<float> samples;
    samples.reserve(static_cast<size_t>(end - begin));
    for (int64_t i = begin; i < end; ++i) {
        samples.push_back(history[static_cast<size_t>(i) % historyFrames * tracks + track]);
    }
    return samples;
}

int64_t ClipRecorder::OffsetOf(const Slot& slot) const
{
    const size_t greatest = (historyFrames / factor + 1) * tracks * sizeof(int16_t);
    return static_cast<int64_t>(static_cast<size_t>(&slot - slots.data()) * greatest);
}

void ClipRecorder::Cut(Slot& slot)
{
    slot.isWaiting = false;
    // What came too late has lost its begin.
    slot.begin = std::max(slot.begin, framesDone - static_cast<int64_t>(historyFrames));
    if (slot.begin >= slot.end) {
        return;
    }
    std::vector<int16_t> clip;
    for (size_t track = 0; track < tracks; ++track) {
        const auto samples = Reduce(Unroll(track, slot.begin, slot.end), factor);
        slot.frames = samples.size();
        clip.resize(slot.frames * tracks);
        // First all that is before, then all that is after.
        const size_t half = track / clipChannels * slot.frames * clipChannels;
        for (size_t i = 0; i < samples.size(); ++i) {
            clip[half + i * clipChannels + track % clipChannels] = ToInteger(samples[i]);
        }
    }
    const size_t bytes = clip.size() * sizeof(int16_t);
    errno = 0;
    if (::pwrite(file.Get(), clip.data(), bytes, OffsetOf(slot)) != static_cast<ssize_t>(bytes)) {
        throw FileError::FromErrno(errno != 0 ? errno : ENOSPC);
    }
}

const ClipRecorder::Slot* ClipRecorder::Find(uint64_t event) const
{
    const auto slot = std::find_if(slots.begin(), slots.end(), [&](const Slot& one) {
        return one.request.event == event && one.frames > 0;
    });
    return slot == slots.end() ? nullptr : &*slot;
}

bool ClipRecorder::Has(uint64_t event) const
{
    return Find(event) != nullptr;
}

ClipQuality ClipRecorder::ChooseQuality(std::span<const uint64_t> events, size_t greatestSize) const
{
    double bytes = 0; // before and after, one channel
    for (const uint64_t event : events) {
        const Slot* const slot = Find(event);
        bytes += slot == nullptr ? 0 : 2 * BytesOfSample * static_cast<double>(slot->frames);
    }
    const auto most = static_cast<double>(greatestSize);
    if (bytes * static_cast<double>(clipChannels) <= most) {
        return {};
    }
    return {bytes <= most ? size_t{1} : size_t{2}, true};
}

std::optional<Clip> ClipRecorder::Read(uint64_t event, const ClipQuality& quality) const
{
    const Slot* const slot = Find(event);
    if (slot == nullptr) {
        return std::nullopt;
    }
    std::vector<int16_t> samples(slot->frames * tracks);
    const size_t bytes = samples.size() * sizeof(int16_t);
    if (::pread(file.Get(), samples.data(), bytes, OffsetOf(*slot)) !=
        static_cast<ssize_t>(bytes)) {
        throw FileError("the clips can't be read back");
    }
    const auto all = std::span<const int16_t>(samples);
    Clip clip;
    clip.start = static_cast<double>(slot->begin) / sampleRate;
    clip.sampleRate = static_cast<double>(sampleRate) / static_cast<double>(factor * quality.step);
    clip.channels = quality.isMono ? 1 : static_cast<int>(clipChannels);
    clip.before = ChangeQuality(all.first(all.size() / 2), clipChannels, quality);
    clip.after = ChangeQuality(all.last(all.size() / 2), clipChannels, quality);
    return clip;
}

} // namespace Cli

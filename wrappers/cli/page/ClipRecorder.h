// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace Cli {

/// A part of a recording to be heard.
struct ClipRequest {
    uint64_t event = 0;  ///< a number of the caller's own, used once
    double start = 0;    ///< seconds, without what is heard around it
    double end = 0;      ///< seconds
    double strength = 0; ///< the strongest requests are met, when there are too many
};

/// A stretch before and after the repair, in 16 bits.
struct Clip {
    double start = 0;      ///< seconds in the recording
    double sampleRate = 0; ///< Hz
    int channels = 0;
    std::vector<int16_t> before; ///< interleaved; both have the same length
    std::vector<int16_t> after;
};

/// How much of what was recorded a clip holds.
struct ClipQuality {
    size_t step = 1; ///< every so many samples, behind a low-pass
    bool isMono = false;
};

/// Keeps the strongest events of a recording as short clips while it passes by, in bounded memory:
/// the last seconds of audio, and the clips in a nameless temporary file.
///
/// Mono and stereo stay so, more channels are averaged. Rates above 48 kHz come down to a whole
/// part of them.
class ClipRecorder {
public:
    /// The most clips that are kept.
    static constexpr size_t GreatestCount = 100;

    /// Throws FileError.
    ClipRecorder(int newSampleRate, int newChannels);

    /// Asks for a clip, at the latest before the samples behind its end + ContextSeconds are added.
    void Want(const ClipRequest& request);

    /// Takes interleaved samples, both of the same length. Throws FileError.
    void Add(std::span<const double> before, std::span<const double> after);

    /// Ends the recording. Throws FileError.
    void Finish();

    bool Has(uint64_t event) const;

    /// The best quality in which the clips of these events take `greatestSize` bytes at most; else
    /// the least there is, which takes 13.5 MB for all that are kept.
    ClipQuality ChooseQuality(std::span<const uint64_t> events, size_t greatestSize) const;

    /// Nothing for an event that wasn't strong enough. Throws FileError.
    std::optional<Clip> Read(uint64_t event, const ClipQuality& quality) const;

private:
    struct Slot {
        ClipRequest request;
        int64_t begin = 0; // frames of the recording
        int64_t end = 0;
        size_t frames = 0; // of the clip in the file; 0 while it waits
        bool isWaiting = true;
    };

    static constexpr int64_t Never = std::numeric_limits<int64_t>::max();

    const Slot* Find(uint64_t event) const;
    Slot MakeSlot(const ClipRequest& request) const;
    int64_t NextEnd() const;
    void TakeFrame(const double* before, const double* after);
    void CutClips();
    void Cut(Slot& slot);
    std::vector<float> Unroll(size_t track, int64_t begin, int64_t end) const;
    int64_t OffsetOf(const Slot& slot) const;

    int sampleRate;
    size_t channels;            // of the recording
    size_t clipChannels;        // 1 or 2
    size_t factor;              // frames of the recording for one of a clip
    size_t tracks;              // before and after, each with its channels
    size_t historyFrames;       // what a clip can be long
    std::vector<float> history; // ring of frames, each with all tracks
    int64_t framesDone = 0;
    int64_t nextEnd = Never; // where a waiting clip ends; none waits for less
    std::vector<Slot> slots; // their places are those in the file
    FileDescriptor file;
};

} // namespace Cli

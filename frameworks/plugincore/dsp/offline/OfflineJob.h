// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/OfflineSource.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>

namespace DSP {

/// How offline work has ended.
enum class OfflineResult {
    Done,
    Cancelled,    ///< by the job
    SourceFailed, ///< the source couldn't be read
    SinkFailed,   ///< the job didn't take what was made
    Busy          ///< the element is at such work already
};

/// What an element needs before a region so that it is in its stride there.
struct Preroll {
    uint32_t frames = 0;   ///< least number that it is led up by
    bool isWanted = false; ///< it is to be led up to regions at all
};

/// One piece of offline work: where it reads, how it fades, and who takes what is made and follows
/// how far it is. All calls come on the thread that runs the element, with its host's process lock
/// held.
class OfflineJob {
public:
    OfflineJob() = default;
    OfflineJob(const OfflineJob&) = delete;
    OfflineJob& operator=(const OfflineJob&) = delete;
    virtual ~OfflineJob() = default;

    virtual OfflineSource& GetSource() = 0;
    virtual double GetFadeMilliseconds() const = 0;

    /// The element comes to a region; the first frame that it gets is number `begin` of the
    /// recording, or would be, where that is below 0.
    virtual void onRegionBegins(const Region& region, int64_t begin) = 0;
    /// The frames from `position` on, in order and without overlaps: what may differ from the
    /// source, and nothing else. False ends the work.
    virtual bool Write(int64_t position, const MultichannelBufferView<float>& samples) = 0;
    /// After each block: how much is done, 0 to 1, which never goes back, and of what. False
    /// cancels.
    virtual bool Progress(double fraction, const String& text) = 0;

    const Preroll& GetPreroll() const { return preroll; }
    /// For the element.
    void SetPreroll(const Preroll& newPreroll) { preroll = newPreroll; }

private:
    Preroll preroll;
};

} // namespace DSP

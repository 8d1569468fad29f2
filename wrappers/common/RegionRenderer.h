// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Detections.h"
#include "wrappers/common/Instance.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Wrapper {

/// A rectangle of a recording's time and frequency.
struct RenderRegion {
    int64_t first = 0; ///< frame
    int64_t end = 0;   ///< frame behind the last one
    double lowHz = 0;  ///< 0: no lower bound
    double highHz = 0; ///< 0: no upper bound
};

/// The recording that regions are rendered of, and where they go. What a call throws ends the
/// rendering and comes out of it. All calls come from within RegionRenderer::Render().
class RenderClient {
public:
    RenderClient() = default;
    RenderClient(const RenderClient&) = delete;
    RenderClient& operator=(const RenderClient&) = delete;
    virtual ~RenderClient() = default;

    virtual int64_t GetFrames() const = 0;
    /// Fills one array of `frames` floats a channel with the frames from `position` on, which lie
    /// in the recording.
    virtual void ReadFrames(int64_t position, uint32_t frames, float* const* channels) = 0;
    /// Takes what these frames have become; positions rise.
    virtual void WriteFrames(int64_t position, uint32_t frames, const float* const* channels) = 0;
    /// How much is done, 0 to 1, and what is being done; false cancels.
    virtual bool OnProgress(double /*done*/, const char* /*text*/) { return true; }
    /// A repair within the regions, in frames of the recording.
    virtual void OnRepair(const Detection& /*repair*/) {}
};

/// Repairs regions of a recording with what an instance is set to, and leaves the instance as it
/// is. Takes long; for a thread of its own where there is a user interface. [any]
class RegionRenderer {
public:
    /// `newInstance` lives longer.
    explicit RegionRenderer(const Instance& newInstance)
        : instance(newInstance)
    {
    }

    struct Outcome {
        bool isDone = false;
        std::string problem; ///< what went wrong; empty when all went well
        DetectionTotals totals;
    };

    /// `fade`, in ms, is at the edges of each region. None, after a line in the log, when the
    /// module refuses the call itself.
    std::optional<Outcome>
    Render(RenderClient& client, const std::vector<RenderRegion>& regions, double fade) const;

private:
    const Instance& instance;
};

} // namespace Wrapper

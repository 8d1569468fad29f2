// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "restoration/dsp/puffguard/BurstRepair.h"
#include "restoration/dsp/puffguard/DetectionLog.h"
#include "restoration/dsp/puffguard/FrameAnalysis.h"
#include "restoration/dsp/puffguard/HopSchedule.h"
#include "restoration/dsp/puffguard/OversampledFilterbank.h"
#include "restoration/dsp/puffguard/RepairOutput.h"
#include "restoration/dsp/puffguard/RepairSizes.h"
#include "restoration/dsp/puffguard/WaitingFrames.h"
#include "restoration/dsp/puffguard/pitch/PitchDetect.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace DSP::Shared {

/// Finds plosive bursts in speech and takes them down: the repair itself. The element that the user
/// controls and that owns this one is Puffguard::Puffguard, in PuffguardElement.h.
///
/// Each hop of H samples becomes one frame of spectra, which waits in a ring of N frames. A frame
/// is judged when it stands in the middle of the ring, with all channels' power taken together;
/// what is repaired are the waiting frames around it.
///
/// This element joins the parts and spreads their work over time: FrameAnalysis makes the frames,
/// WaitingFrames keeps them, BurstRepair rewrites them, RepairOutput gives them out.
///
/// Threads: as ElementDispatcher. All memory for the longest history, "Latency scaling" 1, is taken
/// at construction, so that a change of it restarts the repair on the audio thread without the
/// heap.
class PuffGuard final : public ElementDispatcher {
public:
    enum Param : uint32_t {
        Sensitivity = 0,    ///< "Detection sensitivity", 0 to 10
        Strength = 1,       ///< "Reduction strength", 0 to 10
        FrequencyLimit = 2, ///< "Upper repair frequency", 50 to 2000 Hz
        LatencyScaling = 3  ///< "Latency scaling", 0 to 1
    };

    /// What the latest hop has shown, the one before the latest as long as that is being worked on;
    /// all 0 before the first one.
    struct FrameReport {
        float detection = 0; ///< detection value
        float threshold = 0; ///< what detection values were compared with
        float pitchHz = 0;   ///< 0 when unvoiced; belongs to an earlier frame
    };

    /// Where the element works.
    struct Format {
        ElementHost& host;
        float sampleRate = 0;       ///< Hz
        uint32_t channelConfig = 0; ///< layout code
    };

    /// `newLog` takes every repair; it isn't owned and outlives the element. Throws
    /// std::invalid_argument for a rate that isn't above 0 or is above 1.8 MHz. [setup]
    PuffGuard(const Format& format, DetectionLog& newLog);

    uint32_t GetHop() const noexcept { return sizes.hopSize; }         ///< H, samples
    uint32_t GetFrameSize() const noexcept { return sizes.frameSize; } ///< F, samples
    const FrameReport& GetLatest() const noexcept { return latest; }   ///< [process]

protected:
    uint32_t GetLatencySamples(Context context) const override;
    uint32_t GetMaxLatencySamples() const override;
    void OnReset() override;
    void OnFrameArriving(uint32_t arrived, float* const* channels) override;
    void ProcessAudio(uint32_t frames, float* const* channels) override;

private:
    /// Where the parameters' values live.
    struct Values {
        BurstRepair::Controls controls;
        float latencyScaling = 0;
    };

    /// The latency is asked for on any thread; the lengths that it is made of are not for them.
    struct Latency {
        std::atomic<uint32_t> samples{0};
        std::atomic<uint32_t> maxSamples{0};
    };

    void RegisterParams();
    void initialise();
    void SetUpFilterbank();
    void SetUpPitch();

    void RestartSteps() noexcept UTIL_NONBLOCKING;
    uint32_t GetStepBegin(uint32_t index) const noexcept UTIL_NONBLOCKING;
    void FeedTracker(uint32_t offset, uint32_t frames, float* const* channels);
    void RunTransforms() noexcept UTIL_NONBLOCKING;
    void Synthesise(uint32_t channel, FFTPart part) noexcept UTIL_NONBLOCKING;
    void AnalyseFrame(const HopSchedule::Step& work) noexcept UTIL_NONBLOCKING;
    void Search() noexcept UTIL_NONBLOCKING;

    Values values;
    FFTPool transforms; // its own: what they work on waits in them from step to step
    OversampledFilterbank filterbank;
    RepairSizes sizes;
    WaitingFrames waiting;
    FrameAnalysis analysis;
    BurstRepair repair;
    RepairOutput output;
    PitchDetect::PitchDetect pitchDetect;
    Latency latency;
    DetectionLog& log;              // not owned
    uint32_t step = 0;              // of the hop that is coming in: the next one
    uint32_t transformParts = 0;    // done in that hop
    bool hasFrame = false;          // a hop has been completed since the restart
    BurstRepair::Controls controls; // at the end of that hop
    std::vector<float*> arriving;   // pointers to a step's samples
    FrameReport latest;
};

} // namespace DSP::Shared

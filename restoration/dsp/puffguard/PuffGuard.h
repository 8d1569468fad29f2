// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/plugincore/dsp/signal/DelayLine.h"
#include "frameworks/qobase/util/AlignedVector.h"
#include "restoration/dsp/puffguard/DataTail.h"
#include "restoration/dsp/puffguard/DataTail1D.h"
#include "restoration/dsp/puffguard/DetectionLog.h"
#include "restoration/dsp/puffguard/NoiseDetector.h"
#include "restoration/dsp/puffguard/OversampledFilterbank.h"
#include "restoration/dsp/puffguard/PlosiveDetection.h"
#include "restoration/dsp/puffguard/PlosiveReduction.h"
#include "restoration/dsp/puffguard/SpectrumRing.h"
#include "restoration/dsp/puffguard/pitch/PitchDetect.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

namespace DSP::Shared {

/// Finds plosive bursts in speech and takes them down.
///
/// Each hop of H samples becomes one frame of spectra, which waits in a ring of N frames. A frame
/// is judged when it stands in the middle of the ring, with all channels' power taken together;
/// what is repaired are the waiting frames around it.
///
/// What goes out is the input, late by the latency, and onto it what repairs have changed in the
/// frames, transformed back: samples that no repair reaches pass to the bit.
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

    uint32_t GetHop() const noexcept { return hopSize; }             ///< H, samples
    uint32_t GetFrameSize() const noexcept { return frameSize; }     ///< F, samples
    const FrameReport& GetLatest() const noexcept { return latest; } ///< [process]

protected:
    uint32_t GetLatencySamples(Context context) const override;
    uint32_t GetMaxLatencySamples() const override;
    void OnReset() override;
    void OnFrameArriving(uint32_t arrived, float* const* channels) override;
    void ProcessAudio(uint32_t frames, float* const* channels) override;

private:
    /// Lengths in frames: N = 2 (L + M) + 1.
    struct HistorySizes {
        uint32_t peakRadius = 0; // L
        uint32_t edgeFrames = 0; // M
        uint32_t length = 0;     // N
    };

    /// The parameters that a hop is repaired by.
    struct Controls {
        float sensitivity = 0;
        float strength = 0;
        float frequencyLimit = 0; // Hz
    };

    /// A peak that has been found, and what belongs to it.
    struct Plosive {
        PeakTest peak;
        RepairRegion region;
        float threshold = 0;
    };

    void RegisterParams();
    void initialise();
    void SizeRings();
    void SizeDelays();
    uint32_t GetBankDelay(uint32_t length) const noexcept UTIL_NONBLOCKING;
    void AlignPitch();
    void SetUpPitch();
    HistorySizes GetHistorySizes(float scaling) const noexcept UTIL_NONBLOCKING;
    uint32_t GetLatencyOf(uint32_t length) const noexcept UTIL_NONBLOCKING;

    void RestartSteps() noexcept UTIL_NONBLOCKING;
    uint32_t GetStepBegin(uint32_t index) const noexcept UTIL_NONBLOCKING;
    void FeedTracker(uint32_t offset, uint32_t frames, float* const* channels);
    void AnalyseFrame() noexcept UTIL_NONBLOCKING;
    void Transform(uint32_t channel) noexcept UTIL_NONBLOCKING;
    void Detect() noexcept UTIL_NONBLOCKING;
    void FinishFrame() noexcept UTIL_NONBLOCKING;
    void Synthesise() noexcept UTIL_NONBLOCKING;
    void GiveOut(float* const* channels) noexcept UTIL_NONBLOCKING;
    void SearchPlosive(float noise) noexcept UTIL_NONBLOCKING;
    void Repair(const Plosive& plosive) noexcept UTIL_NONBLOCKING;
    void ScaleSpectra(const RepairRegion& region, int32_t bins, float severity) noexcept
        UTIL_NONBLOCKING;
    void Log(const Plosive& plosive, DetectionRecord record) noexcept UTIL_NONBLOCKING;
    RepairSettings GetRepairSettings() const noexcept UTIL_NONBLOCKING;
    double GetRegionEnergy(const RepairRegion& region) const noexcept UTIL_NONBLOCKING;
    double GetFrameEnergy(uint32_t slot) const noexcept UTIL_NONBLOCKING;
    int64_t GetFrameCentre(int32_t historyIndex) const noexcept UTIL_NONBLOCKING;
    uint32_t GetSlot(int32_t historyIndex) const noexcept UTIL_NONBLOCKING;
    uint32_t GetLeavingSlot() const noexcept UTIL_NONBLOCKING;
    std::span<const float> GetDetections() const noexcept UTIL_NONBLOCKING;

    float sensitivity = 0;
    float strength = 0;
    float frequencyLimit = 0; // Hz
    float latencyScaling = 0;
    OversampledFilterbank filterbank;
    uint32_t frameSize = 0;                  // F
    uint32_t hopSize = 0;                    // H
    uint32_t binCount = 0;                   // F / 2 + 1
    SpectrumRing spectrumRing;               // N slots in use
    uint32_t spectrumSlot = 0;               // of the newest frame, or of the next when it is done
    uint32_t powerSlot = 0;                  // the same, in powerRing
    std::vector<DataTail> powerRing;         // slots of power, the largest of all channels
    Util::AlignedVector<float> change;       // scratch: a spectrum of the ring
    Util::AlignedVector<float> channelPower; // F / 2 + 1, scratch: power of one channel
    std::vector<DelayLine> delays;           // the input of each channel
    NoiseDetector noiseDetector;
    std::vector<float> noiseFloor;
    uint32_t peakRadius = 0; // L
    DataTail1D detectionHistory;
    DataTail1D pitchHistory; // index as in detectionHistory; 0 where no pitch can be known yet
    PitchDetect::PitchDetect pitchDetect;
    uint32_t edgeFrames = 0;    // M
    uint32_t historyLength = 0; // N
    // The latency is asked for on any thread; the lengths that it is made of are not for them.
    std::atomic<uint32_t> latencySamples{0};
    std::atomic<uint32_t> maxLatencySamples{0};
    DetectionLog& log; // not owned
    DetectionBands bands;
    int32_t energyFirst = 0; // bins whose energy the log tells of, both inclusive
    int32_t energyLast = 0;
    std::vector<float*> framePower; // by history index, while a repair is made
    uint32_t step = 0;              // of the hop that is coming in: the next one
    bool hasFrame = false;          // a hop has been completed since the restart
    Controls controls;              // at the end of that hop
    FrameDetection detection;       // of it
    std::vector<float*> arriving;   // pointers to a step's samples
    FrameReport latest;
};

} // namespace DSP::Shared

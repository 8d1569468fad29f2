// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/TransformBase.h"
#include "frameworks/plugincore/instance/HostCallback.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <thread>

/// The two latencies of an instance, one for each side, and how a change of one reaches the other:
/// the side that it comes from does its own half and leaves a mark for the other half, which is
/// done by whichever side comes next.
///
/// Threads: a call for a side comes from that side, or from one that knows the other to rest. No
/// lock of its own: values and marks are atomic, and a mark is exchanged, so that only one side
/// does the work. The host is notified under the lock of the caller.
class LatencyReport {
public:
    /// What a host is to be given, whatever the elements' sum is.
    struct Settings {
        bool isCompensated = true;      ///< false: 0 is reported
        std::optional<uint32_t> frozen; ///< samples, in place of the elements' sum
    };
    enum class Notify { No, Yes };

    /// Both references outlive the report.
    LatencyReport(const Settings& newSettings,
                  DSP::ElementHost& newHost,
                  HostCallback& newCallback);

    /// The elements that count from now on. Null, as at first: nothing does, since elements are
    /// being made or destroyed. [setup]
    void Attach(const DSP::TransformBase* newPath) { path = newPath; }

    /// Sums anew for a side, and notifies the host when what was reported no longer holds. [any]
    void Update(DSP::Context context, Notify notify);
    /// The same when a change of the other side has left a mark for this one. [any]
    void Check(DSP::Context context);
    /// An element's latency has changed, seen from that side. The other side's half is done at once
    /// while nothing is processed, or else at the next tick or block. Does nothing
    /// without a path. Under the processing lock, from whichever side. [process]
    void onElementChanged(DSP::Context context);

    /// What the elements of that side's path add up to, in samples, whatever the settings. [any]
    uint32_t GetSum(DSP::Context context) const { return GetSide(context).sum; }
    /// What was reported to the host last, in samples. [any]
    uint32_t GetReported(DSP::Context context) const { return GetSide(context).reported; }
    /// The same as the answer to a host: the UI side's figure includes the host's own delay. Asks
    /// the host. [any]
    uint32_t GetWithHostDelay(DSP::Context context) const;
    /// Whether this thread is within onElementChanged(), as a callback of the host's may be. [any]
    bool IsReportingThread() const { return thread.load() == std::this_thread::get_id(); }

private:
    struct Side {
        std::atomic<uint32_t> reported{0}; // samples
        std::atomic<uint32_t> sum{0};      // samples
        std::atomic<bool> dirty{false};    // the mark
    };
    Side& GetSide(DSP::Context context) { return sides[static_cast<std::size_t>(context)]; }
    const Side& GetSide(DSP::Context context) const
    {
        return sides[static_cast<std::size_t>(context)];
    }
    uint32_t SumElements(DSP::Context context) const;

    const Settings settings;
    DSP::ElementHost& host;
    HostCallback& callback;
    const DSP::TransformBase* path = nullptr;
    std::array<Side, 2> sides;             // by context
    std::atomic<std::thread::id> thread{}; // within onElementChanged(); the default id is nobody's
};

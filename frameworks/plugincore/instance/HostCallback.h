// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementHost.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <atomic>
#include <optional>
#include <span>
#include <thread>
#include <vector>

/// The way back to the wrapper. Questions are asked at once; notifications may be held back for as
/// long as a thread holds a lock that the wrapper's answer must not meet.
class HostCallback {
public:
    /// Something that the host is to be notified of.
    struct Notification {
        PluginCoreHostOpcode opcode;
        DSP::Context context;
        uint32_t latency; ///< samples, of a change of latency
        ParamEventRecord event;
    };

    /// A null function counts as a host that refuses every call.
    HostCallback(PluginCoreHostFunction newFunction, void* newRefcon);

    /// Sends a record; true when the host answered success.
    bool Ask(PluginCoreHostOpcode opcode, DSP::Context context, void* data) const;

    /// Both sides. Allocates only while notifications are held back, never on the process side.
    void NotifyLatency(DSP::Context context, uint32_t samples);
    void NotifyParam(const ParamEventRecord& event);
    /// What one action has changed of several parameters: in one record, or one by one where the
    /// host doesn't take that. [ui]
    void NotifyParams(std::span<const ParamEventRecord> events);
    /// The state has changed by what the user did. [ui]
    void NotifyDirty();
    /// Something has changed that the host shows and isn't automatable. [ui]
    void NotifyReload();
    /// The wrapper is to build the instance anew. [ui]
    void NotifyReinstantiate();

    /// Holds back what the calling thread notifies, from here to TakeHeld(). One thread at a time,
    /// with the UI lock held. [ui]
    void Hold() { holdingThread.store(std::this_thread::get_id()); }
    /// Ends Hold(); what is returned is for Send(), once the lock is free. [ui]
    [[nodiscard]] std::vector<Notification> TakeHeld();
    void Send(const Notification& notification) const;

private:
    void SendOrHold(const Notification& notification);
    bool IsHolding() const { return holdingThread.load() == std::this_thread::get_id(); }

    const PluginCoreHostFunction function;
    void* const refcon;
    std::atomic<std::thread::id> holdingThread{}; // the default id is nobody's
    std::vector<Notification> held;               // of holdingThread
};

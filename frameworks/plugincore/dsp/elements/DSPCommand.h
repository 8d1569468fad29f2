// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>

namespace DSP {

/// A unit of work that passes between the two rings of its element: one step on each side in turn,
/// until a step answers false or it is cancelled. Always made and deleted on the UI side.
class DSPCommand {
public:
    DSPCommand() = default;
    DSPCommand(const DSPCommand&) = delete;
    DSPCommand& operator=(const DSPCommand&) = delete;
    virtual ~DSPCommand() = default;

    /// Runs with the process lock held; true to go on. Must not allocate or throw. [process]
    virtual bool ProcessThreadStep() = 0;
    /// True to go on. [ui]
    virtual bool UIThreadStep() = 0;

    bool IsActive() const noexcept { return active.load(std::memory_order_relaxed); }
    /// Ends the command at its next stop. [any]
    void Cancel() noexcept { cancelled.store(true, std::memory_order_relaxed); }
    bool IsCancelled() const noexcept { return cancelled.load(std::memory_order_relaxed); }

    /// For the element that carries the command only.
    void Deactivate() noexcept { active.store(false, std::memory_order_relaxed); }

private:
    // Atomic because Cancel() and IsActive() may come while the other side runs a step; the rings
    // order everything else.
    std::atomic<bool> active{true};
    std::atomic<bool> cancelled{false};
};

/// Where commands are handed in.
class DSPCommandMailbox {
public:
    virtual ~DSPCommandMailbox() = default;
    /// Takes ownership of the command. [ui]
    virtual void PostCommand(DSPCommand* command) = 0;
};

} // namespace DSP

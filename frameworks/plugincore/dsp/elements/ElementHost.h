// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/signal/ProcessingPools.h"
#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Controller {
class ControllerSet;
}

namespace Util {
class TaskQueue;
}

struct TransportRecord;

namespace DSP {

class DSPCommand;
class Element;
class ElementDispatcher;

/// Which side a call comes from or a value belongs to. The numbers are those of the entry.
enum class Context : uint32_t { Process = 0, UI = 1 };

/// What an element asks of the instance that it lives in.
class ElementHost : public ProcessingMemoryPool, public ProcessingFFTPool {
public:
    /// True inside a process call and for 2500 ms after the last one. [any]
    virtual bool IsProcessing() const = 0;

    /// The one lock that excludes the audio thread. [any]
    virtual Util::CriticalSection& GetProcessLock() = 0;

    /// While true every block starts at position 0 and elements follow no positions. [process]
    virtual bool IsPositionless() const = 0;

    /// First render flag of the present process call. [process]
    virtual bool GetRenderFlagA() const = 0;

    /// Largest block that an element ever sees, in frames. [any]
    virtual uint32_t GetMaxBlockFrames() const = 0;

    /// Frames of the present chunk that an element has already seen. [process]
    virtual void SetProcessBlockOffset(uint32_t frames) = 0;
    virtual uint32_t GetProcessBlockOffset() const = 0;

    /// Samples processed since the last settling, plus the block offset. [process]
    virtual uint64_t GetProcessPosition() const = 0;

    /// The host's position in samples, empty when it has none. [process]
    virtual std::optional<int64_t> GetTransportPosition() const = 0;

    /// The host's whole transport record, whose position follows the chunks of the present process
    /// call; null outside of one. [process]
    virtual const TransportRecord* GetTransportState() const = 0;
    /// Whether an editor is open that has a window of the platform's. [ui]
    virtual bool HasNativeWindow() const = 0;

    /// An element's latency has changed, seen from `context`. Under the process lock. [process]
    virtual void LatencyChanged(Context context) = 0;

    /// Delay that the dry signal must have, in samples: the latency that the host gets. [process]
    virtual uint32_t GetProcessingSystemDelaySamples() const = 0;

    /// False on the thread that is inside the process side. [any]
    virtual bool IsUIThread() const = 0;
    /// Whether the calling thread may rebuild signal state just now. [any]
    virtual bool MayChangeDSP() const = 0;
    virtual bool IsReconfiguring() const = 0;
    virtual bool IsSuspended() const = 0;

    /// Leaves the rest of a change made on the process side to the instance's timer. [process]
    virtual void MarkProcessDirty() = 0;

    /// One worker that runs posted work in order. [ui]
    virtual Util::TaskQueue& GetTaskQueue() = 0;

    /// Keeps the list of commands that are under way. [ui]
    virtual void CommandPosted(Element& element, DSPCommand& command) = 0;
    virtual void CommandFinished(Element& element, DSPCommand& command) = 0;

    /// Gestures and changes for the plug-in host's automation. [ui]
    virtual void ParamGrabbed(Element& element, const String& name) = 0;
    virtual void ParamReleased(Element& element, const String& name) = 0;
    virtual void ParamChanged(Element& element, const String& name) = 0;

    /// Makes what the user interface binds to. The element, which outlives the set, keeps it. [ui]
    virtual std::shared_ptr<Controller::ControllerSet>
    CreateControllerSet(ElementDispatcher& element) = 0;
};

} // namespace DSP

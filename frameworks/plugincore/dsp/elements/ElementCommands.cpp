// SPDX-License-Identifier: ISC
// The way of commands through an element. A command passes between the two rings, one step on each
// side, until a step answers false or it is cancelled; the UI side deletes it, so that the process
// side never frees memory.
#include "frameworks/plugincore/dsp/elements/ElementImpl.h"
#include "frameworks/qobase/util/CriticalSection.h"

#include <memory>
#include <vector>

namespace DSP {

void ElementImpl::PostCommand(DSPCommand* command)
{
    std::unique_ptr<DSPCommand> owned(command); // until a ring has it, or it is done
    host.CommandPosted(*this, *command);
    try {
        SendOrRun(command);
    } catch (...) {
        host.CommandFinished(*this, *command);
        throw;
    }
    static_cast<void>(owned.release());
}

void ElementImpl::SendOrRun(DSPCommand* command)
{
    if (host.IsProcessing() || !host.GetProcessLock().TryEnter()) {
        processFifo.Push(command);
        return;
    }
    const Util::CriticalSectionGuard guard(host.GetProcessLock(), std::adopt_lock);
    ProcessCommands(); // older ones first
    RunDirectly(command);
}

void ElementImpl::RunDirectly(DSPCommand* command)
{
    if (!command->ProcessThreadStep() || !command->UIThreadStep()) {
        command->Deactivate();
    }
    if (command->IsActive()) {
        processFifo.Push(command);
    } else {
        Finish(command);
    }
}

void ElementImpl::ProcessCommands()
{
    if (commandsDisabled) {
        return;
    }
    for (Element* child : children) {
        child->ProcessCommands();
    }
    while (DSPCommand* command = processFifo.Pop()) {
        if (command->IsActive() && !command->ProcessThreadStep()) {
            command->Deactivate();
        }
        // A full ring loses the command without freeing it here; the host still lists it. It takes
        // as many commands as the ring holds between two ticks of the UI side.
        uiFifo.Push(command);
        if (commandsDisabled) {
            return;
        }
    }
    OnCommandsProcessed();
}

void ElementImpl::ServiceCommands()
{
    ServiceReturned();
    ServiceWithoutAudio();
    for (Element* child : children) {
        child->ServiceCommands();
    }
    OnUIIdle();
}

void ElementImpl::ServiceReturned()
{
    while (DSPCommand* command = uiFifo.Pop()) {
        if (command->IsCancelled()) {
            command->Deactivate();
        }
        if (command->IsActive() && !command->UIThreadStep()) {
            command->Deactivate();
        }
        if (command->IsActive()) {
            processFifo.Push(command);
        } else {
            Finish(command);
        }
    }
}

void ElementImpl::ServiceWithoutAudio()
{
    if (host.IsProcessing() || !host.GetProcessLock().TryEnter()) {
        return;
    }
    const Util::CriticalSectionGuard guard(host.GetProcessLock(), std::adopt_lock);
    std::vector<DSPCommand*> goingOn;
    while (DSPCommand* command = processFifo.Pop()) {
        if (command->IsActive() && !command->ProcessThreadStep()) {
            command->Deactivate();
        }
        // Unlike the way through the ring, a cancelled command has had its process step by now.
        if (command->IsCancelled()) {
            command->Deactivate();
        }
        if (command->IsActive() && !command->UIThreadStep()) {
            command->Deactivate();
        }
        if (command->IsActive()) {
            goingOn.push_back(command);
        } else {
            Finish(command);
        }
    }
    for (DSPCommand* command : goingOn) {
        processFifo.Push(command);
    }
}

} // namespace DSP

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/PluginElementHost.h"

#include "frameworks/plugincore/controller/ElementDispatcherControllerSet.h"
#include "frameworks/plugincore/dsp/elements/DSPCommand.h"

#include <algorithm>

PluginElementHost::PluginElementHost(const Setup& setup)
    : processLock(setup.processLock)
    , mayAlwaysChangeDSP(setup.mayAlwaysChangeDSP)
    , memoryPool("PluginMemoryPool")
    , fftPool("PluginFFTPool")
    , taskQueue("Plugin Tasks", 1)
    , blocks(setup.processLock, setup.maxBlockFrames)
{
}

PluginElementHost::~PluginElementHost()
{
    for (DSP::DSPCommand* command : liveCommands) {
        delete command;
    }
}

bool PluginElementHost::MayChangeDSP() const
{
    if (blocks.IsCallerInside() || blocks.IsAudioThread()) {
        return true;
    }
    return mayAlwaysChangeDSP || phase.suspended || phase.reconfiguring || !IsProcessing();
}

void PluginElementHost::CommandPosted(DSP::Element& /*element*/, DSP::DSPCommand& command)
{
    liveCommands.push_back(&command);
}

void PluginElementHost::CommandFinished(DSP::Element& /*element*/, DSP::DSPCommand& command)
{
    const auto found = std::find(liveCommands.begin(), liveCommands.end(), &command);
    if (found != liveCommands.end()) {
        *found = liveCommands.back();
        liveCommands.pop_back();
    }
}

std::shared_ptr<Controller::ControllerSet>
PluginElementHost::CreateControllerSet(DSP::ElementDispatcher& element)
{
    return std::make_shared<Controller::ElementDispatcherControllerSet>(element);
}

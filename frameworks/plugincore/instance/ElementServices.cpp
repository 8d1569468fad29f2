// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/ElementServices.h"

#include "frameworks/plugincore/controller/ElementDispatcherControllerSet.h"
#include "frameworks/plugincore/dsp/elements/DSPCommand.h"

#include <algorithm>

ElementServices::ElementServices()
    : memoryPool("PluginMemoryPool")
    , fftPool("PluginFFTPool")
    , taskQueue(1)
{
}

ElementServices::~ElementServices()
{
    for (DSP::DSPCommand* command : liveCommands) {
        delete command;
    }
}

void ElementServices::CommandPosted(DSP::Element& /*element*/, DSP::DSPCommand& command)
{
    liveCommands.push_back(&command);
}

void ElementServices::CommandFinished(DSP::Element& /*element*/, DSP::DSPCommand& command)
{
    const auto found = std::find(liveCommands.begin(), liveCommands.end(), &command);
    if (found != liveCommands.end()) {
        *found = liveCommands.back();
        liveCommands.pop_back();
    }
}

std::shared_ptr<Controller::ControllerSet>
ElementServices::CreateControllerSet(DSP::ElementDispatcher& element)
{
    return std::make_shared<Controller::ElementDispatcherControllerSet>(element);
}

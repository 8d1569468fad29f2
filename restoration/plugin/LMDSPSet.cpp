// SPDX-License-Identifier: ISC
#include "restoration/plugin/LMDSPSet.h"

#include "restoration/plugin/Global.h"

namespace DSP {

LMDSPSet::LMDSPSet(ElementHost& owner, String mainName, MainElementFactory makeMain)
    : DSPSet(owner)
    , mainElementName(std::move(mainName))
    , makeMainElement(std::move(makeMain))
{
}

void LMDSPSet::BuildElements(float sampleRate, uint32_t channelConfig)
{
    AddElement("Global", sampleRate, channelConfig, [&] {
        return std::make_shared<Global::Global>(GetHost(), sampleRate, channelConfig);
    });
    globalElement = GetElement("Global");
    bypassParam = {*globalElement, Global::Global::GlobalBypass};
    BuildMainElement(sampleRate, channelConfig);
    mainElement = GetElement(mainElementName);
}

void LMDSPSet::BuildMainElement(float sampleRate, uint32_t channelConfig)
{
    AddElement(mainElementName, sampleRate, channelConfig, [&] {
        return makeMainElement(GetHost(), sampleRate, channelConfig);
    });
}

} // namespace DSP

// SPDX-License-Identifier: ISC
#include "restoration/plugin/LMDSPSet.h"

#include "frameworks/plugincore/preset/file/PresetDSPSetInterface.h"
#include "frameworks/plugincore/preset/file/PresetMetadata.h"
#include "restoration/plugin/Global.h"

namespace DSP {

LMDSPSet::LMDSPSet(ElementHost& owner, String mainName, MainElementFactory makeMain)
    : DSPSet(owner)
    , mainElementName(std::move(mainName))
    , makeMainElement(std::move(makeMain))
{
}

LMDSPSet::~LMDSPSet() = default;

void LMDSPSet::BuildElements(float sampleRate, uint32_t channelConfig)
{
    AddElement("Global", sampleRate, channelConfig, [&] {
        return std::make_shared<Global::Global>(GetHost(), sampleRate, channelConfig);
    });
    globalElement = GetElement("Global");
    bypassParam = {*globalElement, Global::Global::GlobalBypass};
    BuildMainElement(sampleRate, channelConfig);
    mainElement = GetElement(mainElementName);
    if (!presetInterface) {
        presetMetadata = std::make_unique<Preset::PresetMetadata>();
        presetInterface = std::make_unique<Preset::PresetDSPSetInterface>(*this);
    }
}

Preset::PresetMetadataBase* LMDSPSet::GetPresetMetadata() const
{
    return presetMetadata.get();
}

Preset::PresetDSPInterfaceBase* LMDSPSet::GetPresetInterface() const
{
    return presetInterface.get();
}

void LMDSPSet::BuildMainElement(float sampleRate, uint32_t channelConfig)
{
    AddElement(mainElementName, sampleRate, channelConfig, [&] {
        return makeMainElement(GetHost(), sampleRate, channelConfig);
    });
}

} // namespace DSP

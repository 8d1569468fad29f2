// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/DSPSet.h"

#include <functional>
#include <memory>

namespace DSP {

/// The set of a product of the family: "Global", then the product's own element under a name
/// that key paths and the list of automatable parameters use.
class LMDSPSet final : public DSPSet {
public:
    /// Makes the product's element for a rate, in Hz, and a layout code.
    using MainElementFactory = std::function<std::shared_ptr<Element>(
        ElementHost& host, float sampleRate, uint32_t channelConfig)>;

    LMDSPSet(ElementHost& owner, String mainName, MainElementFactory makeMain);
    ~LMDSPSet() override;

    void BuildElements(float sampleRate, uint32_t channelConfig) override;
    void BuildMainElement(float sampleRate, uint32_t channelConfig) override;
    Element* GetMainElement() const override { return mainElement; }
    Element* GetGlobalElement() const override { return globalElement; }
    ElementParam<bool> GetBypassParam() const override { return bypassParam; }
    Preset::PresetMetadataBase* GetPresetMetadata() const override;
    Preset::PresetDSPInterfaceBase* GetPresetInterface() const override;

private:
    const String mainElementName;
    const MainElementFactory makeMainElement;
    // Owned by the elements' map; kept so that the process side needs no look-up.
    Element* mainElement = nullptr;
    Element* globalElement = nullptr;
    ElementParam<bool> bypassParam;
    // Made with the first elements, and kept like these.
    std::unique_ptr<Preset::PresetMetadataBase> presetMetadata;
    std::unique_ptr<Preset::PresetDSPInterfaceBase> presetInterface;
};

} // namespace DSP

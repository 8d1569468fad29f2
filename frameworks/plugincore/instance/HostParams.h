// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/TransformBase.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/product/Translator.h"

#include <cstdint>
#include <optional>
#include <vector>

/// Parameters of an instance as the host sees them: the automatable ones in the order of their
/// list, and those of all elements in one flat list, in the elements' order.
///
/// Threads: Rebuild() comes with both locks held, and whatever else under one of them, so that the
/// lists stay as they are for as long as a call takes. [any]
class HostParams {
public:
    struct Place {
        DSP::Element* element;
        const DSP::ParamObject* param; ///< until the next Rebuild()
    };

    /// Both outlive this object.
    HostParams(const DSP::TransformBase& newPath, const Translator& newTranslator);
    /// After the elements were made anew. [setup]
    void Rebuild();

    uint32_t GetAutomatableCount() const;
    /// Fills as many records as there are parameters.
    void ListAutomatable(ParamInfoRecord* records) const;
    /// Empty for an index out of range.
    std::optional<Place> GetAutomatable(uint32_t index) const;
    /// Index of the parameter; empty when it isn't automatable.
    std::optional<uint32_t> FindAutomatable(const DSP::Element& element, const String& name) const;

    uint32_t GetElementParamCount() const;
    void ListElementParams(ElementParamInfoRecord* records) const;
    std::optional<Place> GetElementParam(uint32_t index) const;

private:
    // One row of the flat list.
    struct ElementParam {
        String elementName;
        uint32_t elementIndex;
        DSP::Element* element;
        DSP::ParamObject param;
    };
    void FillElementParam(const ElementParam& entry, ElementParamInfoRecord& record) const;

    const DSP::TransformBase& path;
    const Translator& translator;
    std::vector<ElementParam> elementParams;
};

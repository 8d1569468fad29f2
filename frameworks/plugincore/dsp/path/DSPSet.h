// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/Element.h"
#include "frameworks/plugincore/dsp/elements/KeyValueCoding.h"

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace Preset {
class PresetDSPInterfaceBase;
class PresetMetadataBase;
} // namespace Preset

namespace DSP {

/// The elements of an instance, as the rest of the program sees them. By key, an element is its
/// controller set, as a `KeyValueCoding*`. [ui] unless stated otherwise
class DSPSetBase : public Controller::KeyValueCoding {
public:
    /// Elements by name, in name order.
    using ElementMap = std::map<String, std::shared_ptr<Element>>;

    /// Makes the elements, or gives those that are there the new format. Under the process lock.
    /// [setup]
    virtual void BuildElements(float sampleRate, uint32_t channelConfig) = 0;
    /// Finishes the elements' commands.
    virtual void OnUIIdle() = 0;
    /// Takes values of the process side over.
    virtual void OnSyncParams() = 0;
    /// A saved state comes next; it may hold values for any of the elements.
    virtual void BeforeStateChange() {}
    /// Null for an unknown name.
    virtual Element* GetElement(const String& name) const = 0;
    virtual const ElementMap& GetElements() const = 0;
    /// Of the preset that was applied or saved last, and what presets set these elements by. Null
    /// for a set without presets.
    virtual Preset::PresetMetadataBase* GetPresetMetadata() const { return nullptr; }
    virtual Preset::PresetDSPInterfaceBase* GetPresetInterface() const { return nullptr; }
};

/// Keeps the elements and runs their idle work.
class DSPSetImpl : public DSPSetBase {
public:
    explicit DSPSetImpl(ElementHost& newHost)
        : host(newHost)
    {
    }

    /// Also finds an element by its own name, where that differs from the one in the set.
    std::any ValueForKey(const String& key) override;
    std::set<String> AllKeys() override;
    void OnUIIdle() override;
    void OnSyncParams() override;
    Element* GetElement(const String& name) const override;
    const ElementMap& GetElements() const override { return elements; }

    /// Name and element in the order of making: the order of the flat parameter list.
    using NamedElement = std::pair<String, Element*>;
    const std::vector<NamedElement>& GetOrder() const { return order; }

protected:
    /// A configurable element of this name that is there gets the format; any other is replaced by
    /// what `make` gives.
    void AddElement(const String& name,
                    float sampleRate,
                    uint32_t channelConfig,
                    const std::function<std::shared_ptr<Element>()>& make);

    ElementHost& GetHost() const { return host; }

private:
    ElementHost& host;
    ElementMap elements;
    std::vector<NamedElement> order;
};

/// A set with one element that does the product's work and one with what all products share.
class DSPSet : public DSPSetImpl {
public:
    using DSPSetImpl::DSPSetImpl;

    /// Adds the element that does the product's work. [setup]
    virtual void BuildMainElement(float sampleRate, uint32_t channelConfig) = 0;

    /// Null before BuildElements(). [any]
    virtual Element* GetMainElement() const = 0;
    virtual Element* GetGlobalElement() const = 0;
    /// Whether the signal is to be passed by. Empty before BuildElements(). [any]
    virtual ElementParam<bool> GetBypassParam() const = 0;
};

} // namespace DSP

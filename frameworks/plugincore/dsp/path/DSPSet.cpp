// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/path/DSPSet.h"

#include "frameworks/plugincore/dsp/elements/ControllerSet.h"

#include <algorithm>

namespace DSP {

std::any DSPSetImpl::ValueForKey(const String& key)
{
    auto found = elements.find(key);
    if (found == elements.end()) {
        found = std::find_if(elements.begin(), elements.end(), [&key](const auto& entry) {
            return entry.second->GetName() == key;
        });
    }
    if (found == elements.end()) {
        return {};
    }
    return static_cast<Controller::KeyValueCoding*>(found->second->GetControllerSet().get());
}

std::set<String> DSPSetImpl::AllKeys()
{
    std::set<String> keys;
    for (const auto& [name, element] : elements) {
        keys.insert(name);
    }
    return keys;
}

void DSPSetImpl::OnUIIdle()
{
    for (const auto& [name, element] : elements) {
        element->ServiceCommands();
    }
}

void DSPSetImpl::OnSyncParams()
{
    for (const auto& [name, element] : elements) {
        element->SyncParams();
    }
}

Element* DSPSetImpl::GetElement(const String& name) const
{
    const auto found = elements.find(name);
    return found != elements.end() ? found->second.get() : nullptr;
}

void DSPSetImpl::AddElement(const String& name,
                            float sampleRate,
                            uint32_t channelConfig,
                            const std::function<std::shared_ptr<Element>()>& make)
{
    if (Element* present = GetElement(name)) {
        if (present->IsConfigurable()) {
            present->SetFormat(sampleRate, channelConfig);
            return;
        }
    }
    // All that can fail comes first: a set without this element couldn't process.
    std::shared_ptr<Element> element = make();
    NamedElement named(name, element.get());
    order.reserve(order.size() + 1);
    elements[name] = std::move(element); // the destruction of a former one ends its commands
    order.erase(std::remove_if(order.begin(),
                               order.end(),
                               [&](const NamedElement& entry) { return entry.first == name; }),
                order.end());
    order.push_back(std::move(named));
}

} // namespace DSP

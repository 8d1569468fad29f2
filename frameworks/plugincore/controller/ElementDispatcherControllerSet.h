// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/ElementDispatcherControllers.h"
#include "frameworks/plugincore/dsp/elements/ControllerSet.h"
#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"

#include <map>
#include <variant>

namespace Controller {

/// One controller for each parameter of an element that has been asked for. [ui]
class ElementDispatcherControllerSet final : public ControllerSet {
public:
    /// The element outlives the set.
    explicit ElementDispatcherControllerSet(DSP::ElementDispatcher& newElement)
        : element(newElement)
    {
    }

    EnumParam* GetEnumController(const String& name) override;
    BoolParam* GetBoolController(const String& name) override;
    FloatParam* GetFloatController(const String& name) override;

    std::any ValueForKey(const String& key) override;
    /// The names of all parameters, asked for or not.
    std::set<String> AllKeys() override;

private:
    template <typename ControllerType, typename Source>
    ControllerType* Get(const String& name);

    DSP::ElementDispatcher& element;
    std::map<String,
             std::variant<std::shared_ptr<ElementDispatcherEnumController>,
                          std::shared_ptr<ElementDispatcherBoolController>,
                          std::shared_ptr<ElementDispatcherFloatController>>>
        controllers;
};

} // namespace Controller

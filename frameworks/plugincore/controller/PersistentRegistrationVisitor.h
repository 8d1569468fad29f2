// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/PersistentParamsLink.h"
#include "frameworks/plugincore/dsp/elements/Element.h"

namespace Controller {

/// Registers each persistent parameter of an element with the user's preferences; other parameters
/// are passed over. [ui]
class PersistentRegistrationVisitor final : public DSP::ParamVisitor {
public:
    enum class Mode : uint32_t {
        Link = 0,         ///< the link follows the controllers of the parameters
        RegisterOnly = 1, ///< no controller is made
    };

    PersistentRegistrationVisitor(PersistentParamsLink& newLink,
                                  DSP::Element& newElement,
                                  Mode newMode);

    void VisitFloat(const String& name, const DSP::ElementParamImplBase<float>& param) override;
    void VisitBool(const String& name, const DSP::ElementParamImplBase<bool>& param) override;
    void VisitEnum(const String& name, const DSP::ElementParamEnumImplBase& param) override;

private:
    /// `getController` is the set's operation for this type.
    template <typename T, typename ParamType>
    void Register(const char* typeWord,
                  const DSP::ElementParamImplBase<T>& param,
                  ParamType* (ControllerSet::*getController)(const String& name));

    PersistentParamsLink& link;
    const std::shared_ptr<ControllerSet> controllers; // null in RegisterOnly
};

} // namespace Controller

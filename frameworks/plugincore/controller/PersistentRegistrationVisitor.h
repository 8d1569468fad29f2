// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/PersistentParamsLink.h"
#include "frameworks/plugincore/dsp/Element.h"

namespace Controller {

/// Registers each persistent parameter of an element with the user's preferences and has the link
/// follow its controller; other parameters are passed over. [ui]
class PersistentRegistrationVisitor final : public DSP::ParamVisitor {
public:
    PersistentRegistrationVisitor(PersistentParamsLink& newLink, DSP::Element& newElement);

    void VisitFloat(const String& name, const DSP::ElementParamImplBase<float>& param) override;
    void VisitBool(const String& name, const DSP::ElementParamImplBase<bool>& param) override;
    void VisitEnum(const String& name, const DSP::ElementParamEnumImplBase& param) override;

private:
    template <typename T, typename ParamType>
    void Register(const char* typeWord,
                  const DSP::ElementParamImplBase<T>& param,
                  ParamType* controller);

    PersistentParamsLink& link;
    const std::shared_ptr<ControllerSet> controllers;
};

} // namespace Controller

// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/PersistentRegistrationVisitor.h"

#include "frameworks/plugincore/dsp/elements/ControllerSet.h"

namespace Controller {
namespace {

bool IsPersistent(const DSP::ParamInfo& info)
{
    return info.persistence == DSP::Persistence::Persistent;
}

} // namespace

PersistentRegistrationVisitor::PersistentRegistrationVisitor(PersistentParamsLink& newLink,
                                                             DSP::Element& newElement,
                                                             Mode newMode)
    : link(newLink)
    , controllers(newMode == Mode::Link ? newElement.GetControllerSet() : nullptr)
{
}

template <typename T, typename ParamType>
void PersistentRegistrationVisitor::Register(
    const char* typeWord,
    const DSP::ElementParamImplBase<T>& param,
    ParamType* (ControllerSet::*getController)(const String& name))
{
    const String key = String("%1.%2.%3.%4")
                           .arg("Params")
                           .arg(param.GetElement().GetName())
                           .arg(typeWord)
                           .arg(param.GetName());
    link.GetHolder().Register(key, param);
    if (controllers) {
        link.Follow(key, *((*controllers).*getController)(param.GetName()));
    }
}

void PersistentRegistrationVisitor::VisitFloat(const String& /*name*/,
                                               const DSP::ElementParamImplBase<float>& param)
{
    if (IsPersistent(param.GetParamInfo())) {
        Register<float>("Float", param, &ControllerSet::GetFloatController);
    }
}

void PersistentRegistrationVisitor::VisitBool(const String& /*name*/,
                                              const DSP::ElementParamImplBase<bool>& param)
{
    if (IsPersistent(param.GetParamInfo())) {
        Register<bool>("Bool", param, &ControllerSet::GetBoolController);
    }
}

void PersistentRegistrationVisitor::VisitEnum(const String& /*name*/,
                                              const DSP::ElementParamEnumImplBase& param)
{
    if (IsPersistent(param.GetParamInfo())) {
        Register<uint32_t>("Enum", param, &ControllerSet::GetEnumController);
    }
}

} // namespace Controller

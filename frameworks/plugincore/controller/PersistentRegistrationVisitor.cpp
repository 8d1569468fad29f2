// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/controller/PersistentRegistrationVisitor.h"

#include "frameworks/plugincore/dsp/ControllerSet.h"

namespace Controller {
namespace {

bool IsPersistent(const DSP::ParamInfo& info)
{
    return info.persistence == DSP::Persistence::Persistent;
}

} // namespace

PersistentRegistrationVisitor::PersistentRegistrationVisitor(PersistentParamsLink& newLink,
                                                             DSP::Element& newElement)
    : link(newLink)
    , controllers(newElement.GetControllerSet())
{
}

template <typename T, typename ParamType>
void PersistentRegistrationVisitor::Register(const char* typeWord,
                                             const DSP::ElementParamImplBase<T>& param,
                                             ParamType* controller)
{
    const String key = String("%1.%2.%3.%4")
                           .arg("Params")
                           .arg(param.GetElement().GetName())
                           .arg(typeWord)
                           .arg(param.GetName());
    link.GetHolder().Register(key, param);
    link.Follow(key, *controller);
}

void PersistentRegistrationVisitor::VisitFloat(const String& name,
                                               const DSP::ElementParamImplBase<float>& param)
{
    if (IsPersistent(param.GetParamInfo())) {
        Register<float>("Float", param, controllers->GetFloatController(name));
    }
}

void PersistentRegistrationVisitor::VisitBool(const String& name,
                                              const DSP::ElementParamImplBase<bool>& param)
{
    if (IsPersistent(param.GetParamInfo())) {
        Register<bool>("Bool", param, controllers->GetBoolController(name));
    }
}

void PersistentRegistrationVisitor::VisitEnum(const String& name,
                                              const DSP::ElementParamEnumImplBase& param)
{
    if (IsPersistent(param.GetParamInfo())) {
        Register<uint32_t>("Enum", param, controllers->GetEnumController(name));
    }
}

} // namespace Controller

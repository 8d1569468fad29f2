// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/HumanReadableParamVisitor.h"

namespace DSP {
namespace {

template <typename T>
bool IsChanged(const ElementParamImplBase<T>& param)
{
    return param.GetParamInfo().persistence == Persistence::Session &&
           param.GetValue(Context::UI) != param.GetDefault();
}

} // namespace

void HumanReadableParamVisitor::VisitFloat(const String& name,
                                           const ElementParamImplBase<float>& param)
{
    if (IsChanged(param)) {
        changed.floats.emplace_back(name, param.GetValue(Context::UI));
    }
}

void HumanReadableParamVisitor::VisitBool(const String& name,
                                          const ElementParamImplBase<bool>& param)
{
    if (IsChanged(param)) {
        changed.bools.emplace_back(name, param.GetValue(Context::UI));
    }
}

void HumanReadableParamVisitor::VisitEnum(const String& name, const ElementParamEnumImplBase& param)
{
    if (IsChanged(param)) {
        changed.enums.emplace_back(name, param.GetEnumLabel(param.GetValue(Context::UI)));
    }
}

} // namespace DSP
